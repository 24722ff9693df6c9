#include "simulator/panel/PageBuilder.h"

#include <algorithm>
#include <utility>

#include "simulator/panel/Fonts.h"
#include "simulator/panel/Theme.h"

namespace sim {

PageBuilder::PageBuilder(const Layout& layout, std::uint16_t number, std::string_view name, Colour background)
    : mLayout(layout) {
  mContent.number = number;
  mContent.name = name;
  mContent.background = background;
}

void PageBuilder::BeginDrawing(const Box& box, int width, int height) {
  const Box area = mLayout.Place(box);
  mDrawing =
      Box{area.x + (area.width - mLayout.Length(width)) / 2, area.y + (area.height - mLayout.Length(height)) / 2};
}

Box PageBuilder::Place(const Box& box) const {
  if (!mDrawing) return mLayout.Place(box);
  const int left = mLayout.Length(box.x);
  const int top = mLayout.Length(box.y);
  return {mDrawing->x + left, mDrawing->y + top, mLayout.Length(box.x + box.width) - left,
          mLayout.Length(box.y + box.height) - top};
}

void PageBuilder::Rectangle(const Box& box, Colour colour) {
  Add(RecordKind::Rectangle, RectangleBody(Place(box), colour));
}

void PageBuilder::Frame(const Box& box, Colour upperLeft, Colour lowerRight) {
  Add(RecordKind::Frame, FrameBody(Place(box), std::max(1, mLayout.Length(3)), upperLeft, lowerRight));
}

void PageBuilder::Line(int x1, int y1, int x2, int y2, Colour colour) {
  Add(RecordKind::Line, LineBody(mLayout.X(x1), mLayout.Y(y1), mLayout.X(x2), mLayout.Y(y2), colour));
}

void PageBuilder::Text(const Box& box, Size size, std::string_view text, Colour colour, Align align) {
  const Box place = Place(box);
  const int font = mLayout.Font(size);
  const int top = place.y + (place.height - FontWithId(font).Height()) / 2;
  Add(RecordKind::Text, TextBody(place.x, top, place.width, {.font = font, .colour = colour, .align = align}, text));
}

void PageBuilder::Image(int x, int y, int id) {
  const Box place = Place({x, y, 0, 0});
  Add(RecordKind::Image, ImageBody(place.x, place.y, static_cast<std::uint16_t>(id)));
}

void PageBuilder::Bar(const Box& box, Direction direction, int share, Colour colour, Colour ground) {
  Add(RecordKind::Bar, BarBody(Place(box), direction, share, colour, ground));
}

void PageBuilder::Area(const Box& box, Control control) {
  const Box place = Place(box);
  mContent.areas.push_back({mContent.pieces.size(), place, control});
  Add(RecordKind::TouchArea, TouchAreaBody(place, control.role, control.state, control.name));
}

void PageBuilder::Nothing(int pieces) {
  for (int piece = 0; piece < pieces; ++piece) Add(RecordKind::Nothing, {});
}

void PageBuilder::Button(const Box& box, Colour colour, const Control& control) {
  const bool isDisabled = (control.state & kDisabled) != 0;
  const Colour onGround = colour == theme::kAmber ? theme::kSunk : theme::kText;
  Rectangle(box, colour);
  Text(box, Size::Large, control.name, isDisabled ? theme::kGrey : onGround, Align::Centre);
  Area(box, control);
}

void PageBuilder::HoldButton(const Box& box, const Control& control) {
  const bool isPressed = (control.state & kPressed) != 0;
  const bool isDisabled = (control.state & kDisabled) != 0;
  Rectangle(box, isPressed ? theme::kGreen : theme::kCard);
  Frame(box, isPressed ? theme::kSunk : theme::kRaised, isPressed ? theme::kRaised : theme::kSunk);
  Text(box, Size::Normal, control.name, isDisabled ? theme::kGrey : theme::kText, Align::Centre);
  Area(box, control);
}

}  // namespace sim
