#include "KvCmDrv1/ui/TraceModel.h"

#include <algorithm>

#include "desktop/ui/Commands.h"

namespace kv {
namespace {

QString DirectionText(Trace::Direction direction) {
  switch (direction) {
    case Trace::Direction::Sent:
      return "Sent";
    case Trace::Direction::Received:
      return "Received";
    case Trace::Direction::Dropped:
      return "Dropped";
    case Trace::Direction::Note:
      return "Note";
  }
  return {};
}

}  // namespace

void TraceModel::Update() {
  const std::uint64_t total = mTrace->Total();
  if (total == mEnd) return;
  DropOld(mTrace->FirstKept());
  const int rows = rowCount();
  beginInsertRows({}, rows, rows + static_cast<int>(total - mEnd) - 1);
  for (; mEnd < total; ++mEnd) mRows.push_back(mTrace->RowAt(mEnd));
  endInsertRows();
}

void TraceModel::DropOld(std::uint64_t firstKept) {
  const std::uint64_t first = mEnd - mRows.size();
  if (firstKept > first) {
    const auto dropped = std::min<std::uint64_t>(firstKept - first, mRows.size());
    if (dropped > 0) {
      beginRemoveRows({}, 0, static_cast<int>(dropped) - 1);
      mRows.erase(mRows.begin(), mRows.begin() + static_cast<std::ptrdiff_t>(dropped));
      endRemoveRows();
    }
  }
  mEnd = std::max(mEnd, firstKept);
}

int TraceModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mRows.size());
}

int TraceModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant TraceModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::TextAlignmentRole && index.column() == Time) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::FontRole && (index.column() == Time || index.column() == Text)) return FixedFont({});
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  const Trace::Row& row = mRows[static_cast<std::size_t>(index.row())];
  switch (index.column()) {
    case Time:
      return QString::fromStdString(row.time).section('T',
                                                      -1);  // without the date, which the line has when it is copied
    case Direction:
      return DirectionText(row.direction);
    case Owner:
      return QString::fromStdString(row.owner);
    case Text:
      return QString::fromStdString(row.text);
    case Meaning:
      return QString::fromStdString(row.meaning);
    default:
      return {};
  }
}

QVariant TraceModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount) return {};
  constexpr const char* kTitles[ColumnCount] = {"Time", "Direction", "For", "Text", "Meaning"};
  return kTitles[section];
}

}  // namespace kv
