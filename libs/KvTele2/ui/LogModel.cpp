#include "KvTele2/ui/LogModel.h"

#include <algorithm>

namespace kv {

bool LogModel::Follow(const Journal& journal) {
  const std::size_t kept = journal.Entries().size();
  const std::size_t added = std::min<std::size_t>(static_cast<std::size_t>(journal.Total() - mSeen), kept);
  RemoveFirst(mEntries.size() + added - kept);
  Append(journal, added);
  mSeen = journal.Total();
  return added > 0;
}

void LogModel::RemoveFirst(std::size_t count) {
  if (count == 0) return;
  beginRemoveRows({}, 0, static_cast<int>(count) - 1);
  mEntries.erase(mEntries.begin(), mEntries.begin() + static_cast<std::ptrdiff_t>(count));
  endRemoveRows();
}

void LogModel::Append(const Journal& journal, std::size_t count) {
  if (count == 0) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(count) - 1);
  mEntries.insert(mEntries.end(), journal.Entries().end() - static_cast<std::ptrdiff_t>(count),
                  journal.Entries().end());
  endInsertRows();
}

int LogModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mEntries.size());
}

int LogModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(kColumns);
}

QVariant LogModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Journal::Entry& entry = EntryAt(index.row());
  if (role == Qt::TextAlignmentRole) {
    const Qt::Alignment side = index.column() == Time ? Qt::AlignRight : Qt::AlignLeft;
    return QVariant::fromValue(side | Qt::AlignTop);
  }
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return QString::fromStdString(index.column() == Time ? entry.time : entry.text).remove('\r');
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole && section == Text) return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  return section == Time ? "Time" : "What happened";
}

}  // namespace kv
