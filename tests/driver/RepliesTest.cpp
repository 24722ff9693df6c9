#include "KvCmDrv1/wire/Replies.h"

#include <gtest/gtest.h>

#include <functional>

namespace kv {
namespace {

OperandRange Range(std::int32_t code, int start, int count) {
  return {FindOperandType(code), static_cast<std::uint16_t>(start), static_cast<std::uint16_t>(count)};
}

std::string Joined(const std::optional<OperandListValues>& values) {
  if (!values) return "none";
  std::string text;
  for (const std::uint32_t value : *values) text += std::to_string(value) + " ";
  return text;
}

TEST(Replies, OperandValuesOfEveryShape) {
  const std::tuple<const char*, OperandRange, const char*> cases[] = {
      {"RO0004010000000400010001", Range(1, 0, 4), "0 1 0 1 "},
      {"RO0005030064000300007FFFFFFF", Range(3, 100, 3), "0 32767 65535 "},
      {"RO00060500000002800000000001E240", Range(5, 0, 2), "2147483648 123456 "},
      {"RO00080B00000001000003E8000000FA01", Range(11, 0, 1), "1000 250 1 "},
      {"RO00090C000200010064000700", Range(12, 2, 1), "100 7 0 "},
      {"RO0004010000000400010002", Range(1, 0, 4), "none"},  // a bit of 2
      {"RO00090C000200010064000702", Range(12, 2, 1), "none"},
  };
  for (const auto& [reply, range, values] : cases) {
    const auto tag = static_cast<std::uint16_t>(reply[5] - '0');
    EXPECT_EQ(Joined(ReadOperandValues(reply, tag, range)), values) << reply;
  }
}

// A reply that is off by one character anywhere, too short or too long must give nothing at all.
TEST(Replies, NothingIsTakenFromAReplyThatDoesNotFit) {
  Bytes memory(8);
  const std::pair<std::string, std::function<bool(std::string_view)>> cases[] = {
      {"RO0005030064000300007FFFFFFF",
       [](std::string_view r) { return ReadOperandValues(r, 5, Range(3, 100, 3)).has_value(); }},
      {"WO000B0300000002OK", [](std::string_view r) { return ReadsWriteDone(r, 11, Range(3, 0, 2)); }},
      {"RM000F0030000000080001020304FFFE2F",
       [&memory](std::string_view r) { return ReadMemoryBytes(r, 15, 0x300000, memory); }},
      {"IN000112345678R", [](std::string_view r) { return ReadInformation(r, 1).has_value(); }},
      {"AC0002OK", [](std::string_view r) { return ReadsAccessGiven(r, 2); }},
      {"WOERROR04", [](std::string_view r) { return ReadRefusal(r, "WO000B").has_value(); }},
  };
  for (const auto& [reply, takes] : cases) {
    EXPECT_TRUE(takes(reply)) << reply;
    for (std::size_t at = 0; at < reply.size(); ++at) {
      std::string damaged = reply;
      damaged[at] = 'g';
      EXPECT_FALSE(takes(damaged)) << damaged;
      EXPECT_FALSE(takes(reply.substr(0, at))) << reply.substr(0, at);
    }
    EXPECT_FALSE(takes(reply + "0")) << reply;
  }
  ASSERT_TRUE(ReadMemoryBytes(cases[2].first, 15, 0x300000, memory));
  EXPECT_EQ(memory, (Bytes{0x00, 0x01, 0x02, 0x03, 0x04, 0xFF, 0xFE, 0x2F}));
}

TEST(Replies, Identification) {
  EXPECT_EQ(ReadIdentification("IDK670 / K390|20|BT 1.2;|B07;"), (VersionInfo{"K670 / K390", "20", "BT 1.2;", "B07;"}));
  EXPECT_EQ(ReadIdentification("IDQ50|||"), (VersionInfo{"Q50", "", "", ""}));
  for (const char* wrong : {"IDQ50||", "IDQ50||||", "DIQ50|||", ""}) EXPECT_FALSE(ReadIdentification(wrong)) << wrong;
}

TEST(Replies, InformationAndStep) {
  const auto info = ReadInformation("IN000012345678S50756D702031", 0);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->serialNumber, 0x12345678U);
  EXPECT_EQ(info->state, 'S');
  EXPECT_EQ(info->projectName, "Pump 1");
  EXPECT_FALSE(ReadInformation("IN000012345678S" + std::string(42, '4'), 0)) << "a name of 21 bytes";
  EXPECT_FALSE(ReadInformation("IN000012345678S504", 0)) << "half a byte";

  const auto step = ReadSynchronisation("SY000C0012ED3ED2DE5EC1WO000B0300000002OK", 12);
  ASSERT_TRUE(step);
  EXPECT_EQ(step->counter, 0x12);
  EXPECT_EQ(step->check, 0xED3ED2DEU);
  EXPECT_EQ(step->powerUp, 0x5EC1);
  EXPECT_EQ(step->reply, "WO000B0300000002OK");
  EXPECT_FALSE(ReadSynchronisation("SY000C0012ED3ED2DE5EC1" + std::string(41, 'x'), 12));
  EXPECT_FALSE(ReadSynchronisation("SY000C0012ED3ED2DE5EC1", 13));
}

TEST(Replies, OperandListPayload) {
  const std::vector<OperandRange> ranges = {Range(1, 0, 10), Range(3, 0, 1), Range(11, 0, 1), Range(12, 0, 1)};
  std::string payload("\x05\x02\xFE\xFF\xE8\x03\0\0\xFA\0\0\0\x01\x64\0\x07\0\0", 18);
  const auto lists = ReadListPayload(payload, ranges);
  ASSERT_TRUE(lists);
  EXPECT_EQ(Joined(lists->at(0)), "1 0 1 0 0 0 0 0 0 1 ");
  EXPECT_EQ(Joined(lists->at(1)), "65534 ");
  EXPECT_EQ(Joined(lists->at(2)), "1000 250 1 ");
  EXPECT_EQ(Joined(lists->at(3)), "100 7 0 ");
  EXPECT_FALSE(ReadListPayload(payload + '\0', ranges));
  EXPECT_FALSE(ReadListPayload(payload.substr(1), ranges));
  payload[1] = '\x06';  // a bit that belongs to no operand
  EXPECT_FALSE(ReadListPayload(payload, ranges));
  payload[1] = '\x02';
  payload[12] = '\x02';  // a timer's bit of 2
  EXPECT_FALSE(ReadListPayload(payload, ranges));
}

}  // namespace
}  // namespace kv
