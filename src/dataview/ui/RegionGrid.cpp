#include "dataview/ui/RegionGrid.h"

#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <array>

#include "dataview/ui/GridColours.h"
#include "dataview/ui/GridKeys.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv::mdlDataTypesView {
namespace {

// In characters of the table's face; the values take what is left.
constexpr std::array<int, kRegionColumnCount> kUsualCharacters{0, 20, 8, 8, 26, 10, 13, 30};
constexpr int kNarrowest = 20;  // pixels; a column that was dragged to nothing could not be found again
constexpr int kWidest = 4000;
constexpr int kFewestLines = 4;
constexpr int kMargin = 8;
constexpr const char* kNoRegions =
    "No regions yet: select operands in the grid above and press Add (Ctrl+R), or load a region file (Ctrl+O).";

constexpr int ColumnOf(RegionColumn column) {
  return static_cast<int>(column);
}

}  // namespace

RegionGrid::RegionGrid(DataTypesView& view, QWidget* parent)
    : QTableView(parent),
      mView(view),
      mModel(view),
      mText([](const QModelIndex&, const QString&) { return QString(); }),
      mChoice(mModel),
      mValues(mModel) {
  setObjectName("vsfRegions");
  setAccessibleName("Regions");
  setAccessibleDescription("The operands that are read and written; Add makes a region of selected operands");
  setModel(&mModel);
  setItemDelegateForColumn(ColumnOf(RegionColumn::Description), &mText);
  setItemDelegateForColumn(ColumnOf(RegionColumn::Size), &mChoice);
  setItemDelegateForColumn(ColumnOf(RegionColumn::Format), &mChoice);
  setItemDelegateForColumn(ColumnOf(RegionColumn::Values), &mValues);
  setColumnHidden(ColumnOf(RegionColumn::Type), true);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setContextMenuPolicy(Qt::CustomContextMenu);
  setMinimumHeight(kFewestLines * fontMetrics().height());
  BuildHeaders();
}

void RegionGrid::BuildHeaders() {
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setMinimumSectionSize(kNarrowest);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
  LeaveOutOfPlace(*horizontalHeader());
}

void RegionGrid::ShowSettings() {
  const auto& kept = mView.Settings().regionColumnWidths;
  const bool isKept = kept.size() == kUsualCharacters.size();
  for (int column = ColumnOf(RegionColumn::Name); column < kRegionColumnCount; ++column) {
    const auto at = static_cast<std::size_t>(column);
    const int usual = kUsualCharacters[at] * fontMetrics().averageCharWidth();
    setColumnWidth(column, isKept ? std::clamp(kept[at], kNarrowest, kWidest) : usual);
  }
}

std::vector<std::size_t> RegionGrid::SelectedRegions() const {
  std::vector<std::size_t> regions;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) regions.push_back(static_cast<std::size_t>(row));
  }
  std::ranges::sort(regions);
  return regions;
}

bool RegionGrid::HasKept() const {
  for (int row = 0; row < mModel.rowCount(); ++row) {
    if (!mModel.RowAt(row).values.empty() && mModel.HasKept(row)) return true;
  }
  return false;
}

std::vector<std::int32_t> RegionGrid::ColumnWidths() const {
  std::vector<std::int32_t> widths;
  for (int column = 0; column < kRegionColumnCount; ++column) widths.push_back(columnWidth(column));
  return widths;
}

void RegionGrid::focusInEvent(QFocusEvent* event) {
  QTableView::focusInEvent(event);
  const Qt::FocusReason reason = event->reason();
  const bool isByKey =
      reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
  if (isByKey && mModel.rowCount() > 0 && !selectionModel()->hasSelection()) {
    selectRow(std::max(currentIndex().row(), 0));
  }
}

void RegionGrid::keyPressEvent(QKeyEvent* event) {
  if (!TakeGridKey(*this, *event, onRemove)) QTableView::keyPressEvent(event);
}

void RegionGrid::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (mModel.rowCount() > 0) return;
  QPainter painter(viewport());
  painter.setPen(ColoursFor(palette()).faint);
  painter.drawText(viewport()->rect().adjusted(kMargin, 0, -kMargin, 0), Qt::AlignCenter | Qt::TextWordWrap,
                   kNoRegions);
}

}  // namespace kv::mdlDataTypesView
