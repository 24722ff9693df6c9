#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "simulator/Operands.h"
#include "simulator/Refusal.h"

namespace sim {

inline constexpr std::size_t kOperandRecordSize = 20;

// Reads an operand list of block messages: 1 to 16 records of five 32-bit fields (0, type code, start, count, 0). The
// values of a record follow those of the one before: bits packed, words 2 bytes, double words 4; of timers and counters
// the bit takes one byte.
[[nodiscard]] Result<std::string> ReadOperandList(const Operands& operands, std::string_view records);

}  // namespace sim
