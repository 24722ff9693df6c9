#include "base/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kv {
namespace {

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

constexpr char32_t kLast = 0x10FFFF;
constexpr char32_t kFirstInPairs = 0x10000;  // of 16-bit units
constexpr char32_t kSecondHalf = 0xDC00;

// Halves of pairs stand for no character.
constexpr bool IsHalf(char32_t code) {
  return code >= 0xD800 && code <= 0xDFFF;
}

}  // namespace

std::optional<char32_t> TakeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const auto* form = std::ranges::find_if(kForms, [lead](const Utf8Form& f) { return (lead & f.mask) == f.lead; });
  if (form != kForms.end() && form->length <= text.size()) {
    char32_t code = lead & static_cast<unsigned char>(~form->mask);
    bool good = true;
    for (const char c : text.substr(1, form->length - 1)) {
      good = good && (static_cast<unsigned char>(c) & 0xC0) == 0x80;
      code = code << 6 | (static_cast<unsigned char>(c) & 0x3F);
    }
    if (good && code >= form->least && code <= kLast && !IsHalf(code)) {
      text.remove_prefix(form->length);
      return code;
    }
  }
  text.remove_prefix(1);
  return std::nullopt;
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto* form =
      std::ranges::find_if(kForms.rbegin(), kForms.rend(), [code](const Utf8Form& f) { return code >= f.least; })
          .base() -
      1;
  std::size_t shift = 6 * (form->length - 1);
  text += static_cast<char>(form->lead | code >> shift);
  while (shift > 0) {
    shift -= 6;
    text += static_cast<char>(0x80 | (code >> shift & 0x3F));
  }
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!TakeCharacter(text)) return false;
  }
  return true;
}

std::u16string Utf16FromUtf8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const char32_t code = TakeCharacter(text).value_or(U'?');
    if (code < kFirstInPairs) {
      units += static_cast<char16_t>(code);
    } else {
      units += static_cast<char16_t>(0xD800 | (code - kFirstInPairs) >> 10);
      units += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
    }
  }
  return units;
}

std::string Utf8FromUtf16(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  while (!units.empty()) {
    char32_t code = units.front();
    units.remove_prefix(1);
    if (IsHalf(code)) {
      const bool isPair = code < kSecondHalf && !units.empty() && IsHalf(units.front()) && units.front() >= kSecondHalf;
      code = isPair ? kFirstInPairs + ((code & 0x3FF) << 10 | (units.front() & 0x3FF)) : U'?';
      if (isPair) units.remove_prefix(1);
    }
    AppendUtf8(text, code);
  }
  return text;
}

}  // namespace kv
