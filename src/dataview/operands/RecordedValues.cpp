#include "dataview/operands/RecordedValues.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/Numbers.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::ptrdiff_t kShownDigits = 7;  // of a float, at most: FloatText

// Significant ones.
std::ptrdiff_t DigitsOf(std::string_view number) {
  number = number.substr(0, number.find('e'));
  number.remove_prefix(std::min(number.find_first_of("123456789"), number.size()));
  return std::ranges::count_if(number, [](char c) { return c >= '0' && c <= '9'; });
}

std::string RecordedValue(OperandTypeCode type, std::string_view model, std::string text) {
  if (IsTimeType(type)) {
    const auto time = ParseTime(text, model);
    return time ? TimerText(*time) : std::move(text);
  }
  if (type == OperandTypeCode::MF) {
    const auto number = ParseSingle(text);
    return number ? ExactFloatText(*number) : std::move(text);
  }
  const auto number = ParseWholeNumber(text);
  return number ? std::to_string(*number) : std::move(text);
}

}  // namespace

std::vector<std::string> RecordedValues(OperandTypeCode type, std::string_view model, std::vector<std::string> texts) {
  for (std::string& text : texts) text = RecordedValue(type, model, std::move(text));
  return texts;
}

std::vector<std::string> RecordedAsShown(OperandTypeCode type, std::string_view model, std::vector<std::string> texts) {
  texts = RecordedValues(type, model, std::move(texts));
  for (std::string& text : texts) {
    if (type == OperandTypeCode::MF && DigitsOf(text) >= kShownDigits) text = "about " + text;
  }
  return texts;
}

}  // namespace kv::mdlDataTypesView
