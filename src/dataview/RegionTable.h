#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Time.h"
#include "dataview/GridSelection.h"
#include "dataview/operands/Region.h"

namespace kv::mdlDataTypesView {

class OperandStore;

inline constexpr std::string_view kRegionOverlapMessage =
    "The selected region overlaps with an already defined region.";
// Asked before the regions are replaced.
inline constexpr std::string_view kValuesWillBeDeletedQuestion =
    "Performing this operation will delete all of the current values. Do you want to continue?";

// One row of the regions table.
struct RegionRow {
  Region region;
  std::string description;  // the user's own words
  SizeCode size = SizeCode::Bit16;
  FormatCode format = FormatCode::Decimal;
  std::string values;             // the region's values in that size and format
  std::optional<Instant> readAt;  // when all of its values were last read; none before that
  bool isFromFile = false;        // the values are those of a region file, as old as that; nobody read them
};

// The columns of the regions table.
enum class RegionColumn : std::int32_t { Type, Name, From, To, Description, Size, Format, Values };
inline constexpr std::int32_t kRegionColumnCount = 8;

// A row as it is first added: the type's own width, decimal (bits: "1 BIT" and "BINARY").
[[nodiscard]] RegionRow NewRegionRow(const Region& region);

// The regions that the user has defined, in the order of the table. Regions of one type never overlap, hold no more
// operands than one request, and end within the model's operands.
class RegionTable {
 public:
  struct AddResult {
    std::size_t added = 0;
    std::size_t removed = 0;
    bool overlap = false;  // at least one type was left out because of it
  };

  [[nodiscard]] std::span<const RegionRow> Rows() const { return mRows; }
  [[nodiscard]] std::vector<Region> Regions() const;

  // Adds what is selected of the operand grid, type by type; hidden rows are skipped.
  AddResult AddSelection(const GridSelection& selection, const HiddenRows& hidden, const OperandStore& store);
  // Removes the rows with these indices (from 0, in any order; others are ignored).
  void Remove(std::span<const std::size_t> rows);
  void Clear() { mRows.clear(); }
  void Assign(std::vector<RegionRow> rows) { mRows = std::move(rows); }

  // Changes one row's settings; a code that is not offered for the row's type is refused. A new size takes the format
  // along when the old one is not offered for it.
  bool SetDescription(std::size_t row, std::string_view text);
  bool SetSize(std::size_t row, SizeCode size);
  bool SetFormat(std::size_t row, FormatCode format);
  void SetReadAt(std::size_t row, Instant when);

  // Builds the row's values from the store again; whether the text changed, or where it comes from. A row is empty
  // until all of its operands have a text.
  bool RefreshValues(std::size_t row, const OperandStore& store);

 private:
  void AddType(const Region& region, const OperandStore& store, AddResult& result);

  std::vector<RegionRow> mRows;
};

}  // namespace kv::mdlDataTypesView
