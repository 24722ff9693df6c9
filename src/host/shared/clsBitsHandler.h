#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kv {

// Sets, clears and tests single bits of a 32-bit value, and of an array of bytes. Bit 0 is the least significant one;
// bit n of an array is bit n mod 8 of byte n div 8. A bit past the end is left alone and reads as clear.
class clsBitsHandler {
 public:
  static constexpr unsigned kBits = 32;

  [[nodiscard]] std::uint32_t SetBit(std::uint32_t value, unsigned bit) const { return value | Mask(bit); }
  [[nodiscard]] std::uint32_t ResetBit(std::uint32_t value, unsigned bit) const { return value & ~Mask(bit); }
  [[nodiscard]] std::uint32_t SetAllBits() const { return ~std::uint32_t{0}; }
  [[nodiscard]] std::uint32_t ResetAllBits() const { return 0; }
  [[nodiscard]] bool IsBitSet(std::uint32_t value, unsigned bit) const { return (value & Mask(bit)) != 0; }

  void SetBitInArray(std::span<std::uint8_t> bytes, std::size_t bit) const;
  void ResetBitInArray(std::span<std::uint8_t> bytes, std::size_t bit) const;
  [[nodiscard]] bool IsBitSetInArray(std::span<const std::uint8_t> bytes, std::size_t bit) const;

 private:
  static constexpr std::uint32_t Mask(unsigned bit) { return bit < kBits ? std::uint32_t{1} << bit : 0; }
};

}  // namespace kv
