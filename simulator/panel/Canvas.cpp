#include "simulator/panel/Canvas.h"

#include "simulator/panel/Fonts.h"

namespace sim {

void Canvas::Write(int x, int y, int font, std::string_view text, Dot colour) {
  const FontReader reader = FontWithId(font);
  for (const char character : text) {
    const Glyph glyph = reader.GlyphOf(character);
    for (int row = 0; row < reader.Height(); ++row) {
      for (int column = 0; column < glyph.width; ++column) {
        const bool isInside = x + column >= 0 && x + column < Width() && y + row >= 0 && y + row < Height();
        if (isInside && glyph.IsSet(column, row)) Mix(x + column, y + row, colour, kWhole);
      }
    }
    x += glyph.width;
  }
}

Picture Canvas::Finish() const {
  Picture picture = mPicture;
  for (int y = 0; y < Height(); ++y) {
    for (int x = 0; x < Width(); ++x) {
      if (mCover[Index(x, y)] == 0) picture.Set(x, y, kTransparent);
    }
  }
  return picture;
}

}  // namespace sim
