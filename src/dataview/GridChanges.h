#pragma once

#include <cstdint>
#include <string>

#include "dataview/GridSelection.h"

namespace kv::mdlDataTypesView {

// What one command or one pass has changed, as one span for each grid, so that a window announces and paints once.
struct GridChanges {
  // Cells of the operand grid; empty (bottom < top) when none.
  GridSelection operands{0, 0, -1, -1};
  // Rows of the regions table from 0; empty when last < first.
  std::int32_t firstRegion = 0;
  std::int32_t lastRegion = -1;
  bool onlyValues = true;           // of the regions table: only the values column
  bool regionRowsReplaced = false;  // rows came, went or moved
  bool operandsReplaced = false;    // hidden rows, counts or all contents

  void AddOperands(OperandTypeCode type, std::int32_t from, std::int32_t to);
  void AddRegion(std::int32_t row);
  [[nodiscard]] bool IsEmpty() const;
};

enum class ViewMode { Idle, Busy, Online };

// What the status bar of the view shows.
struct ViewStatus {
  ViewMode mode = ViewMode::Idle;
  std::string message;  // the outcome of the last command, or the last error
  bool isError = false;
  bool linkLost = false;         // the values are as old as each region says
  double passesPerSecond = 0.0;  // while on line
  std::uint64_t passes = 0;
  std::size_t edited = 0;           // cells that are edited and not written
  std::size_t done = 0, total = 0;  // regions of the running read or write
};

// Who shows the view: the window, the command line, a test.
class GridListener {
 public:
  virtual ~GridListener() = default;
  virtual void GridsChanged(const GridChanges& changes) = 0;
  // The mode, the status or which tools may be used changed.
  virtual void StatusChanged() = 0;
};

}  // namespace kv::mdlDataTypesView
