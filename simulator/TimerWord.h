#pragma once

#include <cstdint>
#include <optional>

namespace sim {

// A timer word: a count in bits 0 to 13 and a time base in bits 14 and 15 (neither set 10 ms, bit 15 alone 100 ms, bit
// 14 alone 1 s, both 10 s). Times are hundredths of a second.

// The word of the finest base in which the time fits exactly; nothing when it fits none.
[[nodiscard]] std::optional<std::uint16_t> ExactTimerWord(std::uint32_t time);

// The word of the finest base whose range holds the time, rounded down; the greatest word for a longer one.
[[nodiscard]] std::uint16_t NearestTimerWord(std::uint32_t time);

}  // namespace sim
