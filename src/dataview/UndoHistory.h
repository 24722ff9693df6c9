#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "dataview/GridSelection.h"
#include "dataview/OperandStore.h"
#include "dataview/RegionTable.h"

namespace kv::mdlDataTypesView {

struct CellChange {
  OperandTypeCode type = OperandTypeCode::MB;
  std::int32_t address = 0;
  CellText before;
  CellText after;
};

// Rows of the regions table from `at` on that were replaced by others. Their values are not kept: they are made from
// the operands' texts.
struct RowsChange {
  std::size_t at = 0;
  std::vector<RegionRow> before;
  std::vector<RegionRow> after;

  [[nodiscard]] bool IsNone() const { return before.empty() && after.empty(); }
};
// What must be replaced to make one list of rows the other; values and ages do not count.
[[nodiscard]] RowsChange DifferenceOf(std::span<const RegionRow> before, std::span<const RegionRow> after);

// What one command has changed.
struct UndoStep {
  std::string title;  // "typing MI 5"
  std::vector<CellChange> cells = {};
  RowsChange rows = {};
  std::optional<HiddenRows> hiddenBefore = {};
  std::optional<HiddenRows> hiddenAfter = {};

  [[nodiscard]] bool IsNone() const { return cells.empty() && rows.IsNone() && hiddenBefore == hiddenAfter; }
  [[nodiscard]] std::size_t Bytes() const;  // of memory, roughly
};

// The steps that can be taken back and done again. The oldest are forgotten when all together take more than `limit`
// bytes; the newest stays however large it is.
class UndoHistory {
 public:
  static constexpr std::size_t kUsualLimit = std::size_t{32} << 20;

  explicit UndoHistory(std::size_t limit = kUsualLimit) : mLimit(limit) {}

  // A step without any change is not kept. What had been taken back can then not be done again.
  void Add(UndoStep step);
  // The step that is next to take back, or to do again; it changes over to the other side. Null when there is none. The
  // step is good until the next call.
  [[nodiscard]] const UndoStep* TakeBack();
  [[nodiscard]] const UndoStep* DoAgain();
  void Clear();

  [[nodiscard]] std::string UndoText() const;  // "Undo typing MI 5"; empty when there is nothing
  [[nodiscard]] std::string RedoText() const;

 private:
  std::deque<UndoStep> mSteps;
  std::size_t mDone = 0;  // steps before this one are done, the others taken back
  std::size_t mBytes = 0;
  std::size_t mLimit;
};

}  // namespace kv::mdlDataTypesView
