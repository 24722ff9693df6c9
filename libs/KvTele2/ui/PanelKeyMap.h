#pragma once

#include <QString>
#include <cstdint>
#include <optional>

#include "link/PanelLink.h"

namespace kv {

// Which keys of the keyboard are which keys of a controller, while its panel is operated and the screen has the focus:
// one table for the screen, the tooltips and the user's guide.
//
//   F1 to F8, 0 to 9, -, Up, Down, Left, Right   the same
//   .                                            . and ,
//   Enter                                        Enter and Return
//   Esc                                          Esc, but in full screen, where it leads back
//   Del                                          Delete and Backspace

// The id of the controller's key; nothing: it has none for this one. `key` is a Qt::Key.
[[nodiscard]] std::optional<std::uint8_t> ControllerKeyOf(const PanelDescription& panel, int key);
// What to press for it: "Enter or Return"; empty for a key that is not on the keyboard.
[[nodiscard]] QString KeyboardText(const PanelKey& key);

}  // namespace kv
