// What a client of a simulated controller sees on its line when nothing goes wrong.

#include <gtest/gtest.h>

#include "LineFixture.h"

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

TEST(Line, ANewSpeedBeginsBehindTheReplyAndEveryOtherOneIsNoise) {
  LineFixture fixture({}, 115200);
  fixture.line->SetBaud(115200);
  const kv::Instant start = fixture.now;
  EXPECT_EQ(fixture.Ask("CPSR0007"), "CP-");
  EXPECT_EQ(fixture.now - start, 3039us) << "14 bytes there, 21 back at 115200";
  EXPECT_EQ(fixture.Ask("WDx"), "") << "the controller is deaf at 115200";
  fixture.line->SetBaud(9600);
  const kv::Instant slow = fixture.now;
  EXPECT_EQ(fixture.Ask("RD"), "RD-");
  EXPECT_EQ(fixture.now - slow, 8334us + 21875us);

  fixture.line->Write(EncodeFrame(1, "RD"), fixture.now);
  fixture.line->SetBaud(115200);
  const std::string noise = fixture.Hear(*fixture.line);
  EXPECT_NE(noise, "") << "who listens at another speed hears something, but no reply";
  EXPECT_EQ(noise.find("RD"), std::string::npos);

  fixture.line->SetBaud(9600);
  EXPECT_EQ(fixture.Ask("CCE"), "CC-");
  fixture.now += 1s;
  EXPECT_EQ(fixture.Ask("RD"), "") << "the reset has brought the usual speed back";
  fixture.line->SetBaud(115200);
  EXPECT_EQ(fixture.Ask("RD"), "RD-");
  EXPECT_EQ(fixture.controller->executed, (std::vector<std::string>{"CPSR0007", "RD", "RD", "CCE", "RD"}));
}

}  // namespace
}  // namespace sim::test
