#include "dataview/ui/OperandGrid.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/ui/GridKeys.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kUsualCharacters = 13;  // "-2147483648", "00:00:00.00", and a margin
constexpr int kFewestCharacters = 4;
constexpr int kMostCharacters = 40;
constexpr int kFewestLines = 4;

bool IsPrintable(const QKeyEvent& key) {
  return !key.text().isEmpty() && key.text().front().isPrint();
}

}  // namespace

OperandGrid::OperandGrid(DataTypesView& view, QWidget* parent)
    : QTableView(parent), mView(view), mModel(view), mDelegate(view, mFrames) {
  setObjectName("vsfOperands");
  setAccessibleName("Operands");
  setFont(FixedFont(font()));
  setModel(&mModel);
  setItemDelegate(&mDelegate);
  setSelectionMode(ContiguousSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setHorizontalScrollMode(ScrollPerItem);
  setVerticalScrollMode(ScrollPerItem);
  setContextMenuPolicy(Qt::CustomContextMenu);
  setMinimumHeight(kFewestLines * fontMetrics().height());
  BuildHeaders();
  FollowLooks();
}

// Fixed sections: asking thousands of columns for their contents takes longer than everything else together.
void OperandGrid::BuildHeaders() {
  horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setHighlightSections(true);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setHighlightSections(true);
  verticalHeader()->setAccessibleName("Operand types");
  horizontalHeader()->setAccessibleName("Addresses");
  LeaveOutOfPlace(*horizontalHeader());
}

void OperandGrid::FollowLooks() {
  const int character = fontMetrics().horizontalAdvance('0');
  mDelegate.Follow(palette(), font());
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 5 / 4);
  QFont current = font();
  current.setBold(true);  // as the head of the current row is written
  const QFontMetrics metrics(current);
  int widest = 0;
  for (int row = 0; row < kOperandTypeCount; ++row) {
    const std::string_view name = TypeName(OperandModel::TypeAt(row));
    const QString text = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
    widest = std::max(widest, metrics.horizontalAdvance(text));
  }
  verticalHeader()->setFixedWidth(widest + 2 * character);
}

void OperandGrid::Follow(const GridChanges& changes) {
  mModel.Follow(changes);
  if (changes.operandsReplaced) ShowHiddenRows();
}

void OperandGrid::ShowSettings() {
  const GridSettings& settings = mView.Settings();
  const int character = fontMetrics().horizontalAdvance('0');
  const int kept = settings.operandColumnWidth;
  const int width = kept > 0 ? kept : kUsualCharacters * character;
  horizontalHeader()->setDefaultSectionSize(
      std::clamp(width, kFewestCharacters * character, kMostCharacters * character));
  ShowHiddenRows();
  GoTo({TypeOfRow(std::clamp(settings.currentRow, 1, kOperandTypeCount)), settings.currentColumn - 1});
}

void OperandGrid::ShowHiddenRows() {
  for (int row = 0; row < kOperandTypeCount; ++row) {
    const bool isHidden = mView.Settings().hidden.IsHidden(row + 1);
    if (isRowHidden(row) != isHidden) setRowHidden(row, isHidden);
  }
}

void OperandGrid::GoTo(const OperandPlace& place) {
  const int column = std::clamp(place.address, 0, std::max(0, mModel.columnCount() - 1));
  const QModelIndex cell = mModel.index(RowOfType(place.type) - 1, column);
  if (!cell.isValid()) return;
  setCurrentIndex(cell);
  if (isVisible()) scrollTo(cell, PositionAtCenter);  // otherwise when it has its size
}

void OperandGrid::ShowRegion(const Region& region) {
  const int row = RowOfType(region.type) - 1;
  scrollTo(mModel.index(row, region.to));
  scrollTo(mModel.index(row, region.from));
}

void OperandGrid::ShowFrames(std::span<const std::size_t> selectedRegions) {
  mFrames.Follow(mView.Regions().Rows(), selectedRegions);
  viewport()->update();
}

OperandTypeCode OperandGrid::CurrentType() const {
  return OperandModel::TypeAt(std::max(0, currentIndex().row()));
}

GridSelection OperandGrid::SelectedRectangle() const {
  const QItemSelection selected = selectionModel()->selection();
  if (selected.isEmpty()) return {};
  const QItemSelectionRange& range = selected.front();
  return {range.top() + 1, range.left() + 1, range.bottom() + 1, range.right() + 1};
}

std::vector<std::int32_t> OperandGrid::SelectedRows() const {
  std::vector<std::int32_t> rows;
  const GridSelection selected = SelectedRectangle();
  for (std::int32_t row = selected.top; row <= selected.bottom; ++row) {
    if (!isRowHidden(row - 1)) rows.push_back(row);
  }
  return rows;
}

void OperandGrid::ChangeColumnWidth(int characters) {
  const int character = fontMetrics().horizontalAdvance('0');
  const int width = ColumnWidth() + characters * character;
  horizontalHeader()->setDefaultSectionSize(
      std::clamp(width, kFewestCharacters * character, kMostCharacters * character));
}

int OperandGrid::ColumnWidth() const {
  return horizontalHeader()->defaultSectionSize();
}

bool OperandGrid::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  const bool isWanted = (editTriggers() & trigger) != 0 && state() != EditingState && index.isValid();
  const bool isTyped = trigger != AnyKeyPressed || IsPrintable(*static_cast<QKeyEvent*>(event));
  const std::string fault =
      isWanted && isTyped ? mView.EditFault(OperandModel::TypeAt(index.row()), index.column(), "") : "";
  if (fault.empty()) return QTableView::edit(index, trigger, event);
  if (onRefusedEdit) onRefusedEdit(QString::fromStdString(fault));
  return false;
}

void OperandGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  QTableView::closeEditor(editor, hint);
  if (hint == QAbstractItemDelegate::SubmitModelCache) GoRight();
}

void OperandGrid::GoRight() {
  const QModelIndex next = currentIndex().siblingAtColumn(currentIndex().column() + 1);
  if (mModel.IsCell(next)) setCurrentIndex(next);
}

void OperandGrid::keyPressEvent(QKeyEvent* event) {
  if (!TakeGridKey(*this, *event, onClear)) QTableView::keyPressEvent(event);
}

void OperandGrid::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) FollowLooks();
}

}  // namespace kv::mdlDataTypesView
