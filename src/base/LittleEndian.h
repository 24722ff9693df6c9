#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kv {

// Appends a number with its least significant byte first.
template <std::unsigned_integral Number>
void AppendLittleEndian(std::string& bytes, Number value) {
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
  }
}

// The number that stands at `at`; 0 where the bytes end before it does, so a reader checks lengths first where that
// makes a difference.
template <std::unsigned_integral Number>
[[nodiscard]] Number LittleEndianAt(std::string_view bytes, std::size_t at) {
  if (at > bytes.size() || bytes.size() - at < sizeof(Number)) return 0;
  Number value = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    value = static_cast<Number>((sizeof(Number) > 1 ? value << 8 : 0) | static_cast<unsigned char>(bytes[at + i]));
  }
  return value;
}

// The same for fields whose length is not that of a type, 1 to 4 bytes.
[[nodiscard]] inline std::uint32_t LittleEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}
inline void PutLittleEndian(char* place, std::uint32_t value, std::size_t count) {
  for (; count-- > 0; value >>= 8) *place++ = static_cast<char>(value & 0xFFU);
}
inline void PutLittleEndian(std::span<std::uint8_t> field, std::uint32_t value) {
  for (std::uint8_t& byte : field) {
    byte = static_cast<std::uint8_t>(value & 0xFFU);
    value >>= 8;
  }
}
inline void AppendLittleEndian(std::string& bytes, std::uint32_t value, std::size_t count) {
  bytes.append(count, '\0');
  PutLittleEndian(bytes.data() + bytes.size() - count, value, count);
}

}  // namespace kv
