#include "base/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace kv {

namespace {

constexpr int kFloatDigits = 7;
constexpr std::size_t kMaxHexDigits = 8;
constexpr std::size_t kFloatTextLimit = 32;  // "-1.23456789e-38" and some more

// from_chars that takes the whole text or nothing.
template <typename Number, typename... Form>
std::optional<Number> ParseWhole(std::string_view text, Form... form) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, form...);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

// Of a number in scientific form.
std::ptrdiff_t DigitsOfMantissa(std::string_view number) {
  return std::ranges::count_if(number.substr(0, number.find('e')), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::optional<std::int64_t> ParseInteger(std::string_view text) {
  return ParseWhole<std::int64_t>(text);
}

std::optional<float> ParseFloat(std::string_view text) {
  const auto value = ParseWhole<float>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::uint32_t> ParseHex(std::string_view text) {
  return text.size() > kMaxHexDigits ? std::nullopt : ParseWhole<std::uint32_t>(text, 16);
}

std::string PaddedInteger(std::int64_t value, std::size_t digits) {
  std::string text = std::to_string(value);
  return text.insert(0, digits - std::min(digits, text.size()), '0');
}

std::string ToHex(std::uint32_t value, std::size_t digits) {
  std::string text;
  AppendHex(text, value, digits);
  return text;
}

void AppendHex(std::string& text, std::uint32_t value, std::size_t digits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const std::size_t before = text.size();
  const std::size_t after = before + digits;
  text.resize_and_overwrite(after, [&](char* characters, std::size_t) {
    for (std::size_t at = after; at > before; value >>= 4) characters[--at] = kDigits[value & 0xFU];
    return after;
  });
}

std::string FloatText(float value) {
  if (std::isnan(value)) return "nan";
  std::array<char, kFloatTextLimit> text;
  char* end = text.data() + text.size();
  const char* shortest = std::to_chars(text.data(), end, value, std::chars_format::scientific).ptr;
  // Only a text with too many digits is rounded, and then the value itself: a text has been rounded before.
  double shown = value;
  const bool isShort = DigitsOfMantissa({text.data(), shortest}) <= kFloatDigits;
  if (isShort) std::from_chars(text.data(), shortest, shown);
  return std::string(text.data(), std::to_chars(text.data(), end, shown, std::chars_format::general, kFloatDigits).ptr);
}

}  // namespace kv
