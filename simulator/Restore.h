#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "simulator/Memory.h"

namespace sim {

// A memory restore (WD ... ED): knows which segments it has written into, because the first write into a segment sets
// all of it to 255 before.
class Restore {
 public:
  void Begin(const Memory& memory);
  void End() { mTouched.clear(); }
  [[nodiscard]] bool IsOpen() const { return !mTouched.empty(); }

  // Whether the write may be done: inside one segment, and the letter is the segment's.
  [[nodiscard]] static Result<void> Check(const Memory& memory, char letter, std::uint32_t address,
                                          std::string_view bytes);
  // Writes bytes as they came: those of flash with the two bytes of every word swapped. Must have passed Check.
  void Write(Memory& memory, std::uint32_t address, std::string_view bytes);

 private:
  std::vector<bool> mTouched;  // by segment; empty when no restore is open
};

}  // namespace sim
