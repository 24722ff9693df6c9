#include <gtest/gtest.h>

#include <array>

#include "host/shared/clsBitsHandler.h"

namespace kv {
namespace {

TEST(BitsHandlerTest, SetsClearsAndTestsBitsFromTheLowest) {
  const clsBitsHandler bits;
  EXPECT_EQ(bits.SetBit(1, 31), 0x80000001u);
  EXPECT_EQ(bits.ResetBit(0x80000001u, 0), 0x80000000u);
  EXPECT_TRUE(bits.IsBitSet(0x80000000u, 31));
  EXPECT_EQ(bits.SetBit(5, 32), 5u);  // past the end
  EXPECT_EQ(bits.SetAllBits(), 0xFFFFFFFFu);
  EXPECT_EQ(bits.ResetAllBits(), 0u);

  std::array<std::uint8_t, 2> bytes{};
  bits.SetBitInArray(bytes, 9);
  bits.SetBitInArray(bytes, 16);
  EXPECT_EQ(bytes, (std::array<std::uint8_t, 2>{0, 2}));
  EXPECT_TRUE(bits.IsBitSetInArray(bytes, 9));
  EXPECT_FALSE(bits.IsBitSetInArray(bytes, 16));
  bits.ResetBitInArray(bytes, 9);
  EXPECT_EQ(bytes[1], 0);
}

}  // namespace
}  // namespace kv
