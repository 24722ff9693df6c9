#include "dataview/operands/ValueEntry.h"

#include <cstdint>

#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/ValueRange.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int64_t kLargestCounter = 65535;

bool IsLegalTime(std::string_view model, std::string_view text) {
  return ParseTime(text, model) || (model.empty() && ParseCompactTimerText(text));
}

bool IsCounter(OperandTypeCode type) {
  return type == OperandTypeCode::CounterPreset || type == OperandTypeCode::CounterCurrent;
}

// The range check before a write lets any 32-bit number through to a counter.
bool IsLegalCounter(std::string_view text) {
  const auto number = WholeValueInRange(OperandTypeCode::CounterPreset, text);
  return number && *number >= 0 && *number <= kLargestCounter;
}

}  // namespace

std::string_view LegalEntries(OperandTypeCode type, std::string_view model) {
  if (!IsWritableType(type)) return {};
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

bool IsLegalEntry(OperandTypeCode type, std::string_view model, std::string_view text) {
  if (!IsWritableType(type)) return false;
  if (IsTimeType(type)) return IsLegalTime(model, text);
  return IsCounter(type) ? IsLegalCounter(text) : IsValueInRange(type, text);
}

std::string EntryText(OperandTypeCode type, std::string_view model, std::string_view text) {
  const auto time = IsTimeType(type) ? ParseTime(text, model) : std::nullopt;
  if (!time) return std::string(text);
  if (!IsCompactDriverModel(model)) return TimerText(*time);
  return std::to_string(std::int64_t{*time} * kMillisecondsPerHundredth);
}

bool IsLegalTransfer(OperandTypeCode type, std::string_view model, std::string_view text) {
  return IsLegalEntry(type, model, text) || (type == OperandTypeCode::MF && IsNoNumber(text));
}

std::string DaysFault(OperandTypeCode type, std::string_view model, std::string_view text) {
  const auto number = IsTimeType(type) && !IsCompactDriverModel(model) ? ParseSingle(text) : std::nullopt;
  if (!number || *number == 0.0F) return {};
  return "\"" + std::string(text) +
         "\" may be a number of days, which office programs make of times; a time as a text was expected, such as "
         "00:01:02.50: format the cells as text";
}

}  // namespace kv::mdlDataTypesView
