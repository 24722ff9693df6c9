#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace sim {

// A font of a panel, in the form that a host reads it in (docs/controller-protocol.md, section 10).
struct PanelFont {
  std::uint16_t id;
  std::string_view name;
  std::string_view data;
};

// The fonts of every colour panel, from the smallest on; their ids are their places from 1 on.
[[nodiscard]] std::span<const PanelFont> PanelFonts();

// One character of a font. Rows of (width + 7) / 8 bytes, the leftmost dot in bit 7 of the first.
struct Glyph {
  int width = 0;  // 0: the font does not have it
  std::string_view rows;

  [[nodiscard]] bool IsSet(int x, int y) const {
    const int stride = (width + 7) / 8;
    return (rows[static_cast<std::size_t>(y * stride + x / 8)] & 0x80 >> x % 8) != 0;
  }
};

// Reads a font of our own; its data are right.
class FontReader {
 public:
  explicit FontReader(std::string_view data) : mData(data) {}

  [[nodiscard]] int Height() const { return static_cast<unsigned char>(mData[5]); }
  [[nodiscard]] Glyph GlyphOf(char character) const;
  [[nodiscard]] int WidthOf(std::string_view text) const;

 private:
  std::string_view mData;
};

// The font with that id; id must be one.
[[nodiscard]] FontReader FontWithId(int id);

}  // namespace sim
