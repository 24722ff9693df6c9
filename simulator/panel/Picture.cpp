#include "simulator/panel/Picture.h"

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kHeadSize = 54;  // of the file and of the picture
constexpr std::uint32_t kDotsAMetre = 2835;
constexpr std::size_t kWidthAt = 18;
constexpr std::size_t kHeightAt = 22;

std::size_t RowSize(int width) {
  return (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
}

}  // namespace

std::string ToBitmap(const Picture& picture) {
  const std::size_t dots = RowSize(picture.Width()) * static_cast<std::size_t>(picture.Height());
  std::string bytes = "BM";
  AppendLittle(bytes, static_cast<std::uint32_t>(kHeadSize + dots), 4);
  AppendLittle(bytes, 0, 4);
  AppendLittle(bytes, kHeadSize, 4);
  AppendLittle(bytes, 40, 4);  // size of the head that follows
  AppendLittle(bytes, static_cast<std::uint32_t>(picture.Width()), 4);
  AppendLittle(bytes, static_cast<std::uint32_t>(picture.Height()), 4);
  AppendLittle(bytes, 1, 2);   // planes
  AppendLittle(bytes, 24, 2);  // bits a dot
  AppendLittle(bytes, 0, 4);   // not compressed
  AppendLittle(bytes, static_cast<std::uint32_t>(dots), 4);
  AppendLittle(bytes, kDotsAMetre, 4);
  AppendLittle(bytes, kDotsAMetre, 4);
  AppendLittle(bytes, 0, 4);
  AppendLittle(bytes, 0, 4);
  for (int y = picture.Height(); y-- > 0;) {  // the lowest row first
    const std::size_t row = bytes.size();
    for (int x = 0; x < picture.Width(); ++x) AppendLittle(bytes, picture.At(x, y), 3);
    bytes.resize(row + RowSize(picture.Width()), '\0');
  }
  return bytes;
}

Picture FromBitmap(std::string_view bytes) {
  const auto width = static_cast<int>(LittleAt(bytes, kWidthAt));
  const auto height = static_cast<int>(LittleAt(bytes, kHeightAt));
  Picture picture(width, height, 0);
  for (int y = 0; y < height; ++y) {
    const std::size_t row = kHeadSize + RowSize(width) * static_cast<std::size_t>(height - 1 - y);
    for (int x = 0; x < width; ++x) {
      const std::size_t at = row + static_cast<std::size_t>(x) * 3;
      const auto part = [&](std::size_t k) { return static_cast<Dot>(static_cast<unsigned char>(bytes[at + k])); };
      picture.Set(x, y, part(0) | part(1) << 8 | part(2) << 16);
    }
  }
  return picture;
}

}  // namespace sim
