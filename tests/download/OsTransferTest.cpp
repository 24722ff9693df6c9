// How the topics of an O/S are packed. That a controller unpacks them is tried with whole downloads.

#include "download/AurexOsTransfer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kv::test {
namespace {

TEST(OsTransfers, CompressWhatGetsSmallerAndNothingElse) {
  AurexOsFile os{.model = "K330", .number = {475, 3}, .remark = {}, .topics = {}, .stamp = {}};
  os.topics = {{.number = 1, .name = "zeros", .base = 0x100000, .isCompressed = true, .data = Bytes(3000)},
               {.number = 5, .name = "plain", .base = 0x110000, .isCompressed = false, .data = Bytes(3000)},
               {.number = 6, .name = "short", .base = 0x120000, .isCompressed = true, .data = Bytes{7}}};
  const FontsFile fonts{.model = "K330", .number = {130, 0}, .data = Bytes(600, 1), .stamp = {}};
  const OsTransfer packed = MakeOsTransfer(os, fonts);
  ASSERT_EQ(packed.topics.size(), 4u);
  EXPECT_LT(packed.topics[0].sentSize, 100u);
  EXPECT_EQ(packed.topics[0].stream.size(), packed.topics[0].sentSize + 8);
  EXPECT_EQ(packed.topics[1].sentSize, 3000u);
  EXPECT_EQ(packed.topics[2].stream, (Bytes{1, 0, 0, 0, 1, 0, 0, 0, 7}));
  EXPECT_EQ(packed.topics[3].number, 16);
  EXPECT_EQ(packed.topics[3].base, 0x300000u);
  EXPECT_TRUE(std::ranges::none_of(packed.topics, &OsTransferTopic::compressionFailed));

  const OsTransfer failed = MakeOsTransfer(os, fonts, [](auto) { return std::nullopt; });
  EXPECT_TRUE(failed.topics[0].compressionFailed);
  EXPECT_FALSE(failed.topics[1].compressionFailed);
  EXPECT_EQ(failed.header, packed.header);
  EXPECT_EQ(failed.topics[0].stream.size(), 3008u) << "and is sent as it is";
}

}  // namespace
}  // namespace kv::test
