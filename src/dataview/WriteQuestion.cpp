#include "dataview/WriteQuestion.h"

#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {

MessageBox WriteQuestion(std::size_t values, const std::string& target) {
  return {.text = "Write " + Counted(values, "value") + " to " + target + "?",
          .icon = PromptIcon::Question,
          .buttons = PromptButtons::YesNo,
          .canLose = true};
}

std::int64_t CountOldValues(const OperandStore& operands, std::span<const Region> regions) {
  std::int64_t old = 0;
  for (const Region& region : regions) {
    if (!IsWritableType(region.type)) continue;
    for (std::int32_t address = region.from; address <= region.to; ++address) {
      old += operands.IsOld(region.type, address) ? 1 : 0;
    }
  }
  return old;
}

std::string OldValuesText(std::int64_t count) {
  if (count == 0) return {};
  return "\n\n" + Counted(static_cast<std::uint64_t>(count), "of them is", "of them are") +
         " pale: read in an earlier session, or before the controller was out of reach. What it holds now may be "
         "another value, and would be set back.";
}

}  // namespace kv::mdlDataTypesView
