#include "simulator/panel/Drawing.h"

#include <algorithm>
#include <cstdlib>

#include "simulator/panel/Fonts.h"

namespace sim {
namespace {

Dot DotOf(int colour) {
  const int red = colour >> 11 & 31;
  const int green = colour >> 5 & 63;
  const int blue = colour & 31;
  return static_cast<Dot>((red * 8 + red / 4) << 16 | (green * 4 + green / 16) << 8 | (blue * 8 + blue / 4));
}

// The fields of a body by their offsets.
class Body {
 public:
  explicit Body(std::string_view bytes) : mBytes(bytes) {}
  [[nodiscard]] int Byte(std::size_t at) const { return static_cast<unsigned char>(mBytes[at]); }
  [[nodiscard]] int Word(std::size_t at) const { return Byte(at) | Byte(at + 1) << 8; }
  [[nodiscard]] Box Place() const { return {Word(0), Word(2), Word(4), Word(6)}; }
  [[nodiscard]] Dot ColourAt(std::size_t at) const { return DotOf(Word(at)); }
  [[nodiscard]] std::string_view TextFrom(std::size_t at) const { return mBytes.substr(at); }

 private:
  std::string_view mBytes;
};

void Fill(Picture& picture, const Box& box, Dot dot) {
  const int right = std::min(box.x + box.width, picture.Width());
  const int bottom = std::min(box.y + box.height, picture.Height());
  for (int y = box.y; y < bottom; ++y) {
    for (int x = box.x; x < right; ++x) picture.Set(x, y, dot);
  }
}

void DrawFrame(Picture& picture, const Body& body) {
  const Box outer = body.Place();
  for (int i = 0; i < body.Byte(8) && 2 * i < outer.width && 2 * i < outer.height; ++i) {
    const Box box{outer.x + i, outer.y + i, outer.width - 2 * i, outer.height - 2 * i};
    Fill(picture, {box.x, box.y, box.width, 1}, body.ColourAt(9));
    Fill(picture, {box.x, box.y, 1, box.height}, body.ColourAt(9));
    Fill(picture, {box.x, box.y + box.height - 1, box.width, 1}, body.ColourAt(11));
    Fill(picture, {box.x + box.width - 1, box.y, 1, box.height}, body.ColourAt(11));
  }
}

void DrawLine(Picture& picture, const Body& body) {
  const int dx = std::abs(body.Word(4) - body.Word(0));
  const int dy = std::abs(body.Word(6) - body.Word(2));
  const int signX = body.Word(4) < body.Word(0) ? -1 : 1;
  const int signY = body.Word(6) < body.Word(2) ? -1 : 1;
  const int n = std::max(dx, dy);
  for (int i = 0; i <= n; ++i) {
    const int stepX = n == 0 ? 0 : (2 * i * dx + n) / (2 * n);
    const int stepY = n == 0 ? 0 : (2 * i * dy + n) / (2 * n);
    picture.Set(body.Word(0) + signX * stepX, body.Word(2) + signY * stepY, body.ColourAt(8));
  }
}

// What a font shows for a character that it does not have.
bool IsOnOutline(int x, int y, int width, int height) {
  const bool isInside = x >= 1 && x <= width - 2 && y >= 1 && y <= height - 2;
  return isInside && (x == 1 || x == width - 2 || y == 1 || y == height - 2);
}

void DrawText(Picture& picture, const Body& body) {
  const int left = body.Word(0);
  const int top = body.Word(2);
  const int width = body.Word(4);
  const int style = body.Byte(12);
  const std::string_view text = body.TextFrom(13);
  const FontReader font = FontWithId(body.Word(6));
  const int height = font.Height();
  if ((style & 4) != 0) Fill(picture, {left, top, width, height}, body.ColourAt(10));
  const int spare = width - font.WidthOf(text);
  const auto align = static_cast<Align>(style & 3);
  int x = left;
  if (spare > 0 && align == Align::Centre) x += spare / 2;
  if (spare > 0 && align == Align::Right) x += spare;
  for (const char character : text) {
    const Glyph glyph = font.GlyphOf(character);
    const int wide = glyph.width == 0 ? height / 2 : glyph.width;
    for (int row = 0; row < height; ++row) {
      for (int column = 0; column < wide && x + column < left + width; ++column) {
        const bool isSet = glyph.width == 0 ? IsOnOutline(column, row, wide, height) : glyph.IsSet(column, row);
        if (isSet) picture.Set(x + column, top + row, body.ColourAt(8));
      }
    }
    x += wide;
  }
}

void DrawImage(Picture& picture, const Body& body, const ImageSource& images) {
  const std::string_view bytes = images(static_cast<std::uint16_t>(body.Word(4)));
  if (bytes.empty()) return;
  const Picture image = FromBitmap(bytes);
  for (int y = 0; y < image.Height(); ++y) {
    for (int x = 0; x < image.Width(); ++x) {
      if (image.At(x, y) != kTransparent) picture.Set(body.Word(0) + x, body.Word(2) + y, image.At(x, y));
    }
  }
}

void DrawBar(Picture& picture, const Body& body) {
  const Box box = body.Place();
  Fill(picture, box, body.ColourAt(13));
  const int share = body.Word(9);
  const bool isUpwards = static_cast<Direction>(body.Byte(8)) == Direction::Upwards;
  const int length = (isUpwards ? box.height : box.width) * share / 10000;
  Fill(picture,
       isUpwards ? Box{box.x, box.y + box.height - length, box.width, length} : Box{box.x, box.y, length, box.height},
       body.ColourAt(11));
}

}  // namespace

Picture DrawScreen(const Screen& screen, int width, int height, const ImageSource& images) {
  Picture picture(width, height, screen.At(0).kind == RecordKind::Page ? Body(screen.At(0).body).ColourAt(2) : 0);
  for (std::size_t slot = Screen::kFirstOfPage; slot < Screen::kSlots; ++slot) {
    const Body body(screen.At(slot).body);
    switch (screen.At(slot).kind) {
      case RecordKind::Rectangle:
        Fill(picture, body.Place(), body.ColourAt(8));
        break;
      case RecordKind::Frame:
        DrawFrame(picture, body);
        break;
      case RecordKind::Line:
        DrawLine(picture, body);
        break;
      case RecordKind::Text:
        DrawText(picture, body);
        break;
      case RecordKind::Image:
        DrawImage(picture, body, images);
        break;
      case RecordKind::Bar:
        DrawBar(picture, body);
        break;
      default:
        break;  // draws nothing
    }
  }
  return picture;
}

}  // namespace sim
