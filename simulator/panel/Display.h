#pragma once

#include <cstdint>

namespace sim {

// What kind of screen a model has, and how large it is: in character cells for texts, in dots for colour.
struct Display {
  enum class Kind : std::uint8_t { None = 0, TextCells = 1, ColourDots = 2 };

  Kind kind = Kind::None;
  int width = 0;
  int height = 0;

  friend constexpr bool operator==(const Display&, const Display&) = default;
};

[[nodiscard]] constexpr Display TextDisplay(int columns, int rows) {
  return {Display::Kind::TextCells, columns, rows};
}

[[nodiscard]] constexpr Display ColourDisplay(int width, int height) {
  return {Display::Kind::ColourDots, width, height};
}

}  // namespace sim
