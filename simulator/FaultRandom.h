#pragma once

#include <cstdint>

namespace sim {

// SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014): the same seed gives the
// same numbers on every platform, which the distributions of the standard library do not.
class FaultRandom {
 public:
  explicit FaultRandom(std::uint64_t seed) : mState(seed) {}

  std::uint64_t Next() {
    mState += 0x9E3779B97F4A7C15U;
    std::uint64_t z = mState;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9U;
    z = (z ^ z >> 27) * 0x94D049BB133111EBU;
    return z ^ z >> 31;
  }

  // 0 to count - 1; count at most 2^32, so that the multiplication replaces a division and its bias is of no account.
  std::uint64_t Below(std::uint64_t count) { return (Next() >> 32) * count >> 32; }

  // True with this probability.
  bool Happens(double probability) { return static_cast<double>(Next() >> 11) * 0x1.0p-53 < probability; }

  char Byte() { return static_cast<char>(Next() >> 56); }

 private:
  std::uint64_t mState;
};

}  // namespace sim
