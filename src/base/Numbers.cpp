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
constexpr std::size_t kFloatTextLimit = 32;  // "-1.23456789e-38" and some more

// from_chars that takes the whole text or nothing.
template <typename Number>
std::optional<Number> ParseWhole(std::string_view text) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
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

std::string PaddedInteger(std::int64_t value, std::size_t digits) {
  std::string text = std::to_string(value);
  return text.insert(0, digits - std::min(digits, text.size()), '0');
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

std::string ExactFloatText(float value) {
  const std::string shown = FloatText(value);
  if (!std::isfinite(value) || ParseFloat(shown) == value) return shown;
  std::array<char, kFloatTextLimit> text;
  return std::string(text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr);
}

}  // namespace kv
