#pragma once

#include <cstddef>
#include <string_view>

#include "KvTele2/panel/Picture.h"
#include "KvTele2/panel/ScreenFont.h"

namespace kv::panel {

// The font of text displays, and of what is drawn in place of something that is missing: every character of
// Windows-1252 in a cell of one size.
inline constexpr int kCellWidth = 8;
inline constexpr int kCellHeight = 16;

[[nodiscard]] Glyph CellGlyph(char character);
// One line of Windows-1252 text.
void DrawCells(Pen& pen, int x, int y, std::string_view text, Dot dot);

}  // namespace kv::panel
