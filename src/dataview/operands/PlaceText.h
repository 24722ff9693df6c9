#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// One cell of the operand grid.
struct OperandPlace {
  OperandTypeCode type = OperandTypeCode::MB;
  std::int32_t address = 0;

  bool operator==(const OperandPlace&) const = default;
};

// The cell that a text names: "MI 100", "mi100", "timer preset 5"; "100" is an address of `current`, "MI" the type's
// first one. The error is a sentence for the user that says what there is.
[[nodiscard]] std::expected<OperandPlace, std::string> ParsePlace(std::string_view text, OperandTypeCode current,
                                                                  std::string_view model);

}  // namespace kv::mdlDataTypesView
