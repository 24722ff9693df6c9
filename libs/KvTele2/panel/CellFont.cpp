#include "KvTele2/panel/CellFont.h"

#include "KvTele2/panel/CellFontData.h"

namespace kv::panel {

Glyph CellGlyph(char character) {
  const auto start = static_cast<std::size_t>(static_cast<unsigned char>(character)) * kCellHeight;
  return {kCellWidth, std::span(kCellDots).subspan(start, kCellHeight)};
}

void DrawCells(Pen& pen, int x, int y, std::string_view text, Dot dot) {
  for (const char character : text) {
    pen.Bits(x, y, kCellWidth, CellGlyph(character).rows, dot);
    x += kCellWidth;
  }
}

}  // namespace kv::panel
