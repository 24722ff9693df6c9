#include "base/Crc32.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Bit by bit, as the standard defines it.
std::uint32_t ByBits(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

}  // namespace

// Short messages go through tables, longer ones are folded: every length and place of both, whole and in two pieces.
TEST(Crc32, IsTheSameByEveryWay) {
  EXPECT_EQ(kv::Crc32("123456789"), 0xCBF43926U);
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes += static_cast<char>(37 * i + i / 7);
  for (std::size_t place = 0; place < 17; ++place) {
    for (std::size_t length = 0; place + length <= bytes.size(); ++length) {
      const auto part = std::string_view(bytes).substr(place, length);
      const auto first = part.substr(0, length / 3);
      ASSERT_EQ(kv::Crc32(part), ByBits(part)) << place << ", " << length;
      ASSERT_EQ(kv::Crc32(part.substr(first.size()), kv::Crc32(first)), ByBits(part)) << place << ", " << length;
    }
  }
}
