#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "journal/JournalList.h"

namespace kv {

// The entries of a journal as the rows of a table, the newest first.
class JournalTable final : public QAbstractTableModel {
 public:
  enum Column { Number, Time, User, Controller, What, Result, kColumns };

  using QAbstractTableModel::QAbstractTableModel;

  void Show(std::vector<JournalEntry> entries);
  // Null for a row that is not there.
  [[nodiscard]] const JournalEntry* EntryAt(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<JournalEntry> mEntries;
};

}  // namespace kv
