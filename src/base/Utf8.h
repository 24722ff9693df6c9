#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kv {

// Takes the next character off `text`, which is not empty. Nothing for bytes that are no UTF-8 (overlong spellings
// among them), of which one is taken.
[[nodiscard]] std::optional<char32_t> TakeCharacter(std::string_view& text);

// Appends a character of at most 0x10FFFF.
void AppendUtf8(std::string& text, char32_t code);

[[nodiscard]] bool IsUtf8(std::string_view text);

// The same text in 16-bit units, as some files and interfaces want it; each byte that is no UTF-8 becomes "?".
[[nodiscard]] std::u16string Utf16FromUtf8(std::string_view text);

// And back; half a pair of units becomes "?".
[[nodiscard]] std::string Utf8FromUtf16(std::u16string_view units);

}  // namespace kv
