#pragma once

#include <expected>
#include <string>

#include "dataview/sheets/SheetFile.h"

namespace kv {

// An error of what is in a file; the caller who knows the file puts its name in.
[[nodiscard]] std::unexpected<SheetError> SheetFailure(std::string place, std::string what);

// Collects the cells that a reader finds, in any order, within the limits of SheetTable.h.
class SheetBuilder {
 public:
  // An empty cell is as good as none. The last one of two in the same place counts.
  [[nodiscard]] std::expected<void, SheetError> Put(std::size_t row, std::size_t column, SheetCell cell);
  [[nodiscard]] std::expected<void, SheetError> PutNumber(std::size_t row, std::size_t column, double value);
  [[nodiscard]] std::expected<void, SheetError> PutText(std::size_t row, std::size_t column, std::string text);

  // The sheet, without empty cells and rows at the ends.
  [[nodiscard]] SheetTable Take(std::string name);

 private:
  SheetTable mTable;
  std::size_t mCells = 0;
};

}  // namespace kv
