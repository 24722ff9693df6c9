#pragma once

#include <QAbstractTableModel>
#include <deque>
#include <memory>

#include "KvCmDrv1/Trace.h"

namespace kv {

// The kept entries of a trace as a table. Update takes over what has come since; only that is announced, so selection
// and scroll position stay.
class TraceModel final : public QAbstractTableModel {
 public:
  enum Column { Time, Direction, Owner, Text, Meaning, ColumnCount };

  explicit TraceModel(std::shared_ptr<const Trace> trace) : mTrace(std::move(trace)) {}

  void Update();
  [[nodiscard]] std::string Line(int row) const { return mRows[static_cast<std::size_t>(row)].Line(); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void DropOld(std::uint64_t firstKept);

  std::shared_ptr<const Trace> mTrace;
  std::deque<Trace::Row> mRows;
  std::uint64_t mEnd = 0;  // the number of the entry behind the last row
};

}  // namespace kv
