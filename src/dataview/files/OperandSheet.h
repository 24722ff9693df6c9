#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/files/TypeTexts.h"
#include "dataview/operands/OperandTypes.h"
#include "dataview/sheets/SheetFile.h"

// The operand grid as a spreadsheet: a row for each address and a column for each operand type, because sheets may be
// long but not wide.
namespace kv::mdlDataTypesView {

// Of the first column, in which the addresses are.
inline constexpr std::string_view kAddressHeading = "Address";

// The headings "Address", "MB", "MI" ... with nothing below: what the template holds.
[[nodiscard]] SheetTable OperandSheetTemplate();

// The rows below the headings; texts of types that are not there stay empty.
[[nodiscard]] SheetTable OperandSheetRows(std::span<const TypeTexts> types);

// One cell of a sheet: what stands there, and the operand that it is for.
struct SheetValue {
  OperandTypeCode type = OperandTypeCode::MB;
  std::int32_t address = 0;
  std::string text = {};  // empty empties the operand's cell
  std::size_t row = 0;    // CellPlace(row, column) names the cell
  std::size_t column = 0;

  bool operator==(const SheetValue&) const = default;
};

// The values of a sheet whose columns may have changed places and may be fewer, and whose rows may be sorted in any
// way. Refused are a sheet whose first column is not headed "Address", a column with cells and without a type's name, a
// type or an address that is there twice, and a row with cells and without an address. The error's file is empty.
[[nodiscard]] std::expected<std::vector<SheetValue>, SheetError> ParseOperandSheet(const SheetTable& sheet);

}  // namespace kv::mdlDataTypesView
