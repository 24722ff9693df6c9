#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// One cell of a spreadsheet. A number travels as its text, so that no digit is lost between the file and the operand.
struct SheetCell {
  enum class Kind : std::uint8_t { Empty, Number, Text };

  Kind kind = Kind::Empty;
  std::string text = {};  // UTF-8

  bool operator==(const SheetCell&) const = default;
};

// The first sheet of a workbook: rows of cells, ragged on the right. The first row is the heading.
struct SheetTable {
  std::string name = "Sheet1";
  std::vector<std::vector<SheetCell>> rows = {};

  bool operator==(const SheetTable&) const = default;
};

// What an .xls file can hold, and how much is taken of any file. The cells are counted to each row's last one.
inline constexpr std::size_t kMaxSheetRows = 65536;
inline constexpr std::size_t kMaxSheetColumns = 256;
inline constexpr std::size_t kMaxSheetCells = 1'000'000;
inline constexpr std::size_t kMaxCellBytes = 4000;

// Number, when the text is how such a number is written: whole numbers of up to 15 digits, decimals, and floats as the
// view shows them ("0.1", "1e-05", "1.234568e+07"; read back, the last one says "12345680"). Empty for an empty text,
// else Text ("00:01:02.50", "007", "nan").
[[nodiscard]] SheetCell CellOf(std::string_view text);

// A number of a file as a text: without a point when it is whole and below 1e15, else the shortest decimal that reads
// back the same.
[[nodiscard]] std::string NumberText(double value);

// A single-precision value as the view writes it ("1.234568e+07"); nothing when its 7 digits do not say all of it.
[[nodiscard]] std::optional<std::string> FloatNumberText(double value);

// The number that a text or a file's characters say, without the locale; nothing for any other text and for what is
// not finite.
[[nodiscard]] std::optional<double> ParseNumber(std::string_view text);

// "C7" for row 6, column 2.
[[nodiscard]] std::string CellPlace(std::size_t row, std::size_t column);

}  // namespace kv
