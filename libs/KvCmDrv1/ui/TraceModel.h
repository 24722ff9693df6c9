#pragma once

#include <QAbstractTableModel>
#include <deque>
#include <memory>
#include <vector>

#include "KvCmDrv1/Trace.h"

namespace kv {

// The kept entries of a trace as a table. Update takes over what has come since and drops what is not kept any more;
// only that is announced, so selection and scroll position stay.
class TraceModel final : public QAbstractTableModel {
 public:
  enum Column { Time, Direction, Owner, Text, Meaning, ColumnCount };

  explicit TraceModel(std::shared_ptr<const Trace> trace) : mTrace(std::move(trace)) {}

  void Update();
  [[nodiscard]] std::string Line(int row) const { return RowAt(row).Line(); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Numbered {
    std::uint64_t number;
    Trace::Row row;
  };
  [[nodiscard]] const Trace::Row& RowAt(int row) const { return mRows[static_cast<std::size_t>(row)].row; }
  void DropAllBut(const std::vector<std::uint64_t>& kept);

  std::shared_ptr<const Trace> mTrace;
  std::deque<Numbered> mRows;
  std::uint64_t mEnd = 0;  // the number of the entry behind the last that was taken over
};

}  // namespace kv
