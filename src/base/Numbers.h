#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// Decimal numbers to text and back, without the locale; hexadecimal ones are in base/Hex.h. Parsing takes the whole
// text or nothing: no blanks, no "+", no overflow.
[[nodiscard]] std::optional<std::int64_t> ParseInteger(std::string_view text);
[[nodiscard]] std::optional<float> ParseFloat(std::string_view text);  // finite; "." is the decimal point

// Decimal, padded on the left with "0" to `digits`. `value` is not negative.
[[nodiscard]] std::string PaddedInteger(std::int64_t value, std::size_t digits);

// The shortest decimal that reads back as the value; where that has more than 7 significant digits, the value itself
// rounded to 7. In the general form without trailing zeros: "0.1", "1234567", and with an exponent from 1e+07 upward
// and below 0.0001: "1.234568e+07", "1e-05". Not a number is "nan", the infinities are "inf" and "-inf".
[[nodiscard]] std::string FloatText(float value);
// The same, with as many digits as it takes to read back as the value.
[[nodiscard]] std::string ExactFloatText(float value);

}  // namespace kv
