#include "base/AnsiText.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kv {

namespace {

// The code points of the bytes 0x80 to 0x9F; all other bytes are the code point of the same number.
constexpr std::size_t kFirst = 0x80;
constexpr std::array<char32_t, 32> kMiddle = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
                                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
                                              0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
                                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

char32_t ToCodePoint(unsigned char byte) {
  return byte >= kFirst && byte < kFirst + kMiddle.size() ? kMiddle[byte - kFirst] : char32_t{byte};
}

char ToAnsi(char32_t code) {
  if (code < kFirst || (code >= kFirst + kMiddle.size() && code <= 0xFF)) return static_cast<char>(code);
  const auto* found = std::ranges::find(kMiddle, code);
  return found == kMiddle.end() ? '?' : static_cast<char>(kFirst + static_cast<std::size_t>(found - kMiddle.begin()));
}

void AppendUtf8(std::string& text, char32_t code) {  // every character of the code page has at most three bytes
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | code >> 6);
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | code >> 12);
    text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// One row a length of UTF-8 sequences; `least` keeps overlong spellings out.
struct Utf8Form {
  unsigned char mask;
  unsigned char lead;
  std::size_t length;
  char32_t least;
};
constexpr std::array<Utf8Form, 4> kForms = {{
    {0x80, 0x00, 1, 0x00},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
}};

// Takes the next character off `text`; of bytes that are no UTF-8, one byte.
char32_t TakeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const auto* form = std::ranges::find_if(kForms, [lead](const Utf8Form& f) { return (lead & f.mask) == f.lead; });
  if (form != kForms.end() && form->length <= text.size()) {
    char32_t code = lead & static_cast<unsigned char>(~form->mask);
    bool good = true;
    for (const char c : text.substr(1, form->length - 1)) {
      good = good && (static_cast<unsigned char>(c) & 0xC0) == 0x80;
      code = code << 6 | (static_cast<unsigned char>(c) & 0x3F);
    }
    if (good && code >= form->least) {
      text.remove_prefix(form->length);
      return code;
    }
  }
  text.remove_prefix(1);
  return kNoCharacter;
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
  while (!utf8.empty()) ansi += ToAnsi(TakeCharacter(utf8));
  return ansi;
}

}  // namespace kv
