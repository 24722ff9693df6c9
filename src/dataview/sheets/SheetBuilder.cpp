#include "dataview/sheets/SheetBuilder.h"

#include <cmath>
#include <utility>

#include "base/Utf8.h"

namespace kv {

std::unexpected<SheetError> SheetFailure(std::string place, std::string what) {
  return std::unexpected(SheetError{.file = {}, .place = std::move(place), .what = std::move(what)});
}

std::expected<void, SheetError> SheetBuilder::Put(std::size_t row, std::size_t column, SheetCell cell) {
  if (cell.kind == SheetCell::Kind::Empty) return {};
  if (row >= kMaxSheetRows || column >= kMaxSheetColumns) {
    return SheetFailure("cell " + CellPlace(row, column), "it lies past the 65536 rows and 256 columns that are read");
  }
  if (cell.text.size() > kMaxCellBytes) {
    return SheetFailure("cell " + CellPlace(row, column), "its text is longer than a value can be");
  }
  if (!IsUtf8(cell.text)) return SheetFailure("cell " + CellPlace(row, column), "its text is damaged: it is not UTF-8");
  auto& rows = mTable.rows;
  if (rows.size() <= row) rows.resize(row + 1);
  if (rows[row].size() <= column) {
    mCells += column + 1 - rows[row].size();
    if (mCells > kMaxSheetCells) {
      return SheetFailure("cell " + CellPlace(row, column), "the sheet has more than a million cells up to here");
    }
    rows[row].resize(column + 1);
  }
  rows[row][column] = std::move(cell);
  return {};
}

std::expected<void, SheetError> SheetBuilder::PutNumber(std::size_t row, std::size_t column, double value) {
  if (!std::isfinite(value)) return PutText(row, column, {});
  return Put(row, column, {SheetCell::Kind::Number, NumberText(value)});
}

std::expected<void, SheetError> SheetBuilder::PutText(std::size_t row, std::size_t column, std::string text) {
  return Put(row, column, {SheetCell::Kind::Text, std::move(text)});
}

SheetTable SheetBuilder::Take(std::string name) {
  mTable.name = std::move(name);
  const auto isEmpty = [](const SheetCell& cell) { return cell.text.empty(); };
  for (auto& row : mTable.rows) {
    while (!row.empty() && isEmpty(row.back())) row.pop_back();
  }
  while (!mTable.rows.empty() && mTable.rows.back().empty()) mTable.rows.pop_back();
  return std::move(mTable);
}

}  // namespace kv
