#pragma once

#include <cstdint>
#include <string>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// One cell of the operand grid and the text that a paste or an import puts there; an empty text empties it.
struct CellAssignment {
  OperandTypeCode type = OperandTypeCode::MB;
  std::int32_t address = 0;
  std::string text;

  bool operator==(const CellAssignment&) const = default;
};

}  // namespace kv::mdlDataTypesView
