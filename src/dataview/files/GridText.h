#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "base/LineError.h"
#include "dataview/GridState.h"

// The contents of the two files in which the grids are kept: UTF-8 lines ended by LF, the last of them a check over all
// others. docs/file-formats.md has every line.
namespace kv::mdlDataTypesView {

// The session and the model whose grid it is.
struct GridOwner {
  std::string session;
  std::string model;
};

struct RegionsGrid {
  GridOwner owner;
  std::vector<RegionRow> rows;  // without values but those of a region file, and not read
  std::vector<std::int32_t> columnWidths;
  std::size_t leftOut = 0;  // regions that `model` does not have, or that overlap with one before
};
struct OperandsGrid {
  GridOwner owner;
  OperandStore operands;    // texts with their origin; when they were read is not known any more
  GridSettings settings;    // all but the regions' column widths
  std::size_t leftOut = 0;  // texts of operands that `model` does not have
};

[[nodiscard]] std::string PrintRegionsGrid(const GridState& state, std::string_view session);
[[nodiscard]] std::string PrintOperandsGrid(const GridState& state, std::string_view session);

// A file that is whole; as much of it is taken as `model`, which need not be that of the file, has place for.
[[nodiscard]] std::expected<RegionsGrid, LineError> ParseRegionsGrid(std::string_view bytes, std::string_view model);
[[nodiscard]] std::expected<OperandsGrid, LineError> ParseOperandsGrid(std::string_view bytes, std::string_view model);

// Whose grid a file of either kind is.
[[nodiscard]] std::expected<GridOwner, LineError> OwnerOfGrid(std::string_view bytes);

}  // namespace kv::mdlDataTypesView
