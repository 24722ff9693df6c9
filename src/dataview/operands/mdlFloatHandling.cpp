#include "dataview/operands/mdlFloatHandling.h"

#include <bit>

namespace kv::mdlFloatHandling {

float FloatFromController(std::uint32_t controllerBits) {
  return std::bit_cast<float>(SwapHalves(controllerBits));
}

std::uint32_t ControllerFromFloat(float value) {
  return SwapHalves(std::bit_cast<std::uint32_t>(value));
}

}  // namespace kv::mdlFloatHandling
