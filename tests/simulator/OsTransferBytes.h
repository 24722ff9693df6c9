#pragma once

#include <cstdint>
#include <string>

#include "base/Crc32.h"

namespace sim::test {

inline std::string Little(std::uint32_t value, int bytes) {
  std::string text;
  for (; bytes > 0; --bytes, value >>= 8) text += static_cast<char>(value & 0xFF);
  return text;
}

// The header of an O/S transfer of one or two topics with these data.
inline std::string OsHeader(const std::string& model, std::uint32_t version, std::uint32_t build, const std::string& os,
                            const std::string& fonts = "") {
  return std::string("OS\x64\x01") + model + Little(version, 2) + Little(build, 1) + Little(fonts.empty() ? 1 : 2, 1) +
         Little(kv::Crc32(os + fonts), 4);
}

// A topic as it is sent without compression.
inline std::string Stored(const std::string& data) {
  const auto size = static_cast<std::uint32_t>(data.size());
  return Little(size, 4) + Little(size, 4) + data;
}

}  // namespace sim::test
