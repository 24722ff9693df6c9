#include "KvTele2/ui/LogView.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QScrollBar>
#include <algorithm>

namespace kv {
namespace {

constexpr int kRowSpace = 2;  // between the texts of two entries

}  // namespace

LogView::LogView(QWidget* parent) : QTableView(parent) {
  setObjectName("tblLog");
  setAccessibleName("Log");
  setModel(&mModel);
  setSelectionBehavior(SelectRows);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setWordWrap(true);
  setVerticalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setHighlightSections(false);
  setColumnWidth(LogModel::Time, fontMetrics().horizontalAdvance("00:00:00") + 4 * fontMetrics().averageCharWidth());
}

void LogView::Follow(const Journal& journal) {
  updateGeometries();  // row heights that were set last count for the bar only from now on
  const QScrollBar* bar = verticalScrollBar();
  const bool isAtEnd = bar->value() == bar->maximum();  // a user who reads further up is left there
  const int before = mModel.rowCount();
  if (!mModel.Follow(journal)) return;
  for (int row = std::min(before, mModel.rowCount() - 1); row < mModel.rowCount(); ++row) FitRow(row);
  updateGeometries();
  if (isAtEnd) scrollToBottom();
}

void LogView::FitRow(int row) {
  setRowHeight(row, sizeHintForRow(row) + kRowSpace);
}

QString LogView::CopyText() const {
  const QModelIndexList selected = selectionModel()->selectedRows();
  QString text;
  for (int row = 0; row < mModel.rowCount(); ++row) {
    if (!selected.isEmpty() && !selectionModel()->isRowSelected(row)) continue;
    text += QString::fromStdString(EntryText(mModel.EntryAt(row))) + "\n";
  }
  return text;
}

void LogView::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  if (event->oldSize().width() == event->size().width()) return;
  for (int row = 0; row < mModel.rowCount(); ++row) FitRow(row);
}

}  // namespace kv
