#include "dataview/operands/ValueRange.h"

#include <utility>

#include "dataview/operands/NumberText.h"
#include "dataview/operands/TypeTable.h"

namespace kv::mdlDataTypesView {
namespace {

template <typename Integer>
std::optional<std::int64_t> WholeWithin(std::string_view text) {
  const auto number = ParseWholeNumber(text);
  if (!number || !std::in_range<Integer>(*number)) return std::nullopt;
  return number;
}

std::optional<std::int64_t> ExactBit(std::string_view text) {
  if (text != "0" && text != "1") return std::nullopt;
  return text == "1" ? 1 : 0;
}

RangeRule RuleOf(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr ? facts->range : RangeRule::Unchecked;
}

}  // namespace

bool IsValueInRange(OperandTypeCode type, std::string_view text) {
  switch (RuleOf(type)) {
    case RangeRule::Unchecked:
      return true;
    case RangeRule::Float:
      return ParseSingle(text).has_value();
    default:
      return WholeValueInRange(type, text).has_value();
  }
}

std::optional<std::int64_t> WholeValueInRange(OperandTypeCode type, std::string_view text) {
  switch (RuleOf(type)) {
    case RangeRule::Bit:
      return ExactBit(text);
    case RangeRule::Signed16:
      return WholeWithin<std::int16_t>(text);
    case RangeRule::Signed32:
      return WholeWithin<std::int32_t>(text);
    case RangeRule::Unsigned32:
      return WholeWithin<std::uint32_t>(text);
    case RangeRule::Unchecked:
    case RangeRule::Float:
      break;
  }
  return std::nullopt;
}

}  // namespace kv::mdlDataTypesView
