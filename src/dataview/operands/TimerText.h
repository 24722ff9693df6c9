#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "link/OperandList.h"

// Times of timers as texts. Inside the program a time is a count of hundredths of a second.
namespace kv::mdlDataTypesView {

inline constexpr std::int32_t kMillisecondsPerHundredth = 10;

// hh:mm:ss.cc, the count clamped to 0..kLongestTime.
[[nodiscard]] std::string TimerText(std::int64_t hundredths);

// The time that a text means: its numbers between ":" and "." in the order hours, minutes, seconds, hundredths. Numbers
// left out at the end are 0, so "01:30" is an hour and a half; a number may be larger than a clock would show
// ("00:90"). Nothing for more than four numbers, for a piece that is no number, and past kLongestTime.
[[nodiscard]] std::optional<std::int32_t> ParseTimerText(std::string_view text);

// The milliseconds of a compact controller's timer word: a count in bits 0 to 13, times the base that bits 14 and 15
// stand for: neither 10 ms, bit 15 alone 100 ms, bit 14 alone 1 s, both 10 s. So 0 to 163830000.
[[nodiscard]] std::int32_t CompactTimerMilliseconds(std::uint16_t word);

// The time that a compact timer's text means: whole milliseconds, a multiple of 10, or with ":" in it a time
// text as above. In hundredths of a second, up to kLongestTime; nothing for any other text.
[[nodiscard]] std::optional<std::int32_t> ParseCompactTimerText(std::string_view text);

// The time that a text for a timer of the model means, by the one or the other form.
[[nodiscard]] std::optional<std::int32_t> ParseTime(std::string_view text, std::string_view model);

}  // namespace kv::mdlDataTypesView
