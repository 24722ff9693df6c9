#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/AnsiText.h"
#include "base/LittleEndian.h"

namespace kv {

// Fields at fixed places of a binary file, which must be long enough. Integers are little-endian.

[[nodiscard]] inline std::uint32_t LittleAt(std::string_view bytes, std::size_t offset, std::size_t size) {
  return LittleEndian(bytes.substr(offset, size));
}

// ANSI text padded with zero bytes, as UTF-8 without any zero byte.
[[nodiscard]] inline std::string TextAt(std::string_view bytes, std::size_t offset, std::size_t size) {
  std::string ansi(bytes.substr(offset, size));
  std::erase(ansi, '\0');
  return AnsiToUtf8(ansi);
}

// A number of decimal digits; nothing when one of them is none.
[[nodiscard]] inline std::optional<int> DigitsAt(std::string_view text, std::size_t offset, std::size_t size) {
  const std::string_view digits = text.substr(offset, size);
  const bool isNumber = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  if (!isNumber || digits.size() != size) return std::nullopt;
  int number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return number;
}

// ANSI text for people, as UTF-8. Zero bytes are left out; other control characters, and codes that the code page
// leaves open, become blanks: no file moves a terminal's cursor.
[[nodiscard]] inline std::string ShownText(std::string_view ansi) {
  constexpr std::string_view kOpen = "\x7F\x81\x8D\x8F\x90\x9D";
  std::string text(ansi);
  std::erase(text, '\0');
  std::ranges::replace_if(text, [=](char c) { return (c >= 0 && c < ' ') || kOpen.contains(c); }, ' ');
  return AnsiToUtf8(text);
}

}  // namespace kv
