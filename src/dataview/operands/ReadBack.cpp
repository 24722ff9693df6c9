#include "dataview/operands/ReadBack.h"

#include <algorithm>
#include <optional>

#include "base/Numbers.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"
#include "dataview/operands/TimerText.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::size_t kNamed = 3;

// As the controller's value is shown: with 7 digits.
std::optional<float> ShownFloat(std::string_view text) {
  const auto number = ParseSingle(text);
  return number ? ParseFloat(FloatText(*number)) : std::nullopt;
}

LinkError NotAsMany(const Region& region) {
  return {.code = LinkErrorCode::NotSupported,
          .doing = "reading back " + RegionText(region),
          .happened = "other operands were read than had been written",
          .cause = "operands of this type cannot be read from this model",
          .cure = "see in the controller's own program what they hold"};
}

}  // namespace

std::expected<ReadBackValues, LinkError> ReadBack(Channel& channel, std::string_view model, const Region& region,
                                                  std::span<const std::string> written) {
  auto texts = ReadRegion(channel, model, region);
  if (!texts) return std::unexpected(std::move(texts.error()));
  if (texts->size() != written.size()) return std::unexpected(NotAsMany(region));
  ReadBackValues values{.texts = *std::move(texts), .differences = {}};
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (IsSameValue(region.type, model, written[i], values.texts[i])) continue;
    values.differences.push_back({region.from + static_cast<std::int32_t>(i), written[i], values.texts[i]});
  }
  return values;
}

bool IsSameValue(OperandTypeCode type, std::string_view model, std::string_view written, std::string_view readBack) {
  if (IsTimeType(type)) {
    const auto time = ParseTime(written, model);
    return time && time == ParseTime(readBack, model);
  }
  if (type == OperandTypeCode::MF) {
    const auto number = ShownFloat(written);
    return number && number == ShownFloat(readBack);
  }
  const auto number = ParseWholeNumber(written);
  return number && number == ParseWholeNumber(readBack);
}

bool MovesByItself(OperandTypeCode type) {
  return type == OperandTypeCode::TimerCurrent;
}

std::string DifferenceText(OperandTypeCode type, std::span<const ValueDifference> differences) {
  std::string text;
  for (const ValueDifference& each : differences.first(std::min(kNamed, differences.size()))) {
    text += (text.empty() ? "" : ", ") + OperandText(type, each.address) + " reads " + each.readBack + " instead of " +
            each.written;
  }
  if (differences.size() > kNamed) text += " and " + std::to_string(differences.size() - kNamed) + " more";
  return text;
}

}  // namespace kv::mdlDataTypesView
