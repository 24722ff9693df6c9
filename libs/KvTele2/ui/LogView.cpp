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
  updateGeometries();              // row heights that were set last count for the bar only from now on
  const bool isAtEnd = IsAtEnd();  // a user who reads further up is left there
  const int before = mModel.rowCount();
  if (!mModel.Follow(journal)) return;
  for (int row = std::min(before, mModel.rowCount() - 1); row < mModel.rowCount(); ++row) FitRow(row);
  updateGeometries();
  if (isAtEnd) scrollToBottom();
}

bool LogView::IsAtEnd() const {
  return verticalScrollBar()->value() == verticalScrollBar()->maximum();
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
  const bool wasAtEnd = IsAtEnd();
  QTableView::resizeEvent(event);
  if (event->oldSize().width() != event->size().width()) {
    for (int row = 0; row < mModel.rowCount(); ++row) FitRow(row);
    updateGeometries();
  }
  if (wasAtEnd) scrollToBottom();
}

}  // namespace kv
