#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/UndoHistory.h"
#include "dataview/files/CellAssignment.h"

namespace kv::mdlDataTypesView {

class ViewContext;

// What the user changes in the two grids, each change one step that can be taken back.
class GridEdits {
 public:
  explicit GridEdits(ViewContext& context) : mContext(context) {}

  // Why the text cannot be entered, with the range that is legal; empty when it can.
  [[nodiscard]] std::string EntryFault(OperandTypeCode type, std::int32_t address, std::string_view text) const;
  void Enter(OperandTypeCode type, std::int32_t address, std::string_view text);
  // Puts texts into cells as one change, those of read-only types aside. One that cannot be entered refuses all: false,
  // and the user is told.
  bool Assign(std::span<const CellAssignment> cells, const std::string& title);

  void AddRegions(const GridSelection& selection);
  void RemoveRegions(std::span<const std::size_t> rows);
  // Asks first.
  void NewRegions();
  // Puts other rows into the regions table.
  enum class Values { Kept, Removed };  // those of the operand grid
  void ReplaceRegions(std::vector<RegionRow> rows, Values values, const std::string& title);

  bool SetDescription(std::size_t row, std::string_view text);
  bool SetSize(std::size_t row, SizeCode size);
  bool SetFormat(std::size_t row, FormatCode format);
  void SetHidden(const HiddenRows& hidden);

  // Puts texts that the controller told at `when` into cells that have not been read since.
  std::size_t TakeRead(const OperandStore& read, const std::string& title);

  void Undo();
  void Redo();

 private:
  [[nodiscard]] std::vector<RegionRow> Rows() const;
  void FinishRows(UndoStep step, const std::vector<RegionRow>& before);
  template <typename Change>
  bool ChangeRow(std::size_t row, const std::string& title, Change change);
  void FinishCells(UndoStep step);
  [[nodiscard]] std::vector<CellChange> EmptyOperands();
  void SpliceRows(const RowsChange& change, bool isBack);
  void Apply(const UndoStep& step, bool isBack);

  ViewContext& mContext;
};

}  // namespace kv::mdlDataTypesView
