#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"

namespace kv {

// The bytes that one line of a compact project writes into the project memory; none for every other line.
struct CompactPiece {
  std::uint32_t address = 0;
  Bytes bytes = {};

  [[nodiscard]] std::uint64_t End() const { return bytes.empty() ? 0 : std::uint64_t{address} + bytes.size(); }
};

// Malformed is a line that a controller would refuse: address and bytes as digits (LD, FW), or a name of at most 20
// bytes (LN).
[[nodiscard]] std::expected<CompactPiece, std::string> ReadCompactPiece(std::string_view line);
// The name that a line gives the project: nothing when it leaves it as it is, and empty behind DE.
[[nodiscard]] std::optional<std::string> ReadCompactName(std::string_view line);

// What the project memory must hold when lines have been sent, place by place.
class CompactProjectImage {
 public:
  void Take(std::string_view line);
  void Clear();

  // The first place from `place` on that has been written; nothing behind the last one.
  [[nodiscard]] std::optional<std::uint32_t> NextFrom(std::uint32_t place) const;
  // The first of these bytes, found from `place` on, that differ from what was written.
  [[nodiscard]] std::optional<std::uint32_t> DifferenceIn(std::uint32_t place, const Bytes& found) const;
  [[nodiscard]] std::uint8_t At(std::uint32_t place) const { return mBytes[place]; }
  // How many have been written.
  [[nodiscard]] std::uint64_t Size() const { return mWritten; }

 private:
  Bytes mBytes;
  std::vector<bool> mIsWritten;
  std::uint64_t mWritten = 0;
};

}  // namespace kv
