#pragma once

#include <algorithm>
#include <cstdlib>

#include "simulator/panel/Canvas.h"
#include "simulator/panel/Layout.h"

namespace sim {

// What images stand on; their edges are mixed with it.
inline constexpr Dot kPageGround = 0x182431;
inline constexpr Dot kTabGround = 0x101821;

// Turns measures of a display of 800 x 480 into those of another one.
class Scale {
 public:
  explicit Scale(const Layout& layout) : mLayout(layout) {}
  [[nodiscard]] int operator()(int length) const { return mLayout.Length(length * Canvas::kFine); }
  [[nodiscard]] int Dots(int length) const { return std::max(1, mLayout.Length(length)); }
  [[nodiscard]] int Font(Layout::TextSize size) const { return mLayout.Font(size); }

 private:
  const Layout& mLayout;
};

// The inside of two shapes at once.
[[nodiscard]] auto Both(auto one, auto other) {
  return [=](int x, int y) { return one(x, y) && other(x, y); };
}

// A drop that hangs from x, top; its round part has this radius.
[[nodiscard]] inline auto Drop(int x, int top, int radius) {
  const auto round = Ellipse(x, top + 2 * radius, radius, radius);
  const auto tip = Triangle(x, top, x - radius * 7 / 8, top + radius * 3 / 2, x + radius * 7 / 8, top + radius * 3 / 2);
  return [=](int px, int py) { return round(px, py) || tip(px, py); };
}

// The colour of a round steel part, by how far from its left side a dot lies; both in eighths of a dot.
[[nodiscard]] inline auto Steel(int left, int width) {
  return [=](int x, int) {
    const int across = std::clamp((x * Canvas::kFine - left) * 256 / std::max(1, width), 0, 256);
    const int light = 232 - (across < 84 ? (84 - across) * 5 / 4 : (across - 84) * 3 / 4);
    return static_cast<Dot>((light - 16) << 16 | (light - 6) << 8 | light);
  };
}

}  // namespace sim
