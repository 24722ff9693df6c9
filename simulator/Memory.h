#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "simulator/ModelTable.h"
#include "simulator/Refusal.h"

namespace sim {

// One stretch of controller memory. Lengths are even and fit no block and no line, so that the last piece of every
// transfer is a short one.
struct Segment {
  std::string_view code;  // 2 characters; "ZZ" is one that no tool knows
  char letter;            // 'F' flash, 'R' RAM
  std::uint32_t start;    // controller address of its first byte
  std::uint32_t length;   // bytes
};

// The memory of one controller. Its segments stand for themselves: operands are not found in OP and DT, nor the O/S
// that runs in OS; a byte written here is read here and does nothing else. AP is what FW, RX and LD work on.
//
// At first power-up the memory holds bytes that depend on `seed` alone: mostly varied ones, some stretches of zeros,
// some erased lines (255), and an erased end in DT, FT and AP.
class Memory {
 public:
  Memory(MemoryLayout layout, std::uint32_t seed);

  [[nodiscard]] std::span<const Segment> Segments() const { return mSegments; }
  [[nodiscard]] std::size_t IndexOf(std::string_view code) const;  // Segments().size() when there is none

  // The segment in which the whole stretch lies; length 0 lies nowhere.
  [[nodiscard]] Result<std::size_t> Locate(std::uint32_t address, std::size_t length) const;
  // The bytes in the controller's order.
  [[nodiscard]] Result<std::string> Read(std::uint32_t address, std::size_t length) const;

  // `offset` counts from the start of the segment; the bytes must fit.
  void Write(std::size_t segment, std::uint32_t offset, std::string_view bytes);
  void Erase(std::size_t segment);  // all 255, flash and RAM alike

  [[nodiscard]] const kv::Bytes& Content(std::size_t segment) const { return mContents[segment]; }

 private:
  std::span<const Segment> mSegments;
  std::vector<kv::Bytes> mContents;
};

}  // namespace sim
