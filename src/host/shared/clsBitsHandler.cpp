#include "host/shared/clsBitsHandler.h"

namespace kv {
namespace {

constexpr std::size_t kBitsAByte = 8;

std::uint8_t MaskInByte(std::size_t bit) {
  return static_cast<std::uint8_t>(1u << (bit % kBitsAByte));
}

}  // namespace

void clsBitsHandler::SetBitInArray(std::span<std::uint8_t> bytes, std::size_t bit) const {
  if (bit / kBitsAByte < bytes.size()) bytes[bit / kBitsAByte] |= MaskInByte(bit);
}

void clsBitsHandler::ResetBitInArray(std::span<std::uint8_t> bytes, std::size_t bit) const {
  if (bit / kBitsAByte < bytes.size()) bytes[bit / kBitsAByte] &= static_cast<std::uint8_t>(~MaskInByte(bit));
}

bool clsBitsHandler::IsBitSetInArray(std::span<const std::uint8_t> bytes, std::size_t bit) const {
  return bit / kBitsAByte < bytes.size() && (bytes[bit / kBitsAByte] & MaskInByte(bit)) != 0;
}

}  // namespace kv
