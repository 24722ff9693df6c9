#include "KvTele2/panel/ScreenItems.h"

#include <algorithm>
#include <string_view>

#include "base/FieldsOfBytes.h"

namespace kv::panel {
namespace {

constexpr std::size_t kLongestPageName = 40;
constexpr std::size_t kLongestText = 60;
constexpr std::uint16_t kMostCoordinate = 4095;
constexpr std::uint16_t kFullBar = 10000;
constexpr std::size_t kMostLampBytes = 10;

// Kinds of records, as they travel.
enum Kind : std::uint8_t {
  kNothing = 0,
  kPage = 1,
  kOperator = 2,
  kRow = 3,
  kCursor = 4,
  kLamps = 5,
  kTouch = 6,
  kRectangle = 16,
  kFrame = 17,
  kLine = 18,
  kText = 19,
  kImage = 20,
  kBar = 21,
};

// The fields of a record's body.
class BodyReader : public FieldsOfBytes {
 public:
  using FieldsOfBytes::FieldsOfBytes;

  int Coordinate() {
    const std::uint16_t value = Word();
    Require(value <= kMostCoordinate);
    return value;
  }
  PixelRect Area() {
    PixelRect area;
    area.x = Coordinate();
    area.y = Coordinate();
    area.width = Coordinate();
    area.height = Coordinate();
    return area;
  }
  std::string Rest(std::size_t most) {
    Require(Left() <= most);
    return std::string(Take(std::min(Left(), most)));
  }
  [[nodiscard]] bool IsWhole() const { return Good() && Left() == 0; }
};

PageItem TakePage(BodyReader& body, bool isText) {
  PageItem page;
  page.number = body.Word();
  page.background = body.Word();
  page.name = body.Rest(kLongestPageName);
  body.Require(!isText || page.background == 0);
  return page;
}

RowItem TakeRow(BodyReader& body, std::size_t columns) {
  constexpr unsigned kNibble = 4;
  RowItem row;
  row.characters = body.Take(columns);
  row.attributes.resize(columns);
  for (std::size_t column = 0; column < columns; column += 2) {
    const unsigned pair = body.Byte();
    const bool isPair = column + 1 < columns;
    body.Require((pair & 0x88U) == 0 && (isPair || pair >> kNibble == 0));
    for (std::size_t i = 0; i < (isPair ? 2U : 1U); ++i) {
      const unsigned bits = pair >> (kNibble * i);
      row.attributes[column + i] = {(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0};
    }
  }
  return row;
}

CursorItem TakeCursor(BodyReader& body, const PanelDescription& panel) {
  CursorItem cursor;
  cursor.column = body.Byte();
  cursor.row = body.Byte();
  const std::uint8_t form = body.Byte();
  body.Require(form <= static_cast<std::uint8_t>(CursorItem::Form::Block));
  body.Require(form == 0 || (cursor.column < panel.width && cursor.row < panel.height));
  cursor.form = static_cast<CursorItem::Form>(form);
  return cursor;
}

LampsItem TakeLamps(BodyReader& body) {
  LampsItem lamps;
  for (const char byte : body.Rest(kMostLampBytes)) {
    for (unsigned shift = 0; shift < 8; shift += 2) {
      const unsigned state = static_cast<unsigned char>(byte) >> shift & 3U;
      body.Require(state <= static_cast<unsigned>(Lamp::Blinking));
      lamps.lamps.push_back(static_cast<Lamp>(state));
    }
  }
  return lamps;
}

TouchItem TakeTouch(BodyReader& body, bool isKey) {
  TouchItem touch;
  touch.area = body.Area();
  const std::uint8_t role = body.Byte();
  const unsigned state = body.Byte();
  touch.name = body.Rest(kLongestText);
  body.Require(role >= 1 && role <= static_cast<std::uint8_t>(TouchRole::PageLink) && state < 8);
  body.Require(!isKey || touch.area == PixelRect{});
  touch.role = static_cast<TouchRole>(role);
  touch.isOn = (state & 1U) != 0;
  touch.isDisabled = (state & 2U) != 0;
  touch.isPressed = (state & 4U) != 0;
  return touch;
}

FrameItem TakeFrame(BodyReader& body) {
  FrameItem frame;
  frame.area = body.Area();
  frame.thickness = body.Byte();
  frame.upperLeft = body.Word();
  frame.lowerRight = body.Word();
  return frame;
}

LineItem TakeLine(BodyReader& body) {
  LineItem line;
  line.x1 = body.Coordinate();
  line.y1 = body.Coordinate();
  line.x2 = body.Coordinate();
  line.y2 = body.Coordinate();
  line.colour = body.Word();
  return line;
}

TextItem TakeText(BodyReader& body) {
  TextItem text;
  text.x = body.Coordinate();
  text.y = body.Coordinate();
  text.width = body.Coordinate();
  text.font = body.Word();
  text.colour = body.Word();
  text.background = body.Word();
  const unsigned style = body.Byte();
  body.Require(style < 8 && (style & 3U) <= static_cast<unsigned>(Alignment::Right));
  text.alignment = static_cast<Alignment>(style & 3U);
  text.hasBackground = (style & 4U) != 0;
  text.text = body.Rest(kLongestText);
  return text;
}

BarItem TakeBar(BodyReader& body) {
  BarItem bar;
  bar.area = body.Area();
  const std::uint8_t direction = body.Byte();
  bar.growsUpwards = direction == 1;
  bar.share = body.Word();
  bar.colour = body.Word();
  bar.background = body.Word();
  body.Require(direction <= 1 && bar.share <= kFullBar);
  return bar;
}

// Of a colour display, from kFirstItemSlot on.
std::optional<SlotItem> TakeColourItem(std::uint8_t kind, BodyReader& body) {
  switch (kind) {
    case kTouch:
      return TakeTouch(body, false);
    case kRectangle: {
      RectangleItem rectangle;
      rectangle.area = body.Area();
      rectangle.colour = body.Word();
      return rectangle;
    }
    case kFrame:
      return TakeFrame(body);
    case kLine:
      return TakeLine(body);
    case kText:
      return TakeText(body);
    case kImage: {
      ImageItem image;
      image.x = body.Coordinate();
      image.y = body.Coordinate();
      image.id = body.Word();
      return image;
    }
    case kBar:
      return TakeBar(body);
    default:
      return std::nullopt;
  }
}

bool HasKey(const PanelDescription& panel, std::uint16_t id) {
  return std::ranges::any_of(panel.keys, [id](const PanelKey& key) { return key.id == id; });
}

// Of a text display, behind the page and the operator.
std::optional<SlotItem> TakeTextItem(const PanelRecord& record, const PanelDescription& panel, BodyReader& body) {
  const std::uint16_t slot = record.slot;
  if (slot == kCursorSlot && record.kind == kCursor) return TakeCursor(body, panel);
  if (slot == kLampsSlot && record.kind == kLamps) return TakeLamps(body);
  const bool isRow = slot >= kFirstRowSlot && slot < kFirstRowSlot + panel.height;
  if (isRow && record.kind == kRow) return TakeRow(body, panel.width);
  const bool isKey = slot >= kFirstKeySlot && HasKey(panel, static_cast<std::uint16_t>(slot - kFirstKeySlot));
  if (isKey && record.kind == kTouch) return TakeTouch(body, true);
  return std::nullopt;
}

std::optional<SlotItem> TakeItem(const PanelRecord& record, const PanelDescription& panel, BodyReader& body) {
  const bool isText = panel.kind == PanelKind::Text;
  if (record.slot == kPageSlot) {
    if (record.kind != kPage) return std::nullopt;
    return TakePage(body, isText);
  }
  if (record.kind == kNothing) return SlotItem{};
  if (record.slot == kOperatorSlot) {
    if (record.kind != kOperator) return std::nullopt;
    return OperatorItem{body.Rest(kLongestOperator)};
  }
  if (isText) return TakeTextItem(record, panel, body);
  return record.slot >= kFirstItemSlot ? TakeColourItem(record.kind, body) : std::nullopt;
}

}  // namespace

std::optional<SlotItem> ReadItem(const PanelRecord& record, const PanelDescription& panel) {
  BodyReader body(record.body);
  std::optional<SlotItem> item = TakeItem(record, panel, body);
  return item && body.IsWhole() ? std::move(item) : std::nullopt;
}

}  // namespace kv::panel
