// The simulator's end of the line against the frames that hold both ends.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/BlockMessage.h"
#include "simulator/FrameReader.h"
#include "simulator/Seal.h"

namespace sim {
namespace {

struct GoldenFrame {
  std::string name;
  bool isReply = false;
  std::string bytes;
  std::map<std::string, std::string> fields;

  [[nodiscard]] unsigned long Number(const std::string& key) const { return std::stoul(fields.at(key)); }
};

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

std::vector<GoldenFrame> ReadGolden(const std::string& file) {
  std::ifstream in(std::string(KV_TEST_DATA) + "/golden/" + file);
  std::vector<GoldenFrame> frames;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("#")) continue;
    std::istringstream parts(line);
    GoldenFrame frame;
    std::string kind, hex;
    std::getline(std::getline(std::getline(parts, frame.name, '\t'), kind, '\t'), hex, '\t');
    frame.isReply = kind == "reply";
    frame.bytes = FromHex(hex);
    for (std::string key, value; std::getline(std::getline(parts, key, '='), value, '\t');) frame.fields[key] = value;
    frames.push_back(frame);
  }
  EXPECT_GT(frames.size(), 50U) << file;
  return frames;
}

TEST(LineGolden, AsciiFrames) {
  FrameReader reader(false);
  for (const GoldenFrame& golden : ReadGolden("ascii.txt")) {
    SCOPED_TRACE(golden.name);
    const auto unit = static_cast<std::uint8_t>(golden.Number("unit"));
    const std::string& text = golden.fields.at("text");
    if (golden.isReply) {
      const auto counter = static_cast<std::uint16_t>(golden.Number("counter"));
      EXPECT_EQ(golden.bytes, EncodeFrame(unit, Seal(unit, golden.fields.at("request"), text, counter)));
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
  for (const GoldenFrame& golden : ReadGolden("block.txt")) {
    SCOPED_TRACE(golden.name);
    reader.Feed(golden.bytes, {});
    const auto message = reader.Next({});
    ASSERT_TRUE(message);
    const auto& block = std::get<BlockMessage>(message->content);
    EXPECT_EQ(block.kind, golden.isReply ? BlockMessage::Reply : BlockMessage::Request);
    EXPECT_EQ(block.unit, golden.Number("unit"));
    EXPECT_EQ(block.status, golden.isReply ? golden.Number("status") : 0);
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
