// The process picture: tank, pump, filler bowl, and the bottles on their way through.

#include <algorithm>

#include "simulator/panel/ColourPages.h"
#include "simulator/panel/Images.h"
#include "simulator/panel/Theme.h"

namespace sim::pages {
namespace {

using Size = PageBuilder::Size;

// Places in the drawing, which is kWidth x kHeight.
constexpr int kWidth = 540;
constexpr int kHeight = 350;
constexpr int kTankX = 10;
constexpr int kTankY = 10;
constexpr int kBowlX = 270;
constexpr int kBowlY = 134;
constexpr int kBottleY = 208;
constexpr int kBeltY = 292;
constexpr int kPitch = 100;
constexpr int kFirstBottle = 18;  // of five; the fourth stands under the valve
constexpr int kUnderValve = 3;
constexpr int kBeltEnd = 528;
constexpr int kMoveEnd = 400;  // thousandths of a cycle in which the bottles move

Box Moved(const Box& box, int x, int y) {
  return {box.x + x, box.y + y, box.width, box.height};
}

void DrawPipes(PageBuilder& page, bool flows) {
  const Colour colour = flows ? theme::kProduct : theme::kPipe;
  page.Rectangle({53, 150, 101, 8}, colour);
  page.Rectangle({190, 140, 84, 8}, colour);
}

void DrawVessels(PageBuilder& page, const PanelView& view, bool pumps) {
  page.Image(kTankX, kTankY, image::Tank);
  page.Bar(Moved(image::kTankWindow, kTankX, kTankY), Direction::Upwards, ShareOf(view.operands, plant::kTank),
           theme::kProduct, theme::kGlass);
  page.Text({112, 60, 200, 24}, Size::Normal, "Tank " + PercentText(view.operands.Word(plant::kTank)), theme::kText);
  page.Image(kBowlX, kBowlY, image::Bowl);
  page.Bar(Moved(image::kBowlWindow, kBowlX, kBowlY), Direction::Upwards, ShareOf(view.operands, plant::kBowl),
           theme::kProduct, theme::kGlass);
  page.Text({kBowlX - 20, 106, 170, 24}, Size::Normal, "Bowl " + PercentText(view.operands.Word(plant::kBowl)),
            theme::kText, Align::Centre);
  page.Image(148, 134, pumps ? image::PumpRuns : image::Pump);
}

void DrawBottles(PageBuilder& page, const PanelView& view) {
  const int cycle = std::clamp(view.operands.Word(plant::kCycle), 0, 999);
  const bool moves = cycle < kMoveEnd;
  // While they move, each is on its way to the next place; the one that comes to the valve was the third.
  const int offset = moves ? kPitch * cycle / kMoveEnd - kPitch : 0;
  const auto placeOf = [offset](int bottle) { return kFirstBottle + bottle * kPitch + offset; };
  const Box inside = Moved(image::kBottleInside, placeOf(kUnderValve), kBottleY);
  page.Bar(inside, Direction::Upwards, moves ? 0 : ShareOf(view.operands, plant::kFillLevel) * 9 / 10, theme::kProduct,
           theme::kGround);
  for (int bottle = 0; bottle < 6; ++bottle) {
    const int x = placeOf(bottle);
    if (x < 0 || x + image::kBottleWidth > kBeltEnd) {
      page.Nothing();
    } else {
      page.Image(x, kBottleY, bottle > kUnderValve ? image::FullBottle : image::Bottle);
    }
  }
  page.Image(0, kBeltY, image::Conveyor);
  page.Image(264, kBeltY, image::Conveyor);
}

void DrawAlarm(PageBuilder& page, const PlantOperands& operands) {
  for (int alarm = 0; alarm < plant::kAlarms; ++alarm) {
    if (!operands.Bit(plant::kUnseen + alarm)) continue;
    return page.Text({0, 322, kWidth, 26}, Size::Normal, plant::kAlarmTexts[alarm], theme::kAmber);
  }
  page.Nothing();
}

}  // namespace

void Overview(PageBuilder& page, const PanelView& view) {
  const PlantOperands& operands = view.operands;
  const bool runs = view.MachineRuns();
  const bool pumps = operands.Bit(plant::kPumps) && view.isAwake && view.programRuns;
  page.BeginDrawing({20, 48, 540, 376}, kWidth, kHeight);
  DrawPipes(page, pumps);
  DrawVessels(page, view, pumps);
  DrawBottles(page, view);
  DrawAlarm(page, operands);
  page.EndDrawing();

  page.Rectangle({580, 60, 204, 176}, theme::kCard);
  page.Text({580, 70, 204, 50}, Size::Huge, std::to_string(operands.Word(plant::kFilled)), theme::kText, Align::Centre);
  page.Text({580, 120, 204, 30}, Size::Normal, "of " + SettingText(view, 2), theme::kMuted, Align::Centre);
  page.Text({580, 180, 204, 40}, Size::Large, std::to_string(operands.Word(plant::kRate)) + " /min", theme::kAccent,
            Align::Centre);
  const auto blocked = static_cast<std::uint8_t>(view.programRuns ? 0 : kDisabled);
  page.Button(
      {580, 252, 204, 72}, runs ? theme::kGreen : theme::kGreenDark,
      {.state = static_cast<std::uint8_t>(blocked | (runs ? kOn : 0)), .name = "Start", .order = {Command::Start}});
  page.Button({580, 340, 204, 72}, runs ? theme::kRed : theme::kRedDark,
              {.state = blocked, .name = "Stop", .order = {Command::Stop}});
}

}  // namespace sim::pages
