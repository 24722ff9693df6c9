#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/files/Csv.h"
#include "dataview/files/TypeTexts.h"

// Values of operands as text, in two forms that are told apart by their first line:
//
//   grid     Operand Type,0,1,2       a line a type, as the operand grid is exported
//            MI,12,-5,7
//   values   Operand Type,Address,Value   a line an operand, as regions are read on the command line
//            MI,0,12
//
// Names of types and headings are taken in either case, and blanks around any field are left out.
namespace kv::mdlDataTypesView {

[[nodiscard]] std::string PrintGridCsv(std::span<const TypeTexts> rows, char separator);

// The first line of the values form, which is separated by commas.
inline constexpr std::string_view kValuesHeading = "Operand Type,Address,Value";

// One operand, and the text that the file has for it.
struct OperandValue {
  OperandTypeCode type = OperandTypeCode::MB;
  std::int64_t address = 0;  // whether the model has it is not judged here
  std::string text = {};     // in the grid form, an empty one empties the cell
  std::size_t line = 0;

  bool operator==(const OperandValue&) const = default;
};

// A line that was not taken.
struct LeftOutLine {
  std::size_t line = 0;
  std::string why = {};  // empty: it holds no text but the type's name

  bool operator==(const LeftOutLine&) const = default;
};

struct OperandCsv {
  std::vector<OperandValue> values = {};
  std::vector<LeftOutLine> leftOut = {};

  // "Left out: line 4 (\"abc\" is no value) and 2 lines without values."; empty when all was taken.
  [[nodiscard]] std::string LeftOutText() const;
};

enum class CsvForm { Grid, Values };

// The values in a file. `otherwise` is the form of a file whose first line tells neither.
//
// Grid form: the first line is no data. Each line after it belongs to the type that its first field names. Where that
// field is empty or itself a value, the line belongs to the type of the grid row that it stands for: the first to MB,
// the next to MI, and so on. Left out are a line with a single field, one whose first text is not a value (a number or
// a time, "nan", "inf"), and one past the last type; such a line stands for its row all the same. An empty line stands
// for none. Another name refuses the file, and so does a type that is there twice.
//
// Values form: each line has three fields. Anything else refuses the file, and so does an operand that is there twice.
[[nodiscard]] std::expected<OperandCsv, LineError> ParseOperandCsv(std::string_view bytes, char separator,
                                                                   CsvForm otherwise);

}  // namespace kv::mdlDataTypesView
