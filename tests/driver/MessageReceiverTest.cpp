#include "KvCmDrv1/wire/MessageReceiver.h"

#include <gtest/gtest.h>

#include <map>

#include "KvCmDrv1/wire/Seal.h"
#include "base/Crc32.h"

namespace kv {
namespace {

using Kind = Received::Kind;
using namespace std::chrono_literals;

std::string Frame(std::string_view text) {
  std::string frame;
  EXPECT_EQ(EncodeFrame(1, text, frame), TextFault::None);
  return frame;
}

// A good reply message with this payload.
std::string Block(std::string_view payload) {
  std::string bytes("\xB4\x4B\x01\x02\x01\x0A\x05\x00\x01\x01\0\0\0\0\0\0\0\0\0\0\0\0", 22);
  AppendLittleEndian(bytes, static_cast<std::uint32_t>(payload.size()), 4);
  AppendLittleEndian(bytes, Crc32(bytes) & 0xFFFFU, 2);
  bytes += payload;
  AppendLittleEndian(bytes, Crc32(bytes), 4);
  return bytes;
}

std::string Damaged(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  return bytes;
}

const std::map<Kind, char> kLetters = {
    {Kind::BadCheck, 'c'}, {Kind::BadHead, 'h'}, {Kind::Cut, 'x'}, {Kind::TooLong, 'l'}, {Kind::Noise, 'n'}};

std::string Finds(MessageReceiver& receiver, Instant now) {
  std::string finds;
  while (const auto received = receiver.Next(now)) {
    const auto& found = *received;
    if (found.kind == Kind::Frame) {
      finds += "[" + std::string(found.frame.text) + "]";
    } else if (found.kind == Kind::Block) {
      finds += "{" + std::string(found.block.payload) + "}";
    } else {
      finds += kLetters.at(found.kind);
    }
  }
  return finds;
}

TEST(MessageReceiver, FindsWhatIsGoodInWhatIsNot) {
  const std::string good = Frame("AB12");
  const std::string block = Block("data");
  const std::tuple<const char*, std::string, const char*> cases[] = {
      {"noise before a frame", "\x01\xFFxy" + good, "n[AB12]"},
      {"an empty line", "\r\r" + good, "n[AB12]"},
      {"a frame that was cut, then a good one", good.substr(0, 5) + good, "[AB12]"},
      {"a damaged character", Damaged(good, 4) + good, "c[AB12]"},
      {"a damaged end joins two lines", Frame("ZZ").substr(0, 7) + " " + good, "[AB12]"},
      {"a control character inside", "/01A\nB" + good, "nn[AB12]"},
      {"a start and nothing else", "/\r" + good, "c[AB12]"},
      {"two frames at once", good + good, "[AB12][AB12]"},
      {"a slash inside the text", Frame("GI/x/y"), "[GI/x/y]"},
      {"lower-case check", "/01IDee\r" + good, "c[AB12]"},
      {"a block message behind a cut frame", good.substr(0, 6) + block, "n{data}"},
      {"a lone block start before a frame", "\xB4" + good, "h[AB12]"},
      {"a block message with a damaged head", Damaged(block, 9) + good, "hn[AB12]"},
      {"a block message with a damaged payload", Damaged(block, 29) + good, "cn[AB12]"},
      {"a frame inside a block's payload stays inside", Block("/01IDEE\r"), "{/01IDEE\r}"},
      {"a block start inside a block's payload", Block("\xB4\x4B\x01"), "{\xB4\x4B\x01}"},
  };
  for (const auto& [what, bytes, finds] : cases) {
    SCOPED_TRACE(what);
    MessageReceiver receiver;
    receiver.Feed(bytes, Instant{});
    EXPECT_EQ(Finds(receiver, Instant{}), finds);
    EXPECT_TRUE(receiver.IsEmpty());
  }
}

TEST(MessageReceiver, KeepsABlockMessageWhoseHeadHoldsUntilNobodyWaits) {
  const std::string block = Block("data/01");
  for (const std::size_t arrived : {std::size_t{4}, std::size_t{28}, std::size_t{33}}) {
    MessageReceiver receiver;
    receiver.Feed(block.substr(0, arrived), Instant{});
    EXPECT_EQ(Finds(receiver, Instant(10s)), "") << arrived;
    receiver.Feed(block.substr(arrived), Instant(10s));
    EXPECT_EQ(Finds(receiver, Instant(10s)), "{data/01}") << arrived;
  }
  MessageReceiver receiver;
  receiver.Feed(block.substr(0, 28) + Frame("A"), Instant{});  // not enough to complete it
  EXPECT_EQ(Finds(receiver, Instant(10s)), "");
  std::string frame;
  while (const auto received = receiver.Next(Instant(10s), true)) frame = received->frame.text;
  EXPECT_EQ(frame, "A");
}

TEST(EncodeFrame, RefusesWhatAReceiverWouldMisread) {
  std::string frame;
  EXPECT_EQ(EncodeFrame(1, "A\x7F", frame), TextFault::BadCharacter);
  // A text with a tail that ends in the very checksum of the frame around it: one of the 256 two-character fillings.
  int refused = 0;
  for (int filling = 0; filling < 95 * 95; ++filling) {
    const std::string text =
        std::string(1, static_cast<char>(0x20 + filling / 95)) + static_cast<char>(0x20 + filling % 95) + "/01ID";
    if (EncodeFrame(1, text, frame) != TextFault::TailIsFrame) continue;
    ++refused;
    EXPECT_TRUE(frame.empty());
  }
  EXPECT_GT(refused, 10);
}

}  // namespace
}  // namespace kv
