#include "journal/JsonText.h"

#include <algorithm>

#include "base/Hex.h"
#include "base/Utf8.h"

namespace kv {
namespace {

constexpr int kDeepest = 8;

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool IsPlain(char c) {
  return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
}

bool IsSurrogate(std::uint32_t code) {
  return code >= 0xD800 && code <= 0xDFFF;
}

}  // namespace

void AppendJsonText(std::string& json, std::string_view text) {
  json += '"';
  while (true) {
    const auto* plain = std::ranges::find_if_not(text, IsPlain);
    const auto count = static_cast<std::size_t>(plain - text.begin());
    json.append(text.substr(0, count));
    text.remove_prefix(count);
    if (text.empty()) break;
    const char32_t code = TakeCharacter(text).value_or(U'?');
    if (code == U'"' || code == U'\\') {
      json += '\\';
      json += static_cast<char>(code);
    } else if (IsControl(code)) {
      json += "\\u";
      AppendHex(json, static_cast<std::uint32_t>(code), 4);
    } else {
      AppendUtf8(json, code);
    }
  }
  json += '"';
}

bool JsonReader::Takes(char wanted) {
  if (!mIsGood || !mRest.starts_with(wanted)) return false;
  mRest.remove_prefix(1);
  return true;
}

std::string JsonReader::Text() {
  std::string text;
  Expect('"');
  while (mIsGood) {
    const auto* plain = std::ranges::find_if_not(mRest, IsPlain);
    const auto count = static_cast<std::size_t>(plain - mRest.begin());
    text.append(mRest.substr(0, count));
    mRest.remove_prefix(count);
    if (Takes('"')) break;
    TakeSpecial(text);
  }
  return text;
}

// What is no plain character: escaped, or of more than one byte.
void JsonReader::TakeSpecial(std::string& text) {
  if (mRest.empty()) return Fail();
  if (Takes('\\')) return TakeEscaped(text);
  const std::optional<char32_t> code = TakeCharacter(mRest);
  if (!code || IsControl(*code)) return Fail();
  AppendUtf8(text, *code);
}

void JsonReader::TakeEscaped(std::string& text) {
  constexpr std::size_t kDigits = 4;
  for (const char plain : {'"', '\\'}) {
    if (!Takes(plain)) continue;
    text += plain;
    return;
  }
  Expect('u');
  const auto code = mIsGood && mRest.size() >= kDigits ? ParseHex(mRest.substr(0, kDigits)) : std::nullopt;
  if (!code || IsSurrogate(*code)) return Fail();
  mRest.remove_prefix(kDigits);
  AppendUtf8(text, static_cast<char32_t>(*code));
}

std::uint64_t JsonReader::Number() {
  constexpr std::uint64_t kMost = 1'000'000'000'000'000;  // what every reader of JSON holds exactly
  const std::size_t digits = std::min(mRest.find_first_not_of("0123456789"), mRest.size());
  std::uint64_t number = 0;
  if (digits == 0 || (digits > 1 && mRest.front() == '0')) Fail();
  for (std::size_t i = 0; mIsGood && i < digits; ++i) {
    number = number * 10 + static_cast<std::uint64_t>(mRest[i] - '0');
    if (number > kMost) Fail();
  }
  if (mIsGood) mRest.remove_prefix(digits);
  return number;
}

void JsonReader::Skip(int depth) {
  if (depth > kDeepest) return Fail();
  if (mRest.starts_with('"')) {
    (void)Text();
  } else if (mRest.starts_with('{')) {
    EachField([&](const std::string&) { Skip(depth + 1); });
  } else if (mRest.starts_with('[')) {
    EachItem([&] { Skip(depth + 1); });
  } else {
    (void)Number();
  }
}

}  // namespace kv
