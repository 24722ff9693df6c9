#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/Crc32.h"

// The bytes with their length and their check mended, so that a fuzzer gets behind both. `length` of `lengthAt` counts
// from `lengthFrom` on.
inline std::string Mended(std::string bytes, std::size_t lengthAt, std::size_t lengthFrom, std::size_t checkAt) {
  if (bytes.size() < checkAt + 4) return bytes;
  const auto put = [&bytes](std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i, value >>= 8) bytes[at + i] = static_cast<char>(value & 0xFF);
  };
  put(lengthAt, static_cast<std::uint32_t>(bytes.size() - lengthFrom));
  put(checkAt, 0);
  put(checkAt, kv::Crc32(bytes));
  return bytes;
}
