// What a client of a simulated controller sees on its line when nothing goes wrong.

#include <gtest/gtest.h>

#include "LineFixture.h"
#include "simulator/LineSpeed.h"

namespace sim::test {
namespace {

TEST(Line, BytesTakeTheirTimeOnASerialLine) {
  LineFixture fixture({}, 9600);
  const kv::Instant start = fixture.now;
  const std::string request = EncodeFrame(1, "RD");  // 8 bytes of 10 bits: 8333.3 us
  fixture.line->Write(request.substr(0, 4), start);
  fixture.line->Write(request.substr(4), start);
  EXPECT_EQ(fixture.line->Read(start + 8333us), "");
  EXPECT_TRUE(fixture.controller->executed.empty());
  EXPECT_EQ(fixture.line->NextEvent(), start + 8334us);
  EXPECT_EQ(fixture.line->Read(start + 8334us), "");
  EXPECT_EQ(fixture.line->NextEvent(), start + 9376us) << "1041.7 us for the first byte of the reply";
  EXPECT_EQ(fixture.line->Read(start + 9376us), "/");
  EXPECT_EQ(fixture.line->Read(start + 11459us), "01");
  fixture.now = start + 12ms;
  EXPECT_EQ(fixture.Hear(*fixture.line).size(), 18U);
  EXPECT_EQ(fixture.now, start + 8334us + 21875us);
}

// One start bit, and an idle line behind the last stop bit.
TEST(Line, AnotherSpeedMakesOtherBytes) {
  const std::tuple<std::string, int, int, std::string> rows[] = {
      {"AB", 9600, 9600, "AB"},
      {"AB", 0, 9600, "AB"},
      {"\xFE", 9600, 3200, "\xFF"},
      {"\xFF", 9600, 4800, "\xFF"},
  };
  for (const auto& [sent, at, with, heard] : rows) EXPECT_EQ(HeardAt(sent, at, with), heard) << at << " " << with;
}

}  // namespace
}  // namespace sim::test
