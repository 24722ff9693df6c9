// The simulator's end of the line against the frames that hold both ends.

#include <gtest/gtest.h>

#include <string>

#include "simulator/BlockMessage.h"
#include "simulator/FrameReader.h"
#include "simulator/Seal.h"
#include "tests/driver/GoldenFrames.h"

namespace sim {
namespace {

TEST(LineGolden, AsciiFrames) {
  FrameReader reader(false);
  for (const GoldenFrame& golden : ReadGoldenFrames("ascii.txt")) {
    SCOPED_TRACE(golden.name);
    const auto unit = static_cast<std::uint8_t>(golden.Number("unit"));
    const std::string& text = golden.fields.at("text");
    if (!golden.isRequest) {
      const auto counter = static_cast<std::uint16_t>(golden.Number("counter"));
      EXPECT_EQ(golden.bytes, EncodeReply(unit, golden.fields.at("request"), text, counter));
      continue;
    }
    EXPECT_EQ(golden.bytes, EncodeFrame(unit, text));
    reader.Feed(golden.bytes, {});
    const auto message = reader.Next({});
    ASSERT_TRUE(message);
    const auto& frame = std::get<AsciiFrame>(message->content);
    EXPECT_EQ(frame.unit, unit);
    EXPECT_EQ(frame.text, text);
    EXPECT_TRUE(IsRequestSound(frame));
  }
}

TEST(LineGolden, BlockMessages) {
  FrameReader reader(true);
  for (const GoldenFrame& golden : ReadGoldenFrames("block.txt")) {
    SCOPED_TRACE(golden.name);
    reader.Feed(golden.bytes, {});
    const auto message = reader.Next({});
    ASSERT_TRUE(message);
    const auto& block = std::get<BlockMessage>(message->content);
    EXPECT_EQ(block.kind, golden.isRequest ? BlockMessage::Request : BlockMessage::Reply);
    EXPECT_EQ(block.unit, golden.Number("unit"));
    EXPECT_EQ(block.status, golden.isRequest ? 0 : golden.Number("status"));
    EXPECT_EQ(block.sequence, golden.Number("sequence"));
    EXPECT_EQ(block.opCode, golden.Number("opcode"));
    EXPECT_EQ(block.param1, golden.Number("param1"));
    EXPECT_EQ(block.dataLength, golden.Number("datalength"));
    EXPECT_EQ(block.param3, golden.Number("param3"));
    EXPECT_EQ(block.param4, golden.Number("param4"));
    EXPECT_EQ(block.payload, FromHex(golden.fields.at("payload")));
    EXPECT_EQ(EncodeBlock(block), golden.bytes);
  }
}

}  // namespace
}  // namespace sim
