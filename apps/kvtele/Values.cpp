#include "apps/kvtele/Values.h"

#include <optional>

#include "base/Numbers.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/ValueEntry.h"
#include "dataview/operands/ValueRange.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

// As the controller's value is shown: with 7 digits.
std::optional<float> ShownFloat(std::string_view text) {
  const auto number = ParseSingle(text);
  return number ? ParseFloat(FloatText(*number)) : std::nullopt;
}

}  // namespace

OrFailure<void> CheckValues(OperandTypeCode type, std::string_view model, std::span<const std::string> texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (IsLegalEntry(type, model, texts[i])) continue;
    Failure failure = UsageFailure(std::string(kValueOutOfRangeMessage));
    failure.code = "outOfRange";
    failure.doing = "writing " + std::string(TypeName(type));
    failure.cause = "value " + std::to_string(i + 1) + " is \"" + texts[i] + "\"";
    failure.cure = "use " + std::string(LegalEntries(type, model));
    return std::unexpected(failure);
  }
  return {};
}

bool IsSameValue(OperandTypeCode type, std::string_view model, std::string_view written, std::string_view readBack) {
  if (IsTimeType(type)) return ParseTime(written, model) == ParseTime(readBack, model);
  if (type == OperandTypeCode::MF) {
    const auto number = ShownFloat(written);
    return number && number == ShownFloat(readBack);
  }
  const auto number = ParseWholeNumber(written);
  return number && number == ParseWholeNumber(readBack);
}

}  // namespace kv::cli
