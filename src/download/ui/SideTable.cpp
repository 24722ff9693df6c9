#include "download/ui/SideTable.h"

#include <QHeaderView>
#include <algorithm>
#include <array>
#include <vector>

namespace kv {
namespace {

enum Column { Controller, File, Afterwards, kColumns };
constexpr int kFewestRows = 3;  // of each controller are known
constexpr int kWidth = 24;      // of a column, in characters

}  // namespace

SideTable::SideTable(QWidget* parent) : QTableWidget(0, kColumns, parent) {
  setObjectName("tblSides");
  setAccessibleName("The controller, the file, and the controller afterwards");
  setToolTip("What the controller holds now, what the file makes of it, and what it reports afterwards");
  ShowHeads(false);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(SingleSelection);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  verticalHeader()->setHighlightSections(false);
  for (int column = 0; column < kColumns; ++column) {
    setColumnWidth(column, kWidth * fontMetrics().averageCharWidth());
  }
}

void SideTable::ShowHeads(bool isDone) {
  setHorizontalHeaderLabels({isDone ? "Controller before" : "Controller now", "File", "Controller afterwards"});
}

void SideTable::ShowSides(const DownloadSide& now, const DownloadSide& then, const std::optional<DownloadSide>& after) {
  ShowHeads(after.has_value());
  const std::vector<SideRow> rows = RowsOf(now, then);
  const std::vector<SideRow> afterwards = after ? RowsOf(now, *after) : std::vector<SideRow>();
  setRowCount(static_cast<int>(rows.size()));
  int row = 0;
  for (const SideRow& each : rows) {
    const auto found = std::ranges::find(afterwards, each.label, &SideRow::label);
    setVerticalHeaderItem(row, new QTableWidgetItem(QString::fromStdString(each.label)));
    Put(row, Controller, each.first);
    Put(row, File, each.second);
    Put(row, Afterwards, found == afterwards.end() ? "" : found->second);
    ++row;
  }
  updateGeometry();
}

void SideTable::Put(int row, int column, const std::string& text) {
  auto* item = new QTableWidgetItem(QString::fromStdString(text));
  item->setToolTip(item->text());
  setItem(row, column, item);
}

QSize SideTable::sizeHint() const {
  const int rows = std::max(kFewestRows, rowCount()) * verticalHeader()->defaultSectionSize();
  return {QTableWidget::sizeHint().width(), horizontalHeader()->sizeHint().height() + rows + 2 * frameWidth()};
}

}  // namespace kv
