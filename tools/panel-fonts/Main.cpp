// Makes the fonts of the simulated panels (simulator/panel/fonts) from a TrueType font: panel_fonts FONT ROWS FILE.
// Run by hand when a size is wanted that is not there; what it wrote is kept with the sources.
//
//   panel_fonts DejaVuSans.ttf 16 simulator/panel/fonts/sans16.kfnt

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr int kFirst = 0x20;
constexpr int kCount = 0x100 - kFirst;

// The letters of Windows-1252 that do not have their number in Unicode; 0: there is none.
constexpr std::array<FT_ULong, 32> kHighLetters = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                   0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

FT_ULong LetterOf(int character) {
  const bool isHigh = character >= 0x80 && character < 0xA0;
  return isHigh ? kHighLetters[static_cast<std::size_t>(character - 0x80)] : static_cast<FT_ULong>(character);
}

bool IsThere(int character) {
  const FT_ULong letter = LetterOf(character);
  return letter != 0 && letter != 0x81;
}

struct Extent {
  int above = 0;  // rows over the base line
  int below = 0;
};

bool Load(FT_Face face, int character) {
  return FT_Load_Char(face, LetterOf(character), FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) == 0;
}

Extent ExtentAt(FT_Face face, int size) {
  Extent extent;
  FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size));
  for (int character = kFirst; character < kFirst + kCount; ++character) {
    if (!IsThere(character) || !Load(face, character)) continue;
    extent.above = std::max(extent.above, face->glyph->bitmap_top);
    extent.below = std::max(extent.below, static_cast<int>(face->glyph->bitmap.rows) - face->glyph->bitmap_top);
  }
  return extent;
}

// One character in `rows` rows of (width + 7) / 8 bytes; a part that stands out at a side is moved in.
std::string Dots(const FT_GlyphSlot glyph, int width, int rows, int base) {
  const int stride = (width + 7) / 8;
  std::string dots(static_cast<std::size_t>(stride * rows), '\0');
  const FT_Bitmap& bitmap = glyph->bitmap;
  const int left = std::clamp(glyph->bitmap_left, 0, std::max(0, width - static_cast<int>(bitmap.width)));
  for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
    const int y = base - glyph->bitmap_top + row;
    for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
      const bool isSet = (bitmap.buffer[row * bitmap.pitch + column / 8] & 0x80 >> column % 8) != 0;
      const int x = left + column;
      if (!isSet || x >= width || y < 0 || y >= rows) continue;
      char& byte = dots[static_cast<std::size_t>(y * stride + x / 8)];
      byte = static_cast<char>(byte | 0x80 >> x % 8);
    }
  }
  return dots;
}

std::string MakeFont(FT_Face face, int rows) {
  int size = rows;
  Extent extent = ExtentAt(face, size);
  while (extent.above + extent.below > rows) extent = ExtentAt(face, --size);
  const int base = rows - extent.below;
  std::string font = "KFNT";
  for (const int byte : {2, rows, base, kFirst, kCount % 256, kCount / 256}) font += static_cast<char>(byte);
  std::string characters;
  for (int character = kFirst; character < kFirst + kCount; ++character) {
    const bool isThere = IsThere(character) && Load(face, character);
    const auto width = isThere ? static_cast<int>(face->glyph->advance.x >> 6) : 0;
    font += static_cast<char>(width);
    if (width > 0) characters += Dots(face->glyph, width, rows, base);
  }
  return font + characters;
}

}  // namespace

int main(int argc, char** argv) {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  if (argc != 4 || FT_Init_FreeType(&library) != 0 || FT_New_Face(library, argv[1], 0, &face) != 0) {
    std::cerr << "panel_fonts FONT ROWS FILE: the font cannot be read\n";
    return 1;
  }
  std::ofstream(argv[3], std::ios::binary) << MakeFont(face, std::atoi(argv[2]));
  FT_Done_FreeType(library);
  return 0;
}
