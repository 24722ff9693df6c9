#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "clone/CloneSegment.h"

namespace kv {

// Data bytes of the longest write frame. Its count field reads "00".
inline constexpr std::size_t kMostFrameBytes = 256;

// The frame that writes `data` to memory from `address` on: "/", unit, "WD", letter, address (8 digits), count (the
// last 2 digits of the number of bytes), data, checksum, CR. `data` is in the controller's order, 2 to 256 bytes and
// an even number of them; those of flash are swapped in pairs on their way into the frame.
[[nodiscard]] std::string BuildWriteFrame(std::uint8_t unit, MemoryKind kind, std::uint32_t address,
                                          std::span<const std::uint8_t> data);

// The frame that ends a restore: "/", unit, "ED", checksum, CR.
[[nodiscard]] std::string BuildEndFrame(std::uint8_t unit);

// A frame of a clone file, taken apart.
struct CloneFrame {
  bool isEnd = false;  // "ED"; the fields below `unit` are then empty
  std::uint8_t unit = 0;
  MemoryKind kind = MemoryKind::Ram;
  std::uint32_t address = 0;
  Bytes data;  // in the controller's order

  bool operator==(const CloneFrame&) const = default;
};

// Takes a command line with its own CR, and nothing behind it, apart. Only what the two functions above build is
// taken; the error says what was expected instead.
[[nodiscard]] std::expected<CloneFrame, std::string> ParseCloneFrame(std::string_view line);

// The same frame for another unit. A line that is no good frame comes back as it is: a new checksum would make damage
// look whole.
[[nodiscard]] std::string WithUnit(std::string_view line, std::uint8_t unit);

}  // namespace kv
