#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "dataview/OperandStore.h"
#include "dataview/operands/Region.h"
#include "desktop/Prompts.h"

namespace kv::mdlDataTypesView {

// Asked before values of many operands are written; `target` names the link. Its default is No.
[[nodiscard]] MessageBox WriteQuestion(std::size_t values, const std::string& target);

// Values of the regions that would be written and are of an earlier session, or of before the controller was out of
// reach: to write them sets the controller back.
[[nodiscard]] std::int64_t CountOldValues(const OperandStore& operands, std::span<const Region> regions);
// What a question says of them; empty for none.
[[nodiscard]] std::string OldValuesText(std::int64_t count);

}  // namespace kv::mdlDataTypesView
