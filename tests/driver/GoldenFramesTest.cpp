#include "GoldenFrames.h"

#include <gtest/gtest.h>

#include "KvCmDrv1/ChangeGate.h"
#include "KvCmDrv1/FrameMeaning.h"
#include "KvCmDrv1/wire/MessageReceiver.h"
#include "KvCmDrv1/wire/Replies.h"
#include "KvCmDrv1/wire/Requests.h"
#include "KvCmDrv1/wire/Seal.h"
#include "tests/support/Recorded.h"

namespace kv {
namespace {

std::optional<Received> ReceiveOne(MessageReceiver& receiver, const std::string& bytes) {
  receiver.Feed(bytes, Instant{});
  return receiver.Next(Instant{});
}

// Builds the text of a tagged request anew from the fields that the golden text shows.
std::string RebuildTaggedText(const std::string& text, std::uint8_t unit) {
  const auto number = [&text](std::size_t at, std::size_t digits) {
    return static_cast<std::uint32_t>(std::stoul(text.substr(at, digits), nullptr, 16));
  };
  const auto tag = static_cast<std::uint16_t>(number(2, 4));
  RequestWriter writer;
  if (text.starts_with("SY")) return std::string(writer.Synchronise(unit, tag));
  if (text.starts_with("IN")) return std::string(writer.Information(unit, tag));
  if (text.starts_with("AC")) return std::string(writer.GiveAccess(unit, tag, FromHex(text.substr(6, 16))));
  if (text.starts_with("P")) {
    return std::string(writer.Panel(text.substr(0, 2), unit, tag, FromHex(text.substr(6, text.size() - 14))));
  }
  if (text.starts_with("RM")) return std::string(writer.ReadMemory(unit, tag, number(6, 8), number(14, 4)));
  const OperandType* type = FindOperandType(static_cast<std::int32_t>(number(6, 2)));
  if (type == nullptr) return text;  // a request that the driver never sends
  const OperandRange range{type, static_cast<std::uint16_t>(number(8, 4)), static_cast<std::uint16_t>(number(12, 4))};
  if (text.starts_with("RO")) return std::string(writer.ReadOperands(unit, tag, range));
  std::vector<std::uint32_t> values;
  const std::size_t digits = DigitsOf(type->shape);
  for (std::size_t at = 16; at + digits + 8 <= text.size(); at += digits) values.push_back(number(at, digits));
  return std::string(writer.WriteOperands(unit, tag, range, values));
}

bool HasTag(const std::string& text) {
  for (const char* letters : {"RO", "WO", "RM", "IN", "AC", "SY", "PD", "PC", "PE"}) {
    if (text.starts_with(letters) && text.size() >= 14) return true;
  }
  return false;
}

TEST(GoldenFrames, AsciiRequestsAreBuiltByteForByte) {
  int tagged = 0;
  for (const GoldenFrame& golden : ReadGoldenFrames("ascii.txt")) {
    if (!golden.isRequest) continue;
    SCOPED_TRACE(golden.name);
    const auto unit = static_cast<std::uint8_t>(golden.Number("unit"));
    std::string text = golden.Field("text");
    if (HasTag(text)) {
      text = RebuildTaggedText(text, unit);
      ++tagged;
    }
    std::string frame;
    EXPECT_EQ(EncodeFrame(unit, text, frame), TextFault::None);
    EXPECT_EQ(frame, golden.bytes);
  }
  EXPECT_GT(tagged, 20);
}

TEST(GoldenFrames, AsciiRepliesAreTakenWithTheirSealAndWithNoOther) {
  for (const GoldenFrame& golden : ReadGoldenFrames("ascii.txt")) {
    if (golden.isRequest) continue;
    SCOPED_TRACE(golden.name);
    MessageReceiver receiver;
    const auto received = ReceiveOne(receiver, golden.bytes);
    ASSERT_TRUE(received && received->kind == Received::Kind::Frame);
    EXPECT_EQ(received->frame.unit, golden.Number("unit"));
    const auto sealed = Seal(golden.Field("request")).Open(received->frame);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->text, golden.Field("text"));
    EXPECT_EQ(sealed->counter, golden.Number("counter"));
    EXPECT_FALSE(Seal(golden.Field("request") + " ").Open(received->frame));
    AsciiFrame otherUnit = received->frame;
    ++otherUnit.unit;
    EXPECT_FALSE(Seal(golden.Field("request")).Open(otherUnit));
  }
}

TEST(GoldenFrames, BlockMessagesAreBuiltAndTakenByteForByte) {
  std::size_t replies = 0;
  for (const GoldenFrame& golden : ReadGoldenFrames("block.txt")) {
    SCOPED_TRACE(golden.name);
    const std::string payload = FromHex(golden.Field("payload"));
    BlockMessage message{.unit = static_cast<std::uint8_t>(golden.Number("unit")),
                         .status = 0,
                         .sequence = static_cast<std::uint16_t>(golden.Number("sequence")),
                         .fields = {static_cast<std::uint16_t>(golden.Number("opcode")), golden.Number("param1"),
                                    golden.Number("datalength"), static_cast<std::uint16_t>(golden.Number("param3")),
                                    static_cast<std::uint16_t>(golden.Number("param4"))},
                         .payload = payload};
    if (golden.isRequest) {
      std::string bytes;
      EncodeBlockRequest(message, bytes);
      EXPECT_EQ(bytes, golden.bytes);
      continue;
    }
    ++replies;
    MessageReceiver receiver;
    const auto received = ReceiveOne(receiver, golden.bytes);
    ASSERT_TRUE(received && received->kind == Received::Kind::Block);
    EXPECT_EQ(received->block.status, golden.Number("status"));
    EXPECT_EQ(received->block.unit, message.unit);
    EXPECT_EQ(received->block.sequence, message.sequence);
    EXPECT_EQ(received->block.fields, message.fields);
    EXPECT_EQ(received->block.payload, payload);
  }
  EXPECT_GT(replies, 10U);
}

// In the words of the trace, and whether a record has to be made of it before it is sent.
TEST(GoldenFrames, AreReadForPeople) {
  std::string told;
  for (const char* file : {"ascii.txt", "block.txt"}) {
    for (const GoldenFrame& golden : ReadGoldenFrames(file)) {
      told += golden.name + ": " + FrameMeaning(golden.bytes) + (MayChange(golden.bytes) ? ", a change\n" : "\n");
      std::string before;
      for (std::size_t cut = 1; cut < std::min<std::size_t>(golden.bytes.size(), 40); ++cut) {
        const std::string part = golden.bytes.substr(0, cut);
        const std::string now = FrameMeaning(part) + (MayChange(part) ? "!" : "");
        if (now != std::exchange(before, now)) told += std::to_string(cut) + " bytes: " + now + "\n";
      }
    }
  }
  test::ExpectAsRecorded([&told] { return told; });
}

}  // namespace
}  // namespace kv
