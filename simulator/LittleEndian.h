#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

// Appends the low `bytes` bytes of `value`, the least significant first.
inline void AppendLittle(std::string& to, std::uint32_t value, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) to += static_cast<char>(value >> (8 * i) & 0xFF);
}

// The 32-bit number at `offset`, which must be inside.
[[nodiscard]] inline std::uint32_t LittleAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

}  // namespace sim
