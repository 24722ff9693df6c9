#include "base/Crc32.h"

#include <array>

namespace kv {

namespace {

// Eight bytes a step: table k holds the remainder of a byte that is followed by k zero bytes, so the eight look-ups of
// a step do not wait for each other.
constexpr std::size_t kStep = 8;
constexpr std::uint32_t kPolynomial = 0xEDB88320U;
using Table = std::array<std::uint32_t, 256>;

constexpr std::array<Table, kStep> MakeTables() {
  std::array<Table, kStep> tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t rest = byte;
    for (int bit = 0; bit < 8; ++bit) rest = (rest >> 1) ^ ((rest & 1U) != 0 ? kPolynomial : 0U);
    tables[0][byte] = rest;
  }
  for (std::size_t k = 1; k < kStep; ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[k - 1][byte];
      tables[k][byte] = (before >> 8) ^ tables[0][before & 0xFFU];
    }
  }
  return tables;
}

constexpr std::array<Table, kStep> kTables = MakeTables();

std::uint32_t LittleEndian(const char* bytes) {
  const auto at = [bytes](int i) { return std::uint32_t{static_cast<unsigned char>(bytes[i])}; };
  return at(0) | at(1) << 8 | at(2) << 16 | at(3) << 24;
}

}  // namespace

std::uint32_t Crc32(std::string_view bytes, std::uint32_t previous) {
  std::uint32_t crc = ~previous;
  for (; bytes.size() >= kStep; bytes.remove_prefix(kStep)) {
    const std::uint32_t low = crc ^ LittleEndian(bytes.data());
    const std::uint32_t high = LittleEndian(bytes.data() + 4);
    crc = kTables[7][low & 0xFFU] ^ kTables[6][low >> 8 & 0xFFU] ^ kTables[5][low >> 16 & 0xFFU] ^
          kTables[4][low >> 24] ^ kTables[3][high & 0xFFU] ^ kTables[2][high >> 8 & 0xFFU] ^
          kTables[1][high >> 16 & 0xFFU] ^ kTables[0][high >> 24];
  }
  for (const char c : bytes) crc = (crc >> 8) ^ kTables[0][(crc ^ static_cast<unsigned char>(c)) & 0xFFU];
  return ~crc;
}

}  // namespace kv
