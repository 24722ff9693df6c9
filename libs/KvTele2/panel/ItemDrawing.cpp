#include "KvTele2/panel/ItemDrawing.h"

#include <cstdlib>
#include <string>

#include "KvTele2/panel/CellFont.h"
#include "base/AnsiText.h"

namespace kv::panel {
namespace {

// What stands in for an image of which not even the size is known.
constexpr int kMissingWidth = 96;
constexpr int kMissingHeight = 32;
constexpr Dot kMissingDot = kOpaque | 0x808080;

void DrawOutline(Pen& pen, const PixelRect& area, Dot upperLeft, Dot lowerRight) {
  if (area.IsEmpty()) return;
  pen.Fill({area.x, area.y, area.width, 1}, upperLeft);
  pen.Fill({area.x, area.y, 1, area.height}, upperLeft);
  pen.Fill({area.x, area.Bottom() - 1, area.width, 1}, lowerRight);
  pen.Fill({area.Right() - 1, area.y, 1, area.height}, lowerRight);
}

void Draw(Pen& pen, const RectangleItem& item) {
  pen.Fill(item.area, DotOfColour(item.colour));
}

void Draw(Pen& pen, const FrameItem& item) {
  for (int i = 0; i < item.thickness && 2 * i < item.area.width && 2 * i < item.area.height; ++i) {
    const PixelRect ring{item.area.x + i, item.area.y + i, item.area.width - 2 * i, item.area.height - 2 * i};
    DrawOutline(pen, ring, DotOfColour(item.upperLeft), DotOfColour(item.lowerRight));
  }
}

int SignOf(int number) {
  return number > 0 ? 1 : number < 0 ? -1 : 0;
}

void Draw(Pen& pen, const LineItem& item) {
  const int dx = std::abs(item.x2 - item.x1);
  const int dy = std::abs(item.y2 - item.y1);
  const int n = std::max(dx, dy);
  const int sx = SignOf(item.x2 - item.x1);
  const int sy = SignOf(item.y2 - item.y1);
  const Dot dot = DotOfColour(item.colour);
  if (n == 0) return pen.Set(item.x1, item.y1, dot);
  for (int i = 0; i <= n; ++i) {
    pen.Set(item.x1 + sx * ((2 * i * dx + n) / (2 * n)), item.y1 + sy * ((2 * i * dy + n) / (2 * n)), dot);
  }
}

int StartOfLine(const TextItem& item, int lineWidth) {
  if (lineWidth > item.width || item.alignment == Alignment::Left) return item.x;
  const int rest = item.width - lineWidth;
  return item.x + (item.alignment == Alignment::Centre ? rest / 2 : rest);
}

// A character that the font does not have: the outline of a box.
void DrawUnknown(Pen& pen, int x, int y, int height, Dot dot) {
  DrawOutline(pen, {x + 1, y + 1, height / 2 - 2, height - 2}, dot, dot);
}

void DrawInFont(Pen& field, const TextItem& item, const ScreenFont& font) {
  const Dot dot = DotOfColour(item.colour);
  int x = StartOfLine(item, font.WidthOf(item.text));
  for (const char character : item.text) {
    if (const std::optional<Glyph> glyph = font.GlyphOf(character)) {
      field.Bits(x, item.y, glyph->width, glyph->rows, dot);
    } else {
      DrawUnknown(field, x, item.y, font.Height(), dot);
    }
    x += font.WidthOf(character);
  }
}

int HeightOf(const TextItem& item, const ScreenResources& resources) {
  const ScreenFont* font = resources.FontOf(item.font);
  return font != nullptr ? font->Height() : kCellHeight + 2;
}

void DrawDottedFrame(Pen& pen, const PixelRect& area) {
  for (int x = area.x; x < area.Right(); x += 2) {
    pen.Set(x, area.y, kMissingDot);
    pen.Set(x, area.Bottom() - 1, kMissingDot);
  }
  for (int y = area.y; y < area.Bottom(); y += 2) {
    pen.Set(area.x, y, kMissingDot);
    pen.Set(area.Right() - 1, y, kMissingDot);
  }
}

void Draw(Pen& pen, const TextItem& item, const ScreenResources& resources) {
  const PixelRect area{item.x, item.y, item.width, HeightOf(item, resources)};
  Pen field = pen.Within(area);
  if (item.hasBackground) field.Fill(area, DotOfColour(item.background));
  if (const ScreenFont* font = resources.FontOf(item.font)) return DrawInFont(field, item, *font);
  const int start = StartOfLine(item, static_cast<int>(item.text.size()) * kCellWidth);
  DrawCells(field, start, item.y + 1, item.text, DotOfColour(item.colour));
  DrawDottedFrame(field, area);
}

void Draw(Pen& pen, const ImageItem& item, const ScreenResources& resources) {
  if (const Picture* image = resources.ImageOf(item.id)) return pen.Stamp(item.x, item.y, *image);
  const PixelRect area{item.x, item.y, kMissingWidth, kMissingHeight};
  Pen place = pen.Within(area);
  DrawOutline(place, area, kMissingDot, kMissingDot);
  const std::string name = Utf8ToAnsi(resources.NameOf(PanelResourceKind::Image, item.id));
  DrawCells(place, item.x + 4, item.y + (kMissingHeight - kCellHeight) / 2, name, kMissingDot);
}

void Draw(Pen& pen, const BarItem& item) {
  constexpr int kFull = 10000;
  const PixelRect& area = item.area;
  pen.Fill(area, DotOfColour(item.background));
  const int length = (item.growsUpwards ? area.height : area.width) * item.share / kFull;
  const PixelRect upwards{area.x, area.Bottom() - length, area.width, length};
  pen.Fill(item.growsUpwards ? upwards : PixelRect{area.x, area.y, length, area.height}, DotOfColour(item.colour));
}

PixelRect BoundsOfLine(const LineItem& line) {
  const int left = std::min(line.x1, line.x2);
  const int top = std::min(line.y1, line.y2);
  return {left, top, std::abs(line.x2 - line.x1) + 1, std::abs(line.y2 - line.y1) + 1};
}

}  // namespace

PixelRect BoundsOf(const SlotItem& item, const ScreenResources& resources) {
  if (const auto* rectangle = std::get_if<RectangleItem>(&item)) return rectangle->area;
  if (const auto* frame = std::get_if<FrameItem>(&item)) return frame->area;
  if (const auto* bar = std::get_if<BarItem>(&item)) return bar->area;
  if (const auto* line = std::get_if<LineItem>(&item)) return BoundsOfLine(*line);
  if (const auto* text = std::get_if<TextItem>(&item)) {
    return {text->x, text->y, text->width, HeightOf(*text, resources)};
  }
  if (const auto* image = std::get_if<ImageItem>(&item)) {
    const Picture* picture = resources.ImageOf(image->id);
    if (picture == nullptr) return {image->x, image->y, kMissingWidth, kMissingHeight};
    return {image->x, image->y, picture->Width(), picture->Height()};
  }
  return {};
}

void DrawItem(Pen& pen, const SlotItem& item, const ScreenResources& resources) {
  if (const auto* rectangle = std::get_if<RectangleItem>(&item)) return Draw(pen, *rectangle);
  if (const auto* frame = std::get_if<FrameItem>(&item)) return Draw(pen, *frame);
  if (const auto* line = std::get_if<LineItem>(&item)) return Draw(pen, *line);
  if (const auto* text = std::get_if<TextItem>(&item)) return Draw(pen, *text, resources);
  if (const auto* image = std::get_if<ImageItem>(&item)) return Draw(pen, *image, resources);
  if (const auto* bar = std::get_if<BarItem>(&item)) Draw(pen, *bar);
}

}  // namespace kv::panel
