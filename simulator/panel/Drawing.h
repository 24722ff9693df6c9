#pragma once

#include <functional>
#include <string_view>

#include "simulator/panel/Picture.h"
#include "simulator/panel/Screen.h"

namespace sim {

// The bytes of the image with that id; empty when there is none.
using ImageSource = std::function<std::string_view(std::uint16_t id)>;

// A colour screen as it is to be drawn, dot by dot, by the rules of docs/controller-protocol.md, section 10: what a
// host shows is compared with this.
[[nodiscard]] Picture DrawScreen(const Screen& screen, int width, int height, const ImageSource& images);

}  // namespace sim
