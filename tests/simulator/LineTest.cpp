// What a client of a simulated controller sees on its line when nothing goes wrong.

#include <gtest/gtest.h>

#include "LineBench.h"

namespace sim::test {
namespace {

TEST(Line, BytesTakeTheirTimeOnASerialLine) {
  LineBench bench({}, 9600);
  const kv::Instant start = bench.now;
  const std::string request = EncodeFrame(1, "RD");  // 8 bytes of 10 bits: 8333.3 us
  bench.line->Write(request.substr(0, 4), start);
  bench.line->Write(request.substr(4), start);
  EXPECT_EQ(bench.line->Read(start + 8333us), "");
  EXPECT_TRUE(bench.controller->executed.empty());
  EXPECT_EQ(bench.line->NextEvent(), start + 8334us);
  EXPECT_EQ(bench.line->Read(start + 8334us), "");
  EXPECT_EQ(bench.line->NextEvent(), start + 9376us) << "1041.7 us for the first byte of the reply";
  EXPECT_EQ(bench.line->Read(start + 9376us), "/");
  EXPECT_EQ(bench.line->Read(start + 11459us), "01");
  bench.now = start + 12ms;
  EXPECT_EQ(bench.Hear(*bench.line).size(), 18U);
  EXPECT_EQ(bench.now, start + 8334us + 21875us);
}

TEST(Line, ANewSpeedBeginsBehindTheReply) {
  LineBench bench({}, 115200);
  const kv::Instant start = bench.now;
  EXPECT_EQ(bench.Ask("CPSR0007"), "CP-");
  EXPECT_EQ(bench.now - start, 3039us) << "14 bytes there, 21 back at 115200";
  EXPECT_EQ(bench.Ask("RD"), "RD-");
  EXPECT_EQ(bench.now - start, 3039us + 8334us + 21875us);
}

}  // namespace
}  // namespace sim::test
