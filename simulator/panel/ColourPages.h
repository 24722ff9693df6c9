#pragma once

#include "simulator/panel/PageBuilder.h"
#include "simulator/panel/PanelView.h"

namespace sim {

inline constexpr int kColourPages = 8;

// The page that the view names, for a colour display.
[[nodiscard]] PageContent DrawColourPage(const Layout& layout, const PanelView& view);

// What stands between the header and the tabs, page by page.
namespace pages {

void Overview(PageBuilder& page, const PanelView& view);
void Recipe(PageBuilder& page, const PanelView& view);
void EnterValue(PageBuilder& page, const PanelView& view);
void Manual(PageBuilder& page, const PanelView& view);
void Alarms(PageBuilder& page, const PanelView& view);
void Trend(PageBuilder& page, const PanelView& view);
void Info(PageBuilder& page, const PanelView& view);

}  // namespace pages

}  // namespace sim
