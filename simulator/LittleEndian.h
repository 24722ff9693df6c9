#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

// Puts the low `bytes` bytes of `value` to `place`, the least significant first; the place behind them.
inline char* PutLittle(char* place, std::uint32_t value, std::size_t bytes) {
  for (; bytes-- > 0; value >>= 8) *place++ = static_cast<char>(value & 0xFF);
  return place;
}

// The same behind what `to` holds.
inline void AppendLittle(std::string& to, std::uint32_t value, std::size_t bytes) {
  to.append(bytes, '\0');
  PutLittle(to.data() + to.size() - bytes, value, bytes);
}

// The 32-bit number at `offset`, which must be inside.
[[nodiscard]] inline std::uint32_t LittleAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[offset + i]);
  return value;
}

}  // namespace sim
