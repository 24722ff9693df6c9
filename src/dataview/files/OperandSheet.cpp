#include "dataview/files/OperandSheet.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

std::unexpected<SheetError> Refused(std::size_t row, std::size_t column, std::string what) {
  return std::unexpected(SheetError{.place = "cell " + CellPlace(row, column), .what = std::move(what)});
}

std::size_t ColumnOf(OperandTypeCode type) {
  return static_cast<std::size_t>(type);  // the types follow the addresses in the order of their codes
}

// As the grid shows it; a float may have lost its exponent in the sheet.
std::string GridText(const SheetCell& cell, OperandTypeCode type) {
  const bool isFloat = type == OperandTypeCode::MF && cell.kind == SheetCell::Kind::Number;
  const auto value = isFloat ? ParseNumber(cell.text) : std::nullopt;
  const auto text = value ? FloatNumberText(*value) : std::nullopt;
  return text.value_or(cell.text);
}

class OperandSheetParser {
 public:
  explicit OperandSheetParser(const SheetTable& sheet) : mSheet(sheet) {}

  std::expected<std::vector<SheetValue>, SheetError> Parse() {
    if (auto done = ReadHeadings(); !done) return std::unexpected(done.error());
    for (std::size_t row = 1; row < mSheet.rows.size(); ++row) {
      if (auto done = ReadRow(row); !done) return std::unexpected(done.error());
    }
    return std::move(mValues);
  }

 private:
  std::expected<void, SheetError> ReadHeadings() {
    const auto* headings = mSheet.rows.empty() || mSheet.rows.front().empty() ? nullptr : &mSheet.rows.front();
    if (headings == nullptr || UpperCased(TrimBlanks(headings->front().text)) != UpperCased(kAddressHeading)) {
      return Refused(0, 0, "the heading \"Address\" was expected");
    }
    std::set<OperandTypeCode> seen;
    for (std::size_t column = 1; column < headings->size(); ++column) {
      const std::string_view heading = TrimBlanks((*headings)[column].text);
      const auto type = TypeFromName(heading);
      if (!heading.empty() && !type) return Refused(0, column, "no operand type has this name");
      if (type && !seen.insert(*type).second) return Refused(0, column, "this operand type is there twice");
      mTypes.push_back(type);
    }
    if (seen.empty()) return Refused(0, 1, "the name of an operand type was expected");
    return {};
  }

  std::expected<void, SheetError> ReadRow(std::size_t row) {
    const std::vector<SheetCell>& cells = mSheet.rows[row];
    const bool isEmpty = std::ranges::all_of(cells, [](const SheetCell& cell) { return cell.text.empty(); });
    if (isEmpty) return {};
    const auto address = ParseInteger(TrimBlanks(cells.front().text));
    if (!address || *address < 0 || *address >= static_cast<std::int64_t>(kMaxSheetRows)) {
      return Refused(row, 0, "the address of an operand was expected");
    }
    const auto [before, isNew] = mRows.try_emplace(*address, row);
    if (!isNew) return Refused(row, 0, "the same address is in " + CellPlace(before->second, 0));
    for (std::size_t column = 1; column <= mTypes.size() || column < cells.size(); ++column) {
      const SheetCell cell = column < cells.size() ? cells[column] : SheetCell();
      if (auto done = ReadCell(row, column, static_cast<std::int32_t>(*address), cell); !done) return done;
    }
    return {};
  }

  std::expected<void, SheetError> ReadCell(std::size_t row, std::size_t column, std::int32_t address,
                                           const SheetCell& cell) {
    const auto type = column <= mTypes.size() ? mTypes[column - 1] : std::nullopt;
    if (!type) {
      if (cell.text.empty()) return {};
      return Refused(row, column, "its column has no heading; the name of an operand type was expected");
    }
    mValues.push_back({*type, address, GridText(cell, *type), row, column});
    return {};
  }

  const SheetTable& mSheet;
  std::vector<std::optional<OperandTypeCode>> mTypes;  // by column, behind that of the addresses
  std::map<std::int64_t, std::size_t> mRows;           // by address
  std::vector<SheetValue> mValues;
};

}  // namespace

SheetTable OperandSheetTemplate() {
  SheetTable sheet{.name = "Operand View"};
  auto& headings = sheet.rows.emplace_back();
  headings.push_back(CellOf(kAddressHeading));
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    headings.push_back(CellOf(TypeName(static_cast<OperandTypeCode>(code))));
  }
  return sheet;
}

SheetTable OperandSheetRows(std::span<const TypeTexts> types) {
  SheetTable sheet;
  for (const TypeTexts& row : types) {
    if (sheet.rows.size() < row.texts.size()) sheet.rows.resize(row.texts.size());
  }
  for (std::size_t address = 0; address < sheet.rows.size(); ++address) {
    auto& cells = sheet.rows[address];
    cells.resize(1 + static_cast<std::size_t>(kOperandTypeCount));
    cells.front() = CellOf(std::to_string(address));
    for (const TypeTexts& row : types) {
      if (address < row.texts.size()) cells[ColumnOf(row.type)] = CellOf(row.texts[address]);
    }
  }
  return sheet;
}

std::expected<std::vector<SheetValue>, SheetError> ParseOperandSheet(const SheetTable& sheet) {
  return OperandSheetParser(sheet).Parse();
}

}  // namespace kv::mdlDataTypesView
