// Messages are found in noise, and nothing that is no message is taken for one.

#include <gtest/gtest.h>

#include <string>

#include "LineBench.h"
#include "simulator/FrameReader.h"

namespace sim::test {
namespace {

// What the reader finds, one behind the other: "<text>" of a frame, "[payload]" of a block message.
std::string Found(FrameReader& reader, kv::Instant at) {
  std::string found;
  while (const auto message = reader.Next(at)) {
    const auto* frame = std::get_if<AsciiFrame>(&message->content);
    found += frame ? "<" + std::string(frame->text) + ">"
                   : "[" + std::string(std::get<BlockMessage>(message->content).payload) + "]";
  }
  return found;
}

const std::string kFrame = "/01IDEE\r";
const std::string kBlock = LineBench::Block(7, "data");

TEST(LineReader, FindsWhatIsGoodWhereverItStands) {
  std::string badHead = kBlock;
  badHead[6] ^= 1;
  std::string badPayload = LineBench::Block(7, kFrame);
  badPayload.back() ^= 1;
  std::string badLength = kBlock;
  badLength[24] = '\x7F';
  const std::string longest(1100, 'x');
  const struct {
    const char* name;
    std::string bytes;
    std::string all;    // a controller that understands both
    std::string ascii;  // a compact one
  } cases[] = {
      {"alone", kFrame + kBlock + kFrame, "<ID>[data]<ID>", "<ID><ID>"},
      {"noise before", "xx\r\xFF" + kFrame + "\x01\x4B" + kBlock, "<ID>[data]", "<ID>"},
      {"cut, then whole", "/01RO0000" + kFrame, "<ID>", "<ID>"},
      {"cut in its unit, then whole", "/0" + kFrame, "<ID>", "<ID>"},
      {"two merged without a CR", "/01IDEE" + kFrame, "<ID>", "<ID>"},
      {"bad sum", "/01IDEF\r" + kFrame, "<ID>", "<ID>"},
      {"lower-case digits", "/01IDee\r", "", ""},
      {"no text", "/0161\r", "", ""},
      {"a byte that no frame has", "/01I\x7F" + kFrame, "<ID>", "<ID>"},
      {"a text with a slash", EncodeFrame(1, "GIa/b"), "<GIa/b>", "<GIa/b>"},
      {"the longest text", EncodeFrame(1, longest), "<" + longest + ">", "<" + longest + ">"},
      {"a text too long", EncodeFrame(1, longest + "x") + kFrame, "<ID>", "<ID>"},
      {"slashes without end", std::string(5000, '/') + kFrame, "<ID>", "<ID>"},
      {"bad head", badHead + kFrame, "<ID>", "<ID>"},
      {"bad length", badLength + kBlock, "[data]", ""},
      {"a frame inside a damaged block message", badPayload, "<ID>", "<ID>"},
      {"a frame inside a good one", LineBench::Block(7, kFrame), "[" + kFrame + "]", "<ID>"},
      {"a block message behind a cut frame", "/01RO" + kBlock, "[data]", ""},
  };
  for (const auto& c : cases) {
    for (const bool hasBlocks : {true, false}) {
      for (const std::size_t step : {std::size_t{1}, std::size_t{7}, c.bytes.size()}) {
        FrameReader reader(hasBlocks);
        std::string found;
        for (std::size_t i = 0; i < c.bytes.size(); i += step) {
          reader.Feed(c.bytes.substr(i, step), {});
          found += Found(reader, {});
        }
        EXPECT_EQ(found, hasBlocks ? c.all : c.ascii) << c.name << ", in pieces of " << step;
      }
    }
  }
}

TEST(LineReader, ASilenceEndsAnIncompleteBlockMessage) {
  const std::string block = LineBench::Block(7, std::string(50, 'x'));
  FrameReader reader(true);
  const kv::Instant start{1s};
  reader.Feed(block.substr(0, 30), start);
  reader.Feed(kFrame, start + 60ms);
  EXPECT_EQ(Found(reader, start + 159ms), "");
  ASSERT_EQ(reader.Deadline(), start + 160ms);
  EXPECT_EQ(Found(reader, start + 160ms), "<ID>");
  EXPECT_FALSE(reader.Deadline());
  reader.Feed(block.substr(0, 40), start + 1s);
  EXPECT_EQ(Found(reader, start + 1s), "");
  reader.Feed(block.substr(40), start + 1s + 99ms);
  EXPECT_EQ(Found(reader, start + 1s + 99ms), "[" + std::string(50, 'x') + "]");
}

}  // namespace
}  // namespace sim::test
