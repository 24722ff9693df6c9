#include "KvCmDrv1/wire/HexDigits.h"

#include <array>

namespace kv {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> MakeValues() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}

constexpr std::array<std::uint8_t, 256> kValues = MakeValues();

std::uint8_t ValueOf(char digit) {
  return kValues[static_cast<unsigned char>(digit)];
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
  std::uint8_t wrong = 0;
  for (const char digit : digits) {
    const std::uint8_t nibble = ValueOf(digit);
    wrong |= nibble;
    value = value << 4 | (nibble & 0xFU);
  }
  if (wrong > 0xF) return std::nullopt;
  return value;
}

bool HexToBytes(std::string_view digits, std::span<std::uint8_t> bytes) {
  if (digits.size() != 2 * bytes.size()) return false;
  std::uint8_t wrong = 0;  // collected, so that the loop has no branch
  const char* next = digits.data();
  for (std::uint8_t& byte : bytes) {
    const std::uint8_t high = ValueOf(next[0]);
    const std::uint8_t low = ValueOf(next[1]);
    next += 2;
    wrong = static_cast<std::uint8_t>(wrong | high | low);
    byte = static_cast<std::uint8_t>(high << 4 | low);
  }
  return wrong <= 0xF;
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
