#include "apps/kvtele/OperandArguments.h"

#include <algorithm>
#include <optional>
#include <span>

#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/ValueEntry.h"
#include "dataview/operands/ValueRange.h"
#include "models/ModelCatalogue.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

std::string LowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::string AllTypeNames() {
  std::string names;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    names += (code == 1 ? "" : ", ") + std::string(TypeName(OperandTypeCode{code}));
  }
  return names;
}

std::int32_t LargestCountOfAnyModel(OperandTypeCode type) {
  std::int32_t largest = 0;
  for (const std::string_view model : SelectableModels()) largest = std::max(largest, OperandCount(type, model));
  return largest;
}

// The catalogue writes "16 BIT"; the command line takes the number alone.
std::string SizeOption(SizeCode size) {
  const std::string_view name = SizeName(size);
  return std::string(name.substr(0, name.find(' ')));
}

std::string OfferText(OperandTypeCode type) {
  std::string text;
  for (const SizeCode size : SizesOffered(type)) {
    text += (text.empty() ? "" : "; ") + std::string("--size ") + SizeOption(size) + " --format";
    std::string separator = " ";
    for (const FormatCode format : FormatsOffered(size)) {
      text += separator + LowerCase(std::string(FormatName(format)));
      separator = "|";
    }
  }
  return text;
}

Failure PastTheEnd(const Region& region, std::int32_t count, const std::string& who) {
  const std::string name(TypeName(region.type));
  const std::string doing = "using " + RegionText(region);
  if (count == 0) {
    return NotFitFailure(doing, who + " has no " + name + " operands", {}, "choose a type that the controller has");
  }
  return NotFitFailure(doing, "there is no " + name + " " + std::to_string(region.to) + " on " + who, {},
                       "use addresses from 0 to " + std::to_string(count - 1));
}

std::optional<std::int32_t> ParseAddress(const std::string& text) {
  const auto number = ParseInteger(text);
  if (!number || *number < 0 || *number > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

}  // namespace

OrFailure<OperandTypeCode> ParseType(const std::string& name) {
  const auto type = TypeFromName(name);
  if (type) return *type;
  return std::unexpected(UsageFailure("there is no operand type \"" + name + "\"",
                                      "use one of " + AllTypeNames() + "; a minus may stand for the blank"));
}

OrFailure<Region> ParseRegion(OperandTypeCode type, const std::string& from, const std::string& to) {
  const auto first = ParseAddress(from);
  const auto last = ParseAddress(to);
  if (!first || !last) {
    return std::unexpected(
        UsageFailure("\"" + (first ? to : from) + "\" is no operand address", "use whole numbers from 0"));
  }
  if (*last < *first) {
    return std::unexpected(
        UsageFailure("the range " + from + " to " + to + " runs backwards", "name the lower address first"));
  }
  const Region region{*first, *last, type};
  const std::int32_t largest = LargestCountOfAnyModel(type);
  if (region.to >= largest) return std::unexpected(PastTheEnd(region, largest, "any model"));
  return region;
}

OrFailure<std::optional<DisplayForm>> ParseDisplayForm(OperandTypeCode type, const std::string& size,
                                                       const std::string& format) {
  if (size.empty() && format.empty()) return std::nullopt;
  for (const SizeCode eachSize : SizesOffered(type)) {
    if (SizeOption(eachSize) != size) continue;
    for (const FormatCode eachFormat : FormatsOffered(eachSize)) {
      if (FormatName(eachFormat) == UpperCased(format)) return DisplayForm{eachSize, eachFormat};
    }
  }
  std::string happened = "size \"" + size + "\" with format \"" + format + "\" is not offered for ";
  if (size.empty() || format.empty()) happened = "--size and --format belong together for ";
  return std::unexpected(UsageFailure(happened.append(TypeName(type)), "use " + OfferText(type)));
}

OrFailure<void> CheckFitsModel(const Region& region, std::string_view model) {
  const std::int32_t count = OperandCount(region.type, model);
  if (region.to < count) return {};
  return std::unexpected(PastTheEnd(region, count, std::string(model)));
}

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

}  // namespace kv::cli
