#pragma once

#include <cstdint>
#include <string_view>

namespace kv {

// What tells a file from another one of its name: a file is read again before it is sent, and must still be the one
// that was shown to the user.
struct ContentStamp {
  std::uint64_t size = 0;
  std::uint32_t crc = 0;  // CRC-32 of all of its bytes

  bool operator==(const ContentStamp&) const = default;
};

[[nodiscard]] ContentStamp StampOf(std::string_view bytes);

}  // namespace kv
