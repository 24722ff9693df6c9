#pragma once

#include <QIcon>
#include <string_view>

namespace kv {

// The icon of this name: the drawing icons/NAME.svg beside this file, which the build takes in by itself. A name
// without a drawing gives the program's own icon, "app".
//
// Drawn at every size and scale in the colour that the palette has for text on buttons, so it is seen on light and dark
// and follows a change.
[[nodiscard]] QIcon IconOf(std::string_view name);

}  // namespace kv
