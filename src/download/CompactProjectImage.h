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
  std::uint64_t end = 0;  // behind the last byte that the memory must have for this line; 0: none
};

// Malformed is a line that a controller would refuse by itself, whatever came before: what is no command of a project,
// and fields that are not whole or name what there is nowhere.
[[nodiscard]] std::expected<CompactPiece, std::string> ReadCompactPiece(std::string_view line);
// The name that a line gives the project: nothing when it leaves it as it is, and empty behind DE.
[[nodiscard]] std::optional<std::string> ReadCompactName(std::string_view line);

// The lines of a project in their order: each must stand where a controller takes it. What it would refuse behind the
// erasing of the old project would leave it with none, and what it would take elsewhere writes what nobody is told of.
//
//   before the erasing (DE) -> loading -> restarted (CCE)
class CompactProjectOrder {
 public:
  // Why this line cannot come now, a clause; empty when it can.
  [[nodiscard]] std::string Take(std::string_view line);

 private:
  enum class Place : std::uint8_t { BeforeErase, Loading, Restarted };
  Place mPlace = Place::BeforeErase;
};

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
