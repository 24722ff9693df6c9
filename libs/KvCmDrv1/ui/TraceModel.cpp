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
  if (mTrace->Total() == mEnd) return;
  const std::vector<std::uint64_t> kept = mTrace->Numbers();
  DropAllBut(kept);
  const auto fresh = std::ranges::lower_bound(kept, mEnd);
  mEnd = mTrace->Total();
  if (fresh == kept.end()) return;
  const int rows = rowCount();
  beginInsertRows({}, rows, rows + static_cast<int>(kept.end() - fresh) - 1);
  std::for_each(fresh, kept.end(), [this](std::uint64_t number) { mRows.push_back({number, mTrace->RowAt(number)}); });
  endInsertRows();
}

// From the end on, in runs as long as there are.
void TraceModel::DropAllBut(const std::vector<std::uint64_t>& kept) {
  const auto isKept = [&](int row) {
    return std::ranges::binary_search(kept, mRows[static_cast<std::size_t>(row)].number);
  };
  for (int last = rowCount() - 1; last >= 0; --last) {
    if (isKept(last)) continue;
    int first = last;
    while (first > 0 && !isKept(first - 1)) --first;
    beginRemoveRows({}, first, last);
    mRows.erase(mRows.begin() + first, mRows.begin() + last + 1);
    endRemoveRows();
    last = first;
  }
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
  const Trace::Row& row = RowAt(index.row());
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
