#include "KvCmDrv1/wire/HexDigits.h"

namespace kv {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
// Reckoned, not looked up, and without a way out of the loops: so the compiler can do many characters at once.
bool IsDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

bool AreDigits(std::string_view text) {
  std::uint8_t others = 0;
  for (const char c : text) others = static_cast<std::uint8_t>(others | (IsDigit(c) ? 0 : 1));
  return others == 0;
}

std::uint8_t ValueOf(char digit) {
  return static_cast<std::uint8_t>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

}  // namespace

void AppendHexBytes(std::string& text, std::span<const std::uint8_t> bytes) {
  std::size_t at = text.size();
  text.resize(at + 2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text[at++] = kDigits[byte >> 4];
    text[at++] = kDigits[byte & 0xFU];
  }
}

std::optional<std::uint32_t> HexValue(std::string_view digits) {
  if (digits.empty() || digits.size() > 8) return std::nullopt;
  std::uint32_t value = 0;
  for (const char digit : digits) {
    if (!IsDigit(digit)) return std::nullopt;
    value = value << 4 | ValueOf(digit);
  }
  return value;
}

bool HexToBytes(std::string_view digits, std::span<std::uint8_t> bytes) {
  if (digits.size() != 2 * bytes.size() || !AreDigits(digits)) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(ValueOf(digits[2 * i]) << 4 | ValueOf(digits[2 * i + 1]));
  }
  return true;
}

std::uint32_t FieldReader::Hex(std::size_t digits) {
  const std::optional<std::uint32_t> value = HexValue(Take(digits));
  if (!value) Fail();
  return mGood ? *value : 0;
}

void FieldReader::Expect(std::string_view characters) {
  if (Take(characters.size()) != characters) Fail();
}

void FieldReader::ExpectHex(std::uint32_t value, std::size_t digits) {
  if (Hex(digits) != value) Fail();
}

std::string_view FieldReader::Take(std::size_t count) {
  if (!mGood || mRest.size() < count) {
    Fail();
    return {};
  }
  const std::string_view taken = mRest.substr(0, count);
  mRest.remove_prefix(count);
  return taken;
}

}  // namespace kv
