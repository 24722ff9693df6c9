#pragma once

#include <cstdint>
#include <vector>

#include "dataview/GridSelection.h"
#include "dataview/OperandStore.h"
#include "dataview/RegionTable.h"

namespace kv::mdlDataTypesView {

// What the view keeps beside the contents of its two grids, between one opening and the next.
struct GridSettings {
  HiddenRows hidden;
  std::vector<std::int32_t> regionColumnWidths;  // device-independent pixels; empty: the window's own
  std::int32_t operandColumnWidth = 0;           // 0: the window's own
  std::int32_t currentRow = 1;                   // the operand grid's cursor
  std::int32_t currentColumn = 1;

  bool operator==(const GridSettings&) const = default;
};

// Both grids as they are saved and restored.
struct GridState {
  OperandStore operands;
  RegionTable regions;
  GridSettings settings;
};

}  // namespace kv::mdlDataTypesView
