#include "link/HexHelpers.h"

namespace kv {
namespace {

std::optional<unsigned> DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  return std::nullopt;
}

}  // namespace

std::optional<std::uint8_t> HexPairToByte(std::string_view pair) {
  if (pair.size() != 2) return std::nullopt;
  const auto high = DigitValue(pair[0]);
  const auto low = DigitValue(pair[1]);
  if (!high || !low) return std::nullopt;
  return static_cast<std::uint8_t>(*high * 16 + *low);
}

std::optional<Bytes> HexStringToBytes(std::string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  for (; text.size() >= 2; text.remove_prefix(2)) {
    const auto byte = HexPairToByte(text.substr(0, 2));
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace kv
