#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvtele/RegionsFile.h"

// Values of regions as lines of text, one an operand:
//
//   Operand Type,Address,Value
//   MI,0,-17
//   TIMER PRESET,3,00:00:01.50
//
// Read is also what the operand view exports: a line a type.
namespace kv::cli {

inline constexpr std::size_t kLargestValuesFile = std::size_t{16} << 20;  // bytes

// `texts` has the values of each row, one an operand.
[[nodiscard]] std::string PrintValues(std::span<const RegionRow> rows, std::span<const std::vector<std::string>> texts);

// Neighbouring operands within one region, and what is to be written to them: one request.
struct ValueRun {
  Region region;
  std::vector<std::string> texts;
};

struct ValuesToWrite {
  std::vector<ValueRun> runs;  // in the order of the regions; those of read-only types aside
  std::size_t readOnly = 0;    // regions whose type cannot be written
  std::size_t missing = 0;     // operands of the other regions without a value in the file
  std::string leftOut = {};    // a sentence about lines that were not taken; mostly empty
};

// The values of a file for these regions. Refused, with the line named, are a line that is not as above, an operand
// that is in none of the regions or there twice, a value out of range, and a number for a time; nothing is taken then.
// `file` is its name.
[[nodiscard]] OrFailure<ValuesToWrite> ParseValues(std::string_view bytes, const std::string& file,
                                                   std::span<const RegionRow> rows, std::string_view model);

}  // namespace kv::cli
