#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

// One dot: red in bits 16 to 23, green in 8 to 15, blue in 0 to 7.
using Dot = std::uint32_t;
inline constexpr Dot kTransparent = 0xFF00FF;  // in an image: not drawn

// A rectangle of dots. What is set outside is lost, what is read there is 0.
class Picture {
 public:
  Picture() = default;
  Picture(int width, int height, Dot dot)
      : mWidth(width),
        mHeight(height),
        mDots(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), dot) {}

  [[nodiscard]] int Width() const { return mWidth; }
  [[nodiscard]] int Height() const { return mHeight; }
  [[nodiscard]] Dot At(int x, int y) const { return IsInside(x, y) ? mDots[Index(x, y)] : 0; }
  void Set(int x, int y, Dot dot) {
    if (IsInside(x, y)) mDots[Index(x, y)] = dot;
  }

 private:
  [[nodiscard]] bool IsInside(int x, int y) const { return x >= 0 && y >= 0 && x < mWidth && y < mHeight; }
  [[nodiscard]] std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) + static_cast<std::size_t>(x);
  }

  int mWidth = 0;
  int mHeight = 0;
  std::vector<Dot> mDots;
};

// A 24-bit Windows bitmap without compression, and back again from one that was written here.
[[nodiscard]] std::string ToBitmap(const Picture& picture);
[[nodiscard]] Picture FromBitmap(std::string_view bytes);

}  // namespace sim
