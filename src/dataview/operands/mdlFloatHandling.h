#pragma once

#include <cstdint>

// Controllers keep a float as two 16-bit words, the high half of the IEEE 754 single first. Read as one little-endian
// 32-bit number, its halves are therefore swapped.
namespace kv::mdlFloatHandling {

// The number with its two 16-bit halves swapped (byte order 2, 3, 0, 1).
[[nodiscard]] constexpr std::uint32_t SwapHalves(std::uint32_t value) {
  return value << 16 | value >> 16;
}

// The float that the controller's 32 bits stand for, and back.
[[nodiscard]] float FloatFromController(std::uint32_t controllerBits);
[[nodiscard]] std::uint32_t ControllerFromFloat(float value);

}  // namespace kv::mdlFloatHandling
