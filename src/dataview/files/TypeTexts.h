#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "dataview/OperandTypes.h"

namespace kv::mdlDataTypesView {

// The raw value texts of one operand type, from address 0 on; empty where nothing is known.
struct TypeTexts {
  OperandTypeCode type = OperandTypeCode::MB;
  std::vector<std::string> texts = {};
  std::size_t line = 0;  // of the file in which they were read

  bool operator==(const TypeTexts&) const = default;
};

}  // namespace kv::mdlDataTypesView
