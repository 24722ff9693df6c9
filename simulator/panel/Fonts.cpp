#include "simulator/panel/Fonts.h"

#include <array>

#include "simulator/panel/FontData.h"

namespace sim {
namespace {

constexpr std::size_t kWidthsAt = 10;
constexpr int kMissingShare = 2;  // of the height: how wide a character is that the font does not have

int ByteAt(std::string_view data, std::size_t place) {
  return static_cast<unsigned char>(data[place]);
}

}  // namespace

std::span<const PanelFont> PanelFonts() {
  static const std::array<PanelFont, kFontFiles> fonts = {{{1, "Sans 12", FontFile(0)},
                                                           {2, "Sans 16", FontFile(1)},
                                                           {3, "Sans Bold 24", FontFile(2)},
                                                           {4, "Sans Bold 32", FontFile(3)}}};
  return fonts;
}

Glyph FontReader::GlyphOf(char character) const {
  const int first = ByteAt(mData, 7);
  const int count = ByteAt(mData, 8) | ByteAt(mData, 9) << 8;
  const int wanted = static_cast<unsigned char>(character) - first;
  if (wanted < 0 || wanted >= count) return {};
  std::size_t place = kWidthsAt + static_cast<std::size_t>(count);
  const auto size = [this](int index) {
    return static_cast<std::size_t>((ByteAt(mData, kWidthsAt + static_cast<std::size_t>(index)) + 7) / 8 * Height());
  };
  for (int index = 0; index < wanted; ++index) place += size(index);
  return {ByteAt(mData, kWidthsAt + static_cast<std::size_t>(wanted)), mData.substr(place, size(wanted))};
}

int FontReader::WidthOf(std::string_view text) const {
  int width = 0;
  for (const char character : text) {
    const Glyph glyph = GlyphOf(character);
    width += glyph.width == 0 ? Height() / kMissingShare : glyph.width;
  }
  return width;
}

FontReader FontWithId(int id) {
  return FontReader(PanelFonts()[static_cast<std::size_t>(id - 1)].data);
}

}  // namespace sim
