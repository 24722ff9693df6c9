#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// Shown once for a whole write that does not start because of a text out of range.
inline constexpr std::string_view kValueOutOfRangeMessage =
    "The values you have entered are out of the legal range for this data type.";

// Whether a raw value text may be written to an operand of the type: "0" or "1" for a bit, a whole number that the
// operand's width holds, a number that fits a single-precision float. A text for a timer always passes here, as does
// any text for a read-only type, which is never written.
[[nodiscard]] bool IsValueInRange(OperandTypeCode type, std::string_view text);

// The whole number in `text` when it is in the range of the type; nothing otherwise, and nothing for floats, timers and
// read-only types.
[[nodiscard]] std::optional<std::int64_t> WholeValueInRange(OperandTypeCode type, std::string_view text);

}  // namespace kv::mdlDataTypesView
