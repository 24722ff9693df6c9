#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/Bytes.h"

namespace kv {

// Hexadecimal texts, most significant digit first. What is written has upper-case digits; readers whose names say
// "Upper" take no others, as on the wire and in clone files.

// Padded on the left with "0" to `digits`, cut on the left when it is longer.
[[nodiscard]] std::string ToHex(std::uint32_t value, std::size_t digits);
// The same behind what `text` holds: for texts of many numbers.
void AppendHex(std::string& text, std::uint32_t value, std::size_t digits);
// Appends two digits a byte.
void AppendHexBytes(std::string& text, std::span<const std::uint8_t> bytes);

// The value of 1 to 8 digits of either case; nothing for any other text.
[[nodiscard]] std::optional<std::uint32_t> ParseHex(std::string_view text);
[[nodiscard]] std::optional<std::uint32_t> ParseUpperHex(std::string_view digits);

// Whether there are no other characters; true for an empty text.
[[nodiscard]] bool AreUpperHexDigits(std::string_view text);

// Fills `bytes` from exactly two digits a byte. False when the length differs or a character is not a digit; `bytes` is
// then of no use.
[[nodiscard]] bool UpperHexToBytes(std::string_view digits, std::span<std::uint8_t> bytes);

// The byte that two digits of either case stand for; nothing for any other text.
[[nodiscard]] std::optional<std::uint8_t> HexPairToByte(std::string_view pair);

// One byte for each two characters of either case. An odd last character is ignored ("0A1" is the one byte 10), an
// empty text gives no bytes. Nothing when a pair is not hexadecimal.
[[nodiscard]] std::optional<Bytes> HexStringToBytes(std::string_view text);

}  // namespace kv
