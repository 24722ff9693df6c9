#include "base/Hex.h"

#include <array>
#include <charconv>
#include <system_error>

namespace kv {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kMostDigits = 8;

// Reckoned, not looked up, and without a way out of the loops: so the compiler can do many characters at once.
bool IsUpperDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

std::uint8_t ValueOfUpper(char digit) {
  return static_cast<std::uint8_t>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

// The few digits of a number are looked up instead: no loop is long enough to be done at once.
constexpr std::uint8_t kNoDigit = 16;
constexpr std::array<std::uint8_t, 256> kUpperValues = [] {
  std::array<std::uint8_t, 256> values;
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}();

}  // namespace

std::string ToHex(std::uint32_t value, std::size_t digits) {
  std::string text;
  AppendHex(text, value, digits);
  return text;
}

void AppendHex(std::string& text, std::uint32_t value, std::size_t digits) {
  const std::size_t before = text.size();
  const std::size_t after = before + digits;
  text.resize_and_overwrite(after, [&](char* characters, std::size_t) {
    for (std::size_t at = after; at > before; value >>= 4) characters[--at] = kDigits[value & 0xFU];
    return after;
  });
}

void AppendHexBytes(std::string& text, std::span<const std::uint8_t> bytes) {
  std::size_t at = text.size();
  text.resize(at + 2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text[at++] = kDigits[byte >> 4];
    text[at++] = kDigits[byte & 0xFU];
  }
}

std::optional<std::uint32_t> ParseHex(std::string_view text) {
  if (text.size() > kMostDigits) return std::nullopt;
  std::uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
  return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<std::uint32_t> ParseUpperHex(std::string_view digits) {
  if (digits.empty() || digits.size() > kMostDigits) return std::nullopt;
  std::uint32_t value = 0, all = 0;
  for (const char digit : digits) {
    const std::uint8_t place = kUpperValues[static_cast<unsigned char>(digit)];
    all |= place;
    value = value << 4 | place;
  }
  return all < kNoDigit ? std::optional(value) : std::nullopt;
}

bool AreUpperHexDigits(std::string_view text) {
  std::uint8_t others = 0;
  for (const char c : text) others = static_cast<std::uint8_t>(others | (IsUpperDigit(c) ? 0 : 1));
  return others == 0;
}

bool UpperHexToBytes(std::string_view digits, std::span<std::uint8_t> bytes) {
  if (digits.size() != 2 * bytes.size() || !AreUpperHexDigits(digits)) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(ValueOfUpper(digits[2 * i]) << 4 | ValueOfUpper(digits[2 * i + 1]));
  }
  return true;
}

std::optional<std::uint8_t> HexPairToByte(std::string_view pair) {
  const auto value = pair.size() == 2 ? ParseHex(pair) : std::nullopt;
  return value ? std::optional(static_cast<std::uint8_t>(*value)) : std::nullopt;
}

std::optional<Bytes> HexStringToBytes(std::string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  for (; text.size() >= 2; text.remove_prefix(2)) {
    const auto byte = HexPairToByte(text.substr(0, 2));
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace kv
