#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kv::panel {

// A rectangle of dots; empty when width or height is 0 or less.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool operator==(const PixelRect&) const = default;
  [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
  [[nodiscard]] int Right() const { return x + width; }    // one behind the last
  [[nodiscard]] int Bottom() const { return y + height; }  // one below the last
  [[nodiscard]] bool Holds(int dotX, int dotY) const {
    return dotX >= x && dotX < Right() && dotY >= y && dotY < Bottom();
  }
  [[nodiscard]] PixelRect Inside(const PixelRect& other) const {
    const int left = std::max(x, other.x);
    const int top = std::max(y, other.y);
    return {left, top, std::min(Right(), other.Right()) - left, std::min(Bottom(), other.Bottom()) - top};
  }
  [[nodiscard]] PixelRect UnitedWith(const PixelRect& other) const {
    if (IsEmpty()) return other;
    if (other.IsEmpty()) return *this;
    const int left = std::min(x, other.x);
    const int top = std::min(y, other.y);
    return {left, top, std::max(Right(), other.Right()) - left, std::max(Bottom(), other.Bottom()) - top};
  }
};

// A dot: red in bits 16 to 23, green in 8 to 15, blue in 0 to 7, and bits 24 to 31 all set, as window systems want it.
using Dot = std::uint32_t;
inline constexpr Dot kOpaque = 0xFF000000;
// Of a dot of a picture that is not drawn.
inline constexpr Dot kTransparent = 0x00000000;

// The dot for a colour of 16 bits: red in 11 to 15, green in 5 to 10, blue in 0 to 4.
[[nodiscard]] constexpr Dot DotOfColour(std::uint16_t colour) {
  const std::uint32_t red = colour >> 11U;
  const std::uint32_t green = colour >> 5U & 0x3FU;
  const std::uint32_t blue = colour & 0x1FU;
  return kOpaque | (red * 8 + red / 4) << 16U | (green * 4 + green / 16) << 8U | (blue * 8 + blue / 4);
}

// Dots in rows from the upper one down, without gaps between them.
class Picture {
 public:
  Picture() = default;
  Picture(int width, int height, Dot fill)
      : mWidth(width),
        mHeight(height),
        mDots(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), fill) {}

  bool operator==(const Picture&) const = default;
  [[nodiscard]] int Width() const { return mWidth; }
  [[nodiscard]] int Height() const { return mHeight; }
  [[nodiscard]] PixelRect Bounds() const { return {0, 0, mWidth, mHeight}; }
  [[nodiscard]] std::span<const Dot> Dots() const { return mDots; }
  // Row `y`; it must be inside.
  [[nodiscard]] std::span<const Dot> Row(int y) const { return std::span(mDots).subspan(StartOf(y), RowLength()); }
  [[nodiscard]] std::span<Dot> Row(int y) { return std::span(mDots).subspan(StartOf(y), RowLength()); }
  [[nodiscard]] Dot At(int x, int y) const { return Row(y)[static_cast<std::size_t>(x)]; }

 private:
  [[nodiscard]] std::size_t RowLength() const { return static_cast<std::size_t>(mWidth); }
  [[nodiscard]] std::size_t StartOf(int y) const { return static_cast<std::size_t>(y) * RowLength(); }

  int mWidth = 0;
  int mHeight = 0;
  std::vector<Dot> mDots;
};

// Draws into a picture, never outside of one rectangle of it.
class Pen {
 public:
  Pen(Picture& picture, const PixelRect& clip) : mPicture(picture), mClip(clip.Inside(picture.Bounds())) {}

  [[nodiscard]] const PixelRect& Clip() const { return mClip; }
  // The same picture within a part of the rectangle.
  [[nodiscard]] Pen Within(const PixelRect& part) const { return {mPicture, mClip.Inside(part)}; }

  void Fill(const PixelRect& area, Dot dot);
  // Exchanges two colours, and leaves others.
  void Invert(const PixelRect& area, Dot one, Dot other);
  void Set(int x, int y, Dot dot) {
    if (mClip.Holds(x, y)) mPicture.Row(y)[static_cast<std::size_t>(x)] = dot;
  }
  // Rows of bits, the leftmost dot in bit 7 of the first byte of a row; set ones get the colour.
  void Bits(int x, int y, int width, std::span<const std::uint8_t> rows, Dot dot);
  // All dots but the transparent ones.
  void Stamp(int x, int y, const Picture& stamp);

 private:
  Picture& mPicture;
  PixelRect mClip;
};

}  // namespace kv::panel
