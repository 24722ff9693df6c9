#pragma once

#include <cstddef>
#include <string_view>

namespace sim {

// The files of simulator/panel/fonts in the order of their names; the build makes the source of them.
inline constexpr std::size_t kFontFiles = 4;
[[nodiscard]] std::string_view FontFile(std::size_t index);

}  // namespace sim
