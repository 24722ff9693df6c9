#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <deque>

#include "KvTele2/Journal.h"

namespace kv {

// The log as a table: time and text. Follows the journal by announcing only the rows that come and go, so that the
// user's selection stays.
class LogModel final : public QAbstractTableModel {
 public:
  enum Column { Time, Text, kColumns };

  using QAbstractTableModel::QAbstractTableModel;

  // True when rows have come.
  bool Follow(const Journal& journal);
  [[nodiscard]] const Journal::Entry& EntryAt(int row) const { return mEntries[static_cast<std::size_t>(row)]; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void RemoveFirst(std::size_t count);
  void Append(const Journal& journal, std::size_t count);

  std::deque<Journal::Entry> mEntries;
  std::uint64_t mSeen = 0;
};

}  // namespace kv
