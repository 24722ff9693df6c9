#include "dataview/operands/TimerText.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"
#include "dataview/operands/NumberText.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

// Hundredths in an hour, a minute, a second and a hundredth: the order of the numbers in a time text.
constexpr std::array<std::int32_t, 4> kUnits = {360000, 6000, 100, 1};

std::optional<std::int32_t> AsTime(std::int64_t hundredths) {
  if (hundredths < 0 || hundredths > kLongestTime) return std::nullopt;
  return static_cast<std::int32_t>(hundredths);
}

// A number of digits alone that is no more than kLongestTime, so that none of the sums below can overflow.
std::optional<std::int32_t> ParsePiece(std::string_view piece) {
  const bool digitsOnly = std::ranges::all_of(piece, [](char c) { return c >= '0' && c <= '9'; });
  const auto number = digitsOnly ? ParseWholeNumber(piece) : std::nullopt;
  return number ? AsTime(*number) : std::nullopt;
}

void AppendTwoDigits(std::string& text, std::int32_t number) {
  text += static_cast<char>('0' + number / 10);
  text += static_cast<char>('0' + number % 10);
}

}  // namespace

std::string TimerText(std::int64_t hundredths) {
  constexpr std::string_view kSeparators = "::.";
  auto rest = static_cast<std::int32_t>(std::clamp<std::int64_t>(hundredths, 0, kLongestTime));
  std::string text;
  for (std::size_t i = 0; i < kUnits.size(); ++i) {
    AppendTwoDigits(text, rest / kUnits[i]);
    rest %= kUnits[i];
    if (i < kSeparators.size()) text += kSeparators[i];
  }
  return text;
}

std::optional<std::int32_t> ParseTimerText(std::string_view text) {
  std::string_view rest = TrimBlanks(text);
  std::int64_t sum = 0;
  for (const std::int32_t unit : kUnits) {
    const std::size_t end = rest.find_first_of(":.");
    const auto number = ParsePiece(rest.substr(0, end));
    if (!number) return std::nullopt;
    sum += std::int64_t{*number} * unit;
    if (end == std::string_view::npos) return AsTime(sum);
    rest.remove_prefix(end + 1);
  }
  return std::nullopt;
}

std::int32_t CompactTimerMilliseconds(std::uint16_t word) {
  constexpr std::array<std::int32_t, 4> kFactors = {10, 100, 1000, 10000};  // by bit 14, then bit 15
  const std::size_t code = (word >> 14 & 1U) * 2U + (word >> 15 & 1U);
  return (word & 0x3FFF) * kFactors[code];
}

std::optional<std::int32_t> ParseCompactTimerText(std::string_view text) {
  if (text.contains(':')) return ParseTimerText(text);
  const auto milliseconds = ParseWholeNumber(text);
  if (!milliseconds || *milliseconds % kMillisecondsPerHundredth != 0) return std::nullopt;
  return AsTime(*milliseconds / kMillisecondsPerHundredth);
}

std::optional<std::int32_t> ParseTime(std::string_view text, std::string_view model) {
  return IsCompactDriverModel(model) ? ParseCompactTimerText(text) : ParseTimerText(text);
}

}  // namespace kv::mdlDataTypesView
