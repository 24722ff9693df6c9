#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/panel/Layout.h"
#include "simulator/panel/ScreenRecords.h"

namespace sim {

// What pressing something does; `argument` says to which page, value, digit or switch.
enum class Command : std::uint8_t {
  None,
  Start,
  Stop,
  Acknowledge,
  NewBatch,
  ToggleRefill,
  Jog,  // argument: the bit that is 1 while it is held
  ShowPage,
  EditValue,
  Digit,
  DeleteDigit,
  Confirm,
  Cancel,
  NextValue,
  PreviousValue,
};

struct Order {
  Command command = Command::None;
  int argument = 0;

  friend bool operator==(const Order&, const Order&) = default;
};

// Something that can be pressed.
struct Control {
  Role role = Role::Once;
  std::uint8_t state = 0;
  std::string name;
  Order order;
};

// What a page of a colour display shows, in the order in which it is drawn; each piece has a slot of its own. A piece
// that comes and goes keeps its slot with Nothing(), so that those behind it stay what they are.
struct PageContent {
  struct Piece {
    RecordKind kind = RecordKind::Nothing;
    std::string body;
  };
  struct Area {
    std::size_t piece;  // its place in `pieces`
    Box box;
    Control control;
  };

  std::uint16_t number = 0;
  std::string name;
  Colour background = 0;
  std::vector<Piece> pieces;
  std::vector<Area> areas;
};

// Writes a page. Places are those of Layout, 800 x 480.
class PageBuilder {
 public:
  using Size = Layout::TextSize;

  PageBuilder(const Layout& layout, std::uint16_t number, std::string_view name, Colour background);

  void Rectangle(const Box& box, Colour colour);
  void Frame(const Box& box, Colour upperLeft, Colour lowerRight);
  void Line(int x1, int y1, int x2, int y2, Colour colour);
  // A text in the middle of the box's height.
  void Text(const Box& box, Size size, std::string_view text, Colour colour, Align align = Align::Left);
  void Image(int x, int y, int id);
  void Bar(const Box& box, Direction direction, int share, Colour colour, Colour ground);
  void Area(const Box& box, Control control);
  void Nothing(int pieces = 1);

  // From here on until EndDrawing, boxes are parts of a drawing of this size that stands in the middle of `box` and
  // keeps its shape on every display.
  void BeginDrawing(const Box& box, int width, int height);
  void EndDrawing() { mDrawing.reset(); }

  // A flat button: ground, text, area. A held one has an edge, so that it looks like something to hold.
  void Button(const Box& box, Colour colour, const Control& control);
  void HoldButton(const Box& box, const Control& control);

  [[nodiscard]] PageContent Take() { return std::move(mContent); }

 private:
  void Add(RecordKind kind, std::string body) { mContent.pieces.push_back({kind, std::move(body)}); }
  [[nodiscard]] Box Place(const Box& box) const;

  const Layout& mLayout;
  std::optional<Box> mDrawing;  // where a drawing begins, in dots
  PageContent mContent;
};

}  // namespace sim
