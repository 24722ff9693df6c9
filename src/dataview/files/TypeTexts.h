#pragma once

#include <string>
#include <vector>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// The raw value texts of one operand type, from address 0 on; empty where nothing is known.
struct TypeTexts {
  OperandTypeCode type = OperandTypeCode::MB;
  std::vector<std::string> texts = {};

  bool operator==(const TypeTexts&) const = default;
};

}  // namespace kv::mdlDataTypesView
