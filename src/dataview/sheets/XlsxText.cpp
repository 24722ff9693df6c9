#include "dataview/sheets/XlsxText.h"

#include <algorithm>
#include <optional>

#include "base/Hex.h"
#include "base/Utf8.h"

namespace kv {
namespace {

constexpr std::size_t kEscapeLength = 7;  // "_x000D_"

// The character that an escape at the start of the text stands for.
std::optional<char16_t> EscapedAt(std::string_view text) {
  if (text.size() < kEscapeLength || !text.starts_with("_x") || text[kEscapeLength - 1] != '_') return std::nullopt;
  const auto code = ParseHex(text.substr(2, 4));
  return code ? std::optional(static_cast<char16_t>(*code)) : std::nullopt;
}

// Takes off the text what stands before its next "_", which may be the start of an escape.
std::string_view TakePlain(std::string_view& text) {
  const std::string_view plain = text.substr(0, std::min(text.find('_', 1), text.size()));
  text.remove_prefix(plain.size());
  return plain;
}

}  // namespace

std::string UnescapedText(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    if (const auto character = EscapedAt(text)) {
      plain += Utf8FromUtf16(std::u16string(1, *character));
      text.remove_prefix(kEscapeLength);
    } else {
      plain += TakePlain(text);
    }
  }
  return plain;
}

std::string EscapedText(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    if (EscapedAt(text)) escaped += "_x005F";  // its own "_" ends it
    escaped += TakePlain(text);
  }
  return escaped;
}

}  // namespace kv
