// The trend of the filler bowl, and what the panel belongs to.

#include <string>

#include "simulator/panel/ColourPages.h"
#include "simulator/panel/Images.h"
#include "simulator/panel/Theme.h"

namespace sim::pages {
namespace {

using Size = PageBuilder::Size;

constexpr Box kChart{88, 96, 688, 300};
constexpr int kColumn = kChart.width / plant::kTrendLength;

// The newest column is bright; the next one is the oldest.
void DrawColumns(PageBuilder& page, const PlantOperands& operands) {
  const int next = operands.Word(plant::kTrendPlace);
  for (int column = 0; column < plant::kTrendLength; ++column) {
    const int height = ShareOf(operands, plant::kTrend + column) * kChart.height / 10000;
    const bool isNewest = (column + 1) % plant::kTrendLength == next;
    page.Rectangle({kChart.x + 2 + column * kColumn, kChart.y + kChart.height - height, kColumn - 4, height},
                   isNewest ? theme::kAccent : theme::kProduct);
  }
}

}  // namespace

void Trend(PageBuilder& page, const PanelView& view) {
  page.Text({88, 52, 688, 40}, Size::Normal, "Filler bowl, every 2 s", theme::kMuted);
  page.Rectangle(kChart, theme::kSunk);
  const int middle = kChart.y + kChart.height / 2;
  page.Line(kChart.x, middle, kChart.x + kChart.width, middle, theme::kGrey);
  DrawColumns(page, view.operands);
  page.Text({8, kChart.y - 12, 72, 24}, Size::Normal, "100 %", theme::kMuted, Align::Right);
  page.Text({8, middle - 12, 72, 24}, Size::Normal, "50 %", theme::kMuted, Align::Right);
  page.Text({8, kChart.y + kChart.height - 12, 72, 24}, Size::Normal, "0 %", theme::kMuted, Align::Right);
}

void Info(PageBuilder& page, const PanelView& view) {
  page.Image(32, 60, image::Logo);
  const PanelFacts& facts = view.facts;
  const std::string lines[] = {
      "Bottle line 1",
      "Model " + facts.model,
      "O/S " + facts.os,
      "Serial number " + std::to_string(facts.serial),
      facts.project.empty() ? "No project" : "Project " + facts.project,
      "Filled " + std::to_string(view.operands.Word(plant::kFilled)) + ", rejected " +
          std::to_string(view.operands.Word(plant::kRejected)),
  };
  int y = 140;
  for (const std::string& line : lines) {
    page.Text({32, y, 736, 40}, Size::Normal, line, y == 140 ? theme::kText : theme::kMuted);
    y += 44;
  }
}

}  // namespace sim::pages
