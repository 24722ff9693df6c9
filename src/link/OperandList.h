#pragma once

#include <cstdint>
#include <vector>

namespace kv {

// One record of a list read: `count` operands of one type from `start` on.
struct OperandListRequest {
  std::int32_t reserved = 0;
  std::int32_t driverTypeCode = 0;
  std::int32_t start = 0;
  std::int32_t count = 0;
  std::int32_t reservedEnd = 0;
};

// The driver type codes whose operands answer with three numbers each: preset, current, bit.
inline constexpr std::int32_t kDriverTypeTimers = 11;
inline constexpr std::int32_t kDriverTypeCounters = 12;

// The longest time of a timer, in hundredths of a second: 99:59:59.99.
inline constexpr std::int32_t kLongestTime = 35999999;

// The values of one record, in address order, as unsigned bit patterns of the operand's width: one number an operand,
// three (preset, current, bit) for timers and counters.
using OperandListValues = std::vector<std::uint32_t>;

}  // namespace kv
