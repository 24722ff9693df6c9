#pragma once

#include <concepts>
#include <cstdint>
#include <vector>

#include "simulator/panel/Picture.h"

namespace sim {

// A colour between two others, `part` of `whole` towards the second.
[[nodiscard]] constexpr Dot Between(Dot one, Dot other, int part, int whole) {
  const auto mix = [&](int shift) {
    const int from = static_cast<int>(one >> shift & 255);
    const int to = static_cast<int>(other >> shift & 255);
    return static_cast<Dot>(from + (to - from) * part / whole) << shift;
  };
  return mix(16) | mix(8) | mix(0);
}

// Draws an image with smooth edges, in whole numbers, so that it has the same bytes on every machine. Shapes are
// functions that tell whether a point lies inside; points are given in eighths of a dot. What stays free is
// transparent; an edge beside it is mixed with the ground that the image will stand on.
class Canvas {
 public:
  static constexpr int kFine = 8;  // points a dot

  Canvas(int width, int height, Dot ground)
      : mPicture(width, height, ground), mCover(static_cast<std::size_t>(width * height), 0) {}

  [[nodiscard]] int Width() const { return mPicture.Width(); }
  [[nodiscard]] int Height() const { return mPicture.Height(); }

  // Paints the shape; `colour` tells the colour of a dot.
  void Paint(std::predicate<int, int> auto&& shape, std::invocable<int, int> auto&& colour) {
    for (int y = 0; y < Height(); ++y) {
      for (int x = 0; x < Width(); ++x) {
        const int cover = CoverAt(shape, x, y);
        if (cover > 0) Mix(x, y, colour(x, y), cover);
      }
    }
  }
  void Paint(std::predicate<int, int> auto&& shape, Dot colour) {
    Paint(shape, [colour](int, int) { return colour; });
  }
  // Makes the shape transparent again.
  void CutOut(std::predicate<int, int> auto&& shape) {
    for (int y = 0; y < Height(); ++y) {
      for (int x = 0; x < Width(); ++x) {
        if (CoverAt(shape, x, y) > kWhole / 2) mCover[Index(x, y)] = 0;
      }
    }
  }
  // The text's dots, from its upper left corner.
  void Write(int x, int y, int font, std::string_view text, Dot colour);

  [[nodiscard]] Picture Finish() const;

 private:
  static constexpr int kWhole = 16;

  static int CoverAt(auto&& shape, int x, int y) {
    int cover = 0;
    for (int fine = 0; fine < kWhole; ++fine) {
      cover += shape(x * kFine + fine % 4 * 2 + 1, y * kFine + fine / 4 * 2 + 1) ? 1 : 0;
    }
    return cover;
  }
  void Mix(int x, int y, Dot colour, int cover) {
    mPicture.Set(x, y, Between(mPicture.At(x, y), colour, cover, kWhole));
    mCover[Index(x, y)] = 1;
  }
  [[nodiscard]] std::size_t Index(int x, int y) const { return static_cast<std::size_t>(y * Width() + x); }

  Picture mPicture;
  std::vector<std::uint8_t> mCover;  // 1: painted
};

// Shapes, with places and sizes in eighths of a dot.
[[nodiscard]] inline auto RoundedBox(int x, int y, int width, int height, int radius) {
  return [=](int px, int py) {
    if (px < x || py < y || px >= x + width || py >= y + height) return false;
    const int dx = px < x + radius ? x + radius - px : px > x + width - radius ? px - (x + width - radius) : 0;
    const int dy = py < y + radius ? y + radius - py : py > y + height - radius ? py - (y + height - radius) : 0;
    return dx * dx + dy * dy <= radius * radius;
  };
}

[[nodiscard]] inline auto Ellipse(int x, int y, int radiusX, int radiusY) {
  return [=](int px, int py) {
    const std::int64_t dx = std::int64_t{px - x} * radiusY;
    const std::int64_t dy = std::int64_t{py - y} * radiusX;
    const std::int64_t all = std::int64_t{radiusX} * radiusY;
    return dx * dx + dy * dy <= all * all;
  };
}

[[nodiscard]] inline auto Triangle(int x1, int y1, int x2, int y2, int x3, int y3) {
  return [=](int px, int py) {
    const auto side = [&](int ax, int ay, int bx, int by) {
      return std::int64_t{bx - ax} * (py - ay) - std::int64_t{by - ay} * (px - ax);
    };
    const auto a = side(x1, y1, x2, y2);
    const auto b = side(x2, y2, x3, y3);
    const auto c = side(x3, y3, x1, y1);
    return (a >= 0 && b >= 0 && c >= 0) || (a <= 0 && b <= 0 && c <= 0);
  };
}

}  // namespace sim
