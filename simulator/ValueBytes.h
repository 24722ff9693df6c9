#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string>

#include "simulator/OperandTypes.h"

namespace sim {

// Appends the values of whole operands, field after field, as bytes: each as wide as its type says.
void AppendValues(std::string& bytes, const OperandTypeRow& type, std::span<const std::uint32_t> values,
                  std::endian order);

}  // namespace sim
