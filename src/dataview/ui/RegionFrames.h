#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "dataview/RegionTable.h"

namespace kv::mdlDataTypesView {

// Which cells of the operand grid belong to regions, so that frames can be drawn around them. It is asked for each cell
// that is painted.
class RegionFrames {
 public:
  struct Cell {
    bool isInRegion = false;
    bool isFirst = false;  // of its region
    bool isLast = false;
    bool isSelected = false;  // its region
  };

  void Follow(std::span<const RegionRow> rows, std::span<const std::size_t> selectedRows);
  [[nodiscard]] Cell At(OperandTypeCode type, std::int32_t address) const;

 private:
  struct Span {
    std::int32_t from;
    std::int32_t to;
    bool isSelected;
  };
  std::array<std::vector<Span>, kOperandTypeCount> mSpans;  // by type; they do not overlap, the lower ones come first
};

}  // namespace kv::mdlDataTypesView
