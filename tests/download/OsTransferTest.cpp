// An O/S goes from a file into a simulated controller, which unpacks it with code of its own.

#include <gmock/gmock.h>

#include <algorithm>

#include "Samples.h"
#include "download/AurexOsTransfer.h"
#include "tests/simulator/ControllerFixture.h"

namespace kv::test {
namespace {

// Sends it as the protocol has it; the first status that is not "done".
int Send(sim::test::Fixture& fixture, const OsTransfer& transfer) {
  const auto send = [&fixture](std::uint32_t address, std::uint16_t sequence, int topic, std::string data) {
    return fixture
        .Block(65, address, static_cast<std::uint32_t>(data.size()), sequence, static_cast<std::uint16_t>(topic), data)
        .status;
  };
  int status = send(0, 0, 0, std::string(transfer.header.begin(), transfer.header.end()));
  for (const OsTransferTopic& topic : transfer.topics) {
    const std::string stream(topic.stream.begin(), topic.stream.end());
    std::uint16_t sequence = 0;
    for (std::size_t i = 0; i < stream.size() && status == 10; i += kOsChunk) {
      sequence = sequence == 255 ? 1 : static_cast<std::uint16_t>(sequence + 1);
      status = send(topic.base + static_cast<std::uint32_t>(i), sequence, topic.number, stream.substr(i, kOsChunk));
    }
    if (status != 10) return status;
    EXPECT_EQ(fixture.Block(7, 0, 106).payload[9], 1) << "topic " << topic.number;
  }
  return fixture.Block(69).status;
}

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
  for (const OsTransfer& transfer : {packed, failed}) {
    sim::test::Fixture fixture("K330");
    EXPECT_EQ(fixture.Text("CCB"), "CCOK");
    EXPECT_EQ(Send(fixture, transfer), 11);
  }
  for (OsTransfer damaged : {packed, failed}) {  // known by zlib's check, and by the one of the whole
    damaged.topics[0].stream.back() ^= 1;
    sim::test::Fixture fixture("K330");
    EXPECT_EQ(fixture.Text("CCB"), "CCOK");
    EXPECT_EQ(Send(fixture, damaged), 128 + 0xF);
  }
}

}  // namespace
}  // namespace kv::test
