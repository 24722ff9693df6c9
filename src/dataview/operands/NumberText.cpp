#include "dataview/operands/NumberText.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "base/Numbers.h"
#include "base/Texts.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int64_t kLargestExact = std::int64_t{1} << 53;

std::string_view WithoutPlus(std::string_view text) {
  const std::string_view trimmed = TrimBlanks(text);
  const bool hasPlus = trimmed.size() > 1 && trimmed[0] == '+' && trimmed[1] != '-';
  return hasPlus ? trimmed.substr(1) : trimmed;
}

std::optional<double> ParseDouble(std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace

std::optional<std::int64_t> ParseWholeNumber(std::string_view text) {
  const std::string_view number = WithoutPlus(text);
  if (const auto integer = ParseInteger(number)) {
    return *integer >= -kLargestExact && *integer <= kLargestExact ? integer : std::nullopt;
  }
  const auto value = ParseDouble(number);
  if (!value || std::trunc(*value) != *value || std::fabs(*value) > static_cast<double>(kLargestExact)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(*value);
}

std::optional<float> ParseSingle(std::string_view text) {
  return ParseFloat(WithoutPlus(text));
}

bool IsNoNumber(std::string_view text) {
  return text == "nan" || text == "inf" || text == "-inf";
}

}  // namespace kv::mdlDataTypesView
