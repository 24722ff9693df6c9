#include "KvCmDrv1/wire/Replies.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/Recorded.h"

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
    test::ExpectAsRecorded([&] { return reply + "\n" + test::WhatIsTaken(reply, takes); });
  }
  EXPECT_TRUE(ReadIdentification("IDK330|33|4.60|19"));
  for (const char* bad : {"IDK330|33|4.60", "IDK330|33|4.60|19|", "IXK330|33|4.60|19", "ID", ""}) {
    EXPECT_FALSE(ReadIdentification(bad)) << bad;
  }
  ASSERT_TRUE(ReadMemoryBytes(cases[2].first, 15, 0x300000, memory));
  EXPECT_EQ(memory, (Bytes{0x00, 0x01, 0x02, 0x03, 0x04, 0xFF, 0xFE, 0x2F}));
}

TEST(Replies, OperandListPayload) {
  const std::vector<OperandRange> ranges = {Range(1, 0, 10), Range(3, 0, 1), Range(11, 0, 1), Range(12, 0, 1)};
  const std::string payload("\x05\x02\xFE\xFF\xE8\x03\0\0\xFA\0\0\0\x01\x64\0\x07\0\0", 18);
  const auto lists = ReadListPayload(payload, ranges);
  ASSERT_TRUE(lists);
  EXPECT_EQ(Joined(lists->at(0)), "1 0 1 0 0 0 0 0 0 1 ");
  EXPECT_EQ(Joined(lists->at(1)), "65534 ");
  EXPECT_EQ(Joined(lists->at(2)), "1000 250 1 ");
  EXPECT_EQ(Joined(lists->at(3)), "100 7 0 ");
  const auto isList = [&ranges](const std::string& bytes) { return ReadListPayload(bytes, ranges).has_value(); };
  test::ExpectAsRecorded([&] { return test::WhatIsTaken(payload, isList); });
}

}  // namespace
}  // namespace kv
