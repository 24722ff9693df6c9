#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "KvTele2/panel/Picture.h"
#include "link/PanelLink.h"

namespace kv::panel {

// What the slots of a screen hold. Texts are Windows-1252; colours are those of DotOfColour.

struct PageItem {
  std::uint16_t number = 0;
  std::uint16_t background = 0;
  std::string name;
  bool operator==(const PageItem&) const = default;
};

struct OperatorItem {
  std::string name;  // of who has the lease; empty: nobody
  bool operator==(const OperatorItem&) const = default;
};

struct CellAttributes {
  bool isInverse = false;
  bool isBlinking = false;
  bool isUnderlined = false;
  bool operator==(const CellAttributes&) const = default;
};

// Row of a text display: as many characters as the display has columns.
struct RowItem {
  std::string characters;
  std::vector<CellAttributes> attributes;
  bool operator==(const RowItem&) const = default;
};

struct CursorItem {
  enum class Form : std::uint8_t { None, Underline, Block };
  int column = 0;
  int row = 0;
  Form form = Form::None;
  bool operator==(const CursorItem&) const = default;
};

enum class Lamp : std::uint8_t { Off, On, Blinking };

struct LampsItem {
  std::vector<Lamp> lamps;
  bool operator==(const LampsItem&) const = default;
};

enum class TouchRole : std::uint8_t { Button = 1, HeldButton = 2, Switch = 3, Entry = 4, PageLink = 5 };

// Where a colour display can be touched, or what a key beside a text display means on this page.
struct TouchItem {
  PixelRect area;  // empty for a key
  TouchRole role = TouchRole::Button;
  bool isOn = false;
  bool isDisabled = false;
  bool isPressed = false;
  std::string name;
  bool operator==(const TouchItem&) const = default;
  // The same thing to who presses it; whether it looks pressed at the moment makes no other one of it.
  [[nodiscard]] bool IsSameTarget(const TouchItem& other) const {
    return area == other.area && role == other.role && isOn == other.isOn && isDisabled == other.isDisabled &&
           name == other.name;
  }
};

struct RectangleItem {
  PixelRect area;
  std::uint16_t colour = 0;
  bool operator==(const RectangleItem&) const = default;
};

struct FrameItem {
  PixelRect area;
  int thickness = 0;
  std::uint16_t upperLeft = 0;
  std::uint16_t lowerRight = 0;
  bool operator==(const FrameItem&) const = default;
};

struct LineItem {
  int x1 = 0;
  int y1 = 0;
  int x2 = 0;
  int y2 = 0;
  std::uint16_t colour = 0;
  bool operator==(const LineItem&) const = default;
};

enum class Alignment : std::uint8_t { Left, Centre, Right };

struct TextItem {
  int x = 0;
  int y = 0;
  int width = 0;
  std::uint16_t font = 0;
  std::uint16_t colour = 0;
  std::uint16_t background = 0;
  Alignment alignment = Alignment::Left;
  bool hasBackground = false;
  std::string text;
  bool operator==(const TextItem&) const = default;
};

struct ImageItem {
  int x = 0;
  int y = 0;
  std::uint16_t id = 0;
  bool operator==(const ImageItem&) const = default;
};

struct BarItem {
  PixelRect area;
  bool growsUpwards = false;  // else to the right
  int share = 0;              // ten thousandths, at most 10000
  std::uint16_t colour = 0;
  std::uint16_t background = 0;
  bool operator==(const BarItem&) const = default;
};

// std::monostate: the slot is empty.
using SlotItem = std::variant<std::monostate, PageItem, OperatorItem, RowItem, CursorItem, LampsItem, TouchItem,
                              RectangleItem, FrameItem, LineItem, TextItem, ImageItem, BarItem>;

// Which slots there are.
inline constexpr std::uint16_t kPageSlot = 0;
inline constexpr std::uint16_t kOperatorSlot = 1;
inline constexpr std::uint16_t kCursorSlot = 2;
inline constexpr std::uint16_t kLampsSlot = 3;
inline constexpr std::uint16_t kFirstSlotOfPage = 16;  // these and all behind are emptied with a change of page
inline constexpr std::uint16_t kFirstRowSlot = 16;
inline constexpr std::uint16_t kFirstKeySlot = 32;
inline constexpr std::uint16_t kFirstItemSlot = 64;  // of a colour display

// The item of a record. Nothing: the record does not keep to what a display of this kind and size can have in its slot.
[[nodiscard]] std::optional<SlotItem> ReadItem(const PanelRecord& record, const PanelDescription& panel);

}  // namespace kv::panel
