#include "KvTele2/panel/Picture.h"

namespace kv::panel {

void Pen::Fill(const PixelRect& area, Dot dot) {
  const PixelRect part = area.Inside(mClip);
  if (part.IsEmpty()) return;
  for (int y = part.y; y < part.Bottom(); ++y) {
    std::ranges::fill(mPicture.Row(y).subspan(static_cast<std::size_t>(part.x), static_cast<std::size_t>(part.width)),
                      dot);
  }
}

void Pen::Invert(const PixelRect& area, Dot one, Dot other) {
  const PixelRect part = area.Inside(mClip);
  for (int y = part.y; y < part.Bottom(); ++y) {
    for (int x = part.x; x < part.Right(); ++x) {
      Dot& dot = mPicture.Row(y)[static_cast<std::size_t>(x)];
      if (dot == one) {
        dot = other;
      } else if (dot == other) {
        dot = one;
      }
    }
  }
}

void Pen::Bits(int x, int y, int width, std::span<const std::uint8_t> rows, Dot dot) {
  if (width <= 0) return;
  const int bytes = (width + 7) / 8;
  const int height = static_cast<int>(rows.size()) / bytes;
  const PixelRect part = PixelRect{x, y, width, height}.Inside(mClip);
  for (int row = part.y; row < part.Bottom(); ++row) {
    const auto line = rows.subspan(static_cast<std::size_t>((row - y) * bytes), static_cast<std::size_t>(bytes));
    const std::span<Dot> dots = mPicture.Row(row);
    for (int column = part.x; column < part.Right(); ++column) {
      const auto at = static_cast<unsigned>(column - x);
      if ((line[at / 8] >> (7 - at % 8) & 1U) != 0) dots[static_cast<std::size_t>(column)] = dot;
    }
  }
}

void Pen::Stamp(int x, int y, const Picture& stamp) {
  const PixelRect part = PixelRect{x, y, stamp.Width(), stamp.Height()}.Inside(mClip);
  for (int row = part.y; row < part.Bottom(); ++row) {
    const std::span<const Dot> from = stamp.Row(row - y);
    const std::span<Dot> to = mPicture.Row(row);
    for (int column = part.x; column < part.Right(); ++column) {
      const Dot dot = from[static_cast<std::size_t>(column - x)];
      if (dot != kTransparent) to[static_cast<std::size_t>(column)] = dot;
    }
  }
}

}  // namespace kv::panel
