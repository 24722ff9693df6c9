#include "simulator/panel/ColourPages.h"

#include <iterator>

#include "simulator/panel/Images.h"
#include "simulator/panel/Theme.h"

namespace sim {
namespace {

using Size = PageBuilder::Size;

struct PageRow {
  const char* name;
  void (*draw)(PageBuilder&, const PanelView&);
};

// By page number, from 1 on; the first six have tabs in this order.
constexpr PageRow kPages[] = {
    {"Overview", pages::Overview}, {"Recipe", pages::Recipe}, {"Manual", pages::Manual},    {"Alarms", pages::Alarms},
    {"Trend", pages::Trend},       {"Info", pages::Info},     {"Entry", pages::EnterValue},
};

Colour StateColour(const PanelView& view) {
  if (!view.programRuns) return theme::kRed;
  if (view.MachineRuns()) return theme::kGreen;
  return CountUnseen(view.operands) > 0 ? theme::kAmber : theme::kMuted;
}

int StateLamp(const PanelView& view) {
  if (!view.programRuns) return image::LampAlarm;
  return view.MachineRuns() ? image::LampOn : image::LampOff;
}

void DrawHeader(PageBuilder& page, const PanelView& view, std::string_view title) {
  page.Rectangle({0, 0, 800, 44}, theme::kHeader);
  page.Text({16, 0, 480, 44}, Size::Large, title, theme::kText);
  page.Text({540, 0, 210, 44}, Size::Large, StateText(view), StateColour(view), Align::Right);
  page.Image(764, 11, StateLamp(view));
  if (CountUnseen(view.operands) > 0) {
    page.Image(500, 6, image::Warning);
  } else {
    page.Nothing();
  }
}

void DrawTabs(PageBuilder& page, PageNumber current) {
  page.Rectangle({0, 428, 800, 52}, theme::kHeader);
  for (int tab = 0; tab < image::kTabs; ++tab) {
    const Box box{tab * 800 / image::kTabs, 428, 800 / image::kTabs, 52};
    const bool isCurrent = tab + 1 == static_cast<int>(current);
    if (isCurrent) {
      page.Rectangle(box, theme::kChosen);
    } else {
      page.Nothing();
    }
    page.BeginDrawing(box, image::kTabWidth, image::kTabHeight);
    page.Image(0, 0, image::FirstTab + tab);
    page.EndDrawing();
    if (isCurrent) {
      page.Nothing();
    } else {
      page.Area(box, {.role = Role::Link, .name = kPages[tab].name, .order = {Command::ShowPage, tab + 1}});
    }
  }
}

void DrawSystemMode(PageBuilder& page) {
  page.Rectangle({200, 160, 400, 160}, theme::kCard);
  page.Text({200, 180, 400, 60}, Size::Large, "SYSTEM mode", theme::kAmber, Align::Centre);
  page.Text({200, 240, 400, 60}, Size::Normal, "The panel is at rest.", theme::kText, Align::Centre);
}

}  // namespace

PageContent DrawColourPage(const Layout& layout, const PanelView& view) {
  const auto number = static_cast<std::uint16_t>(view.page);
  if (view.page == PageNumber::System) {
    PageBuilder page(layout, number, "SYSTEM mode", theme::kHeader);
    DrawSystemMode(page);
    return page.Take();
  }
  const PageRow& row = kPages[number - 1];
  PageBuilder page(layout, number, row.name, theme::kGround);
  DrawHeader(page, view, view.entry ? plant::kSettingTable[view.entry->setting].name : row.name);
  row.draw(page, view);
  if (view.page != PageNumber::Entry) DrawTabs(page, view.page);
  return page.Take();
}

}  // namespace sim
