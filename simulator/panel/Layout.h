#pragma once

#include <algorithm>

#include "simulator/panel/Display.h"
#include "simulator/panel/ScreenRecords.h"

namespace sim {

// One description for all sizes of colour screens: pages are laid out for 800 x 480 dots, and places are carried over
// to the size of the display. Images keep their shape; what lies on an image is placed with it.
class Layout {
 public:
  static constexpr int kWidth = 800;
  static constexpr int kHeight = 480;

  enum class TextSize { Small, Normal, Large, Huge };

  explicit constexpr Layout(const Display& display) : mWidth(display.width), mHeight(display.height) {}

  [[nodiscard]] constexpr int Width() const { return mWidth; }
  [[nodiscard]] constexpr int Height() const { return mHeight; }
  [[nodiscard]] constexpr int X(int x) const { return x * mWidth / kWidth; }
  [[nodiscard]] constexpr int Y(int y) const { return y * mHeight / kHeight; }
  // A length that is the same in both directions.
  [[nodiscard]] constexpr int Length(int length) const {
    return IsNarrow() ? length * mWidth / kWidth : length * mHeight / kHeight;
  }
  [[nodiscard]] constexpr Box Place(const Box& box) const {
    const int x = X(box.x);
    const int y = Y(box.y);
    return {x, y, X(box.x + box.width) - x, Y(box.y + box.height) - y};
  }
  [[nodiscard]] constexpr int Font(TextSize size) const {
    const int smallest = Length(100) < 70 ? 1 : Length(100) < 120 ? 2 : 3;
    return std::min(4, std::max(1, smallest - (size == TextSize::Small && smallest > 1 ? 1 : 0)) + Step(size));
  }

 private:
  [[nodiscard]] constexpr bool IsNarrow() const { return mWidth * kHeight < mHeight * kWidth; }
  [[nodiscard]] static constexpr int Step(TextSize size) {
    return size == TextSize::Huge ? 2 : size == TextSize::Large ? 1 : 0;
  }

  int mWidth;
  int mHeight;
};

}  // namespace sim
