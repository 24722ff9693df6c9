#include "dataview/sheets/SheetTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace kv {
namespace {

constexpr double kWholeLimit = 1e15;  // below it every whole number is exact in a double, and office programs show it
constexpr int kFloatDigits = 7;       // of a single-precision value, as the view writes it
constexpr std::size_t kLongestNumber = 32;

template <typename... Form>
std::string Decimal(double value, Form... form) {
  std::array<char, kLongestNumber> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, form...);
  return std::string(text.data(), end.ptr);
}

bool IsWhole(double value) {
  return std::abs(value) < kWholeLimit && std::trunc(value) == value;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  double value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string NumberText(double value) {
  return IsWhole(value) ? Decimal(value, std::chars_format::fixed) : Decimal(value);
}

std::optional<std::string> FloatNumberText(double value) {
  std::string text = Decimal(value, std::chars_format::general, kFloatDigits);
  return ParseNumber(text) == value ? std::optional(std::move(text)) : std::nullopt;
}

SheetCell CellOf(std::string_view text) {
  if (text.empty()) return {};
  const auto value = ParseNumber(text);
  const bool isNumber = value && (NumberText(*value) == text || FloatNumberText(*value) == text);
  return {isNumber ? SheetCell::Kind::Number : SheetCell::Kind::Text, std::string(text)};
}

std::string CellPlace(std::size_t row, std::size_t column) {
  constexpr std::size_t kLetters = 26;
  std::string letters;
  for (std::size_t rest = column + 1; rest > 0; rest = (rest - 1) / kLetters) {
    letters += static_cast<char>('A' + (rest - 1) % kLetters);
  }
  std::ranges::reverse(letters);
  return letters + std::to_string(row + 1);
}

}  // namespace kv
