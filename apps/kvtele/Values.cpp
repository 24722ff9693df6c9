#include "apps/kvtele/Values.h"

#include <optional>

#include "base/Numbers.h"
#include "dataview/NumberText.h"
#include "dataview/OperandCatalogue.h"
#include "dataview/TimerText.h"
#include "dataview/ValueRange.h"
#include "models/ModelCatalogue.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

constexpr std::int64_t kLargestCounter = 65535;

bool IsTime(OperandTypeCode type) {
  return type == OperandTypeCode::TimerPreset || type == OperandTypeCode::TimerCurrent;
}

bool IsCounter(OperandTypeCode type) {
  return type == OperandTypeCode::CounterPreset || type == OperandTypeCode::CounterCurrent;
}

std::string_view LegalRange(OperandTypeCode type, std::string_view model) {
  switch (type) {
    case OperandTypeCode::MB:
    case OperandTypeCode::XB:
      return "0 or 1";
    case OperandTypeCode::MI:
    case OperandTypeCode::XI:
    case OperandTypeCode::DBI:
      return "whole numbers from -32768 to 32767";
    case OperandTypeCode::ML:
    case OperandTypeCode::XL:
      return "whole numbers from -2147483648 to 2147483647";
    case OperandTypeCode::DW:
    case OperandTypeCode::XDW:
      return "whole numbers from 0 to 4294967295";
    case OperandTypeCode::CounterPreset:
    case OperandTypeCode::CounterCurrent:
      return "whole numbers from 0 to 65535";
    case OperandTypeCode::MF:
      return "numbers from -3.402823e+38 to 3.402823e+38";
    default:
      return IsCompactDriverModel(model) ? "milliseconds (a multiple of 10) or times as hh:mm:ss.cc"
                                         : "times as hh:mm:ss.cc, up to 99:59:59.99";
  }
}

std::optional<std::int32_t> TimeOf(std::string_view model, std::string_view text) {
  return IsCompactDriverModel(model) ? ParseCompactTimerText(text) : ParseTimerText(text);
}

bool IsLegal(OperandTypeCode type, std::string_view model, std::string_view text) {
  if (IsTime(type)) return TimeOf(model, text) || (model.empty() && ParseCompactTimerText(text));
  if (!IsValueInRange(type, text)) return false;
  // The catalogue lets any 32-bit number through to a counter; no controller holds more than 16 bits in one.
  if (!IsCounter(type)) return true;
  const auto number = WholeValueInRange(type, text);
  return number && *number >= 0 && *number <= kLargestCounter;
}

// As the controller's value is shown: with 7 digits.
std::optional<float> ShownFloat(std::string_view text) {
  const auto number = ParseSingle(text);
  return number ? ParseFloat(FloatText(*number)) : std::nullopt;
}

}  // namespace

std::expected<void, Failure> CheckValues(OperandTypeCode type, std::string_view model,
                                         std::span<const std::string> texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (IsLegal(type, model, texts[i])) continue;
    Failure failure = UsageFailure(std::string(kValueOutOfRangeMessage));
    failure.code = "outOfRange";
    failure.doing = "writing " + std::string(TypeName(type));
    failure.cause = "value " + std::to_string(i + 1) + " is \"" + texts[i] + "\"";
    failure.cure = "use " + std::string(LegalRange(type, model));
    return std::unexpected(failure);
  }
  return {};
}

bool IsSameValue(OperandTypeCode type, std::string_view model, std::string_view written, std::string_view readBack) {
  if (IsTime(type)) return TimeOf(model, written) == TimeOf(model, readBack);
  if (type == OperandTypeCode::MF) {
    const auto number = ShownFloat(written);
    return number && number == ShownFloat(readBack);
  }
  const auto number = ParseWholeNumber(written);
  return number && number == ParseWholeNumber(readBack);
}

}  // namespace kv::cli
