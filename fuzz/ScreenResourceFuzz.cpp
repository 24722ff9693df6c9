#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KvTele2/panel/ScreenFont.h"
#include "fuzz/Require.h"

// Fonts and images of a screen: what is taken can be drawn whole.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kv::panel;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto font = ScreenFont::Parse(bytes)) {
    Picture picture(70, 70, kOpaque);
    Pen pen(picture, picture.Bounds());
    for (int character = 0; character < 256; ++character) {
      const auto glyph = font->GlyphOf(static_cast<char>(character));
      Require(font->WidthOf(static_cast<char>(character)) > 0, "a character has a width");
      if (!glyph) continue;
      Require(glyph->rows.size() == static_cast<std::size_t>((glyph->width + 7) / 8 * font->Height()),
              "a character has all its rows");
      pen.Bits(3, 3, glyph->width, glyph->rows, kOpaque | 0xFFFFFF);
    }
  }
  if (const auto image = ParseScreenImage(bytes)) {
    Require(image->Width() >= 1 && image->Height() >= 1, "an image has dots");
    Require(size * 2 > image->Dots().size(), "an image is no larger than its bytes");
    Picture picture(8, 8, kOpaque);
    Pen pen(picture, picture.Bounds());
    pen.Stamp(-1, 2, *image);
  }
  return 0;
}
