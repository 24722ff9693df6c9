#pragma once

#include <span>
#include <string>
#include <string_view>

#include "apps/kvtele/Failure.h"
#include "dataview/operands/OperandTypes.h"

namespace kv::cli {

// Whether all values can be written to operands of the type from `from` on. The failure names the first that cannot,
// and what can be. `model` decides how a time is written; while it is not known (empty) a time of either family passes.
[[nodiscard]] OrFailure<void> CheckValues(mdlDataTypesView::OperandTypeCode type, std::string_view model,
                                          std::span<const std::string> texts);

// Whether a text read back means the value that was written, however it was written ("007", "1e3", "1:30").
[[nodiscard]] bool IsSameValue(mdlDataTypesView::OperandTypeCode type, std::string_view model, std::string_view written,
                               std::string_view readBack);

}  // namespace kv::cli
