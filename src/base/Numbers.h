#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// Numbers to text and back, without the locale. Parsing takes the whole text or nothing: no blanks, no "+", no overflow.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view text);
[[nodiscard]] std::optional<float> ParseFloat(std::string_view text);   // finite; "." is the decimal point
[[nodiscard]] std::optional<std::uint32_t> ParseHex(std::string_view text);  // 1 to 8 digits of either case

// Upper-case hexadecimal, padded on the left with "0" to `digits`, cut on the left when it is longer.
[[nodiscard]] std::string ToHex(std::uint32_t value, std::size_t digits);

// The general decimal form with at most 7 significant digits: the shortest text among those that read back as the value rounded to 7 digits.
[[nodiscard]] std::string FloatText(float value);

}  // namespace kv
