#include "base/AnsiText.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/Utf8.h"

namespace kv {

namespace {

// The code points of the bytes 0x80 to 0x9F; all other bytes are the code point of the same number.
constexpr std::size_t kFirst = 0x80;
constexpr std::array<char32_t, 32> kMiddle = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
                                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
                                              0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
                                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t ToCodePoint(unsigned char byte) {
  return byte >= kFirst && byte < kFirst + kMiddle.size() ? kMiddle[byte - kFirst] : char32_t{byte};
}

char ToAnsi(char32_t code) {
  if (code < kFirst || (code >= kFirst + kMiddle.size() && code <= 0xFF)) return static_cast<char>(code);
  const auto* found = std::ranges::find(kMiddle, code);
  return found == kMiddle.end() ? '?' : static_cast<char>(kFirst + static_cast<std::size_t>(found - kMiddle.begin()));
}

}  // namespace

std::string AnsiToUtf8(std::string_view ansi) {
  std::string utf8;
  utf8.reserve(ansi.size());
  for (const char c : ansi) AppendUtf8(utf8, ToCodePoint(static_cast<unsigned char>(c)));
  return utf8;
}

std::string Utf8ToAnsi(std::string_view utf8) {
  std::string ansi;
  ansi.reserve(utf8.size());
  while (!utf8.empty()) ansi += ToAnsi(TakeCharacter(utf8).value_or(U'?'));
  return ansi;
}

}  // namespace kv
