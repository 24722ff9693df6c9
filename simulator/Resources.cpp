#include "simulator/Resources.h"

#include <algorithm>
#include <array>

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kNameSize = 32;
constexpr std::uint32_t kLargestPiece = 4096;

using Colour = std::array<std::uint8_t, 3>;  // blue, green, red

// A square of `size` dots (a multiple of 4, so that rows need no filling): a frame around a disc on a shaded ground.
std::string Picture(int size, Colour disc) {
  const auto dots = static_cast<std::uint32_t>(size);
  std::string bmp = "BM";
  AppendLittle(bmp, 54 + dots * dots * 3, 4);
  AppendLittle(bmp, 0, 4);
  AppendLittle(bmp, 54, 4);  // where the dots begin
  AppendLittle(bmp, 40, 4);  // size of the head that follows
  AppendLittle(bmp, dots, 4);
  AppendLittle(bmp, dots, 4);
  AppendLittle(bmp, 1, 2);   // planes
  AppendLittle(bmp, 24, 2);  // bits a dot
  AppendLittle(bmp, 0, 4);   // not compressed
  AppendLittle(bmp, dots * dots * 3, 4);
  AppendLittle(bmp, 2835, 4);  // 72 dots an inch
  AppendLittle(bmp, 2835, 4);
  AppendLittle(bmp, 0, 4);
  AppendLittle(bmp, 0, 4);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const int dx = 2 * x - size + 1;
      const int dy = 2 * y - size + 1;
      const bool isFrame = x == 0 || y == 0 || x == size - 1 || y == size - 1;
      const bool isDisc = 4 * (dx * dx + dy * dy) <= 3 * size * size;
      const auto shade = static_cast<std::uint8_t>(160 + 80 * y / size);
      const Colour colour = isFrame ? Colour{0, 0, 0} : isDisc ? disc : Colour{shade, shade, shade};
      for (const std::uint8_t part : colour) bmp += static_cast<char>(part);
    }
  }
  return bmp;
}

// Digits as seven bars: top, upper right, lower right, bottom, lower left, upper left, middle in bits 0 to 6.
constexpr std::array<std::uint8_t, 10> kBars = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

std::string DigitRow(std::uint8_t bars, int y, int height) {
  const int middle = height / 2;
  const bool upper = y < middle;
  const std::uint8_t across = y == 1 ? bars & 0x01 : y == middle ? bars & 0x40 : y == height - 2 ? bars & 0x08 : 0;
  const std::uint8_t left = bars & (upper ? 0x20 : 0x10);
  const std::uint8_t right = bars & (upper ? 0x02 : 0x04);
  const bool isInside = y > 0 && y < height - 1;
  const int dots = (across != 0 ? 0x7C : 0) | (left != 0 ? 0x40 : 0) | (right != 0 ? 0x04 : 0);
  return {isInside ? static_cast<char>(dots) : '\0'};
}

std::string DigitFont(int height) {
  std::string font = "KFNT";
  AppendLittle(font, 8, 1);
  AppendLittle(font, static_cast<std::uint32_t>(height), 1);
  AppendLittle(font, '0', 1);
  AppendLittle(font, static_cast<std::uint32_t>(kBars.size()), 1);
  for (const std::uint8_t bars : kBars) {
    for (int y = 0; y < height; ++y) font += DigitRow(bars, y, height);
  }
  return font;
}

}  // namespace

Resources::Resources()
    : mFonts{{1, "Digits 8x12", DigitFont(12)}, {2, "Digits 8x20", DigitFont(20)}},
      mImages{{1, "Lamp off", Picture(16, {64, 64, 64})},
              {2, "Lamp on", Picture(16, {64, 220, 64})},
              {7, "Alarm", Picture(48, {40, 40, 230})}} {}  // the last one takes two pieces

Result<std::string> Resources::Directory(std::uint16_t kind) const {
  const auto resources = Of(kind);
  if (!resources) return Refuse(resources.error());
  std::string directory;
  AppendLittle(directory, static_cast<std::uint32_t>((*resources)->size()), 2);
  for (const Resource& resource : **resources) {
    AppendLittle(directory, resource.id, 2);
    AppendLittle(directory, static_cast<std::uint32_t>(resource.data.size()), 4);
    directory += resource.name;
    directory.append(kNameSize - resource.name.size(), '\0');
  }
  return directory;
}

Result<std::string> Resources::Piece(std::uint16_t kind, std::uint16_t id, std::uint32_t offset,
                                     std::uint32_t length) const {
  const auto resources = Of(kind);
  if (!resources) return Refuse(resources.error());
  if (length == 0 || length > kLargestPiece) return Refuse(Refusal::PastTheEnd);
  const auto resource = std::ranges::find(**resources, id, &Resource::id);
  if (resource == (*resources)->end()) return Refuse(Refusal::OutsideMemory);
  const std::string& data = resource->data;
  if (offset > data.size() || length > data.size() - offset) return Refuse(Refusal::OutsideMemory);
  return data.substr(offset, length);
}

Result<const std::vector<Resource>*> Resources::Of(std::uint16_t kind) const {
  if (kind == static_cast<std::uint16_t>(ResourceKind::Fonts)) return &mFonts;
  if (kind == static_cast<std::uint16_t>(ResourceKind::Images)) return &mImages;
  return Refuse(Refusal::Malformed);
}

}  // namespace sim
