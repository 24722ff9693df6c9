// Work by hand, and the list of alarms.

#include <array>
#include <string>

#include "simulator/panel/ColourPages.h"
#include "simulator/panel/Images.h"
#include "simulator/panel/Theme.h"

namespace sim::pages {
namespace {

using Size = PageBuilder::Size;

constexpr std::array<const char*, 3> kMotions = {"Conveyor", "Pump", "Valve"};

void DrawMotion(PageBuilder& page, const PanelView& view, int motion) {
  const int y = 92 + motion * 110;
  const Order order{Command::Jog, plant::kJogConveyor + motion};
  const bool isHeld = view.Holds(order);
  const bool isBlocked = view.MachineRuns() || !view.programRuns;
  const auto state = static_cast<std::uint8_t>((isHeld ? kPressed : 0) | (isBlocked ? kDisabled : 0));
  page.HoldButton({32, y, 300, 92}, {Role::Held, state, kMotions[static_cast<std::size_t>(motion)], order});
  page.Image(352, y + 35, isHeld ? image::LampOn : image::LampOff);
}

void DrawLevel(PageBuilder& page, const PanelView& view, int x, const char* name, int word) {
  page.Bar({x, 92, 70, 270}, Direction::Upwards, ShareOf(view.operands, word), theme::kProduct, theme::kGlass);
  page.Text({x - 40, 368, 150, 24}, Size::Normal, std::string(name) + PercentText(view.operands.Word(word)),
            theme::kText, Align::Centre);
}

void DrawAlarmRow(PageBuilder& page, const PlantOperands& operands, int alarm) {
  const int y = 56 + alarm * 72;
  if (!IsListed(operands, alarm)) return page.Nothing(4);
  page.Rectangle({24, y, 752, 64}, theme::kCard);
  if (operands.Bit(plant::kUnseen + alarm)) {
    page.Image(40, y + 16, image::Warning);
  } else {
    page.Nothing();
  }
  const bool isThere = operands.Bit(plant::kAlarm + alarm);
  page.Text({100, y, 460, 64}, Size::Large, plant::kAlarmTexts[alarm], isThere ? theme::kText : theme::kMuted);
  page.Text({560, y, 196, 64}, Size::Normal, AlarmStateText(operands, alarm), theme::kMuted, Align::Right);
}

}  // namespace

void Manual(PageBuilder& page, const PanelView& view) {
  const bool runs = view.MachineRuns();
  page.Text({32, 50, 744, 36}, Size::Normal, runs ? "Stop the machine first." : "Moves as long as you hold it.",
            runs ? theme::kAmber : theme::kMuted);
  for (int motion = 0; motion < 3; ++motion) DrawMotion(page, view, motion);
  DrawLevel(page, view, 460, "Tank ", plant::kTank);
  DrawLevel(page, view, 640, "Bowl ", plant::kBowl);
}

void Alarms(PageBuilder& page, const PanelView& view) {
  bool isAny = false;
  for (int alarm = 0; alarm < plant::kAlarms; ++alarm) {
    DrawAlarmRow(page, view.operands, alarm);
    isAny = isAny || IsListed(view.operands, alarm);
  }
  if (isAny) {
    page.Nothing();
  } else {
    page.Text({24, 160, 752, 80}, Size::Large, "No alarms", theme::kMuted, Align::Centre);
  }
  const bool hasUnseen = CountUnseen(view.operands) > 0;
  page.Button({536, 350, 240, 68}, hasUnseen ? theme::kAmber : theme::kCard,
              {.state = static_cast<std::uint8_t>(hasUnseen ? 0 : kDisabled),
               .name = "Acknowledge",
               .order = {Command::Acknowledge}});
}

}  // namespace sim::pages
