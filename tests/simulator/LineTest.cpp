// What a client of a simulated controller sees on its line when nothing goes wrong.

#include <gtest/gtest.h>

#include "LineBench.h"

namespace sim::test {
namespace {

TEST(Line, AnswersOnlySoundRequestsForItsUnit) {
  LineBench bench;
  EXPECT_EQ(bench.Ask("RA"), "RA-");
  EXPECT_EQ(bench.Say(EncodeFrame(2, "RA")), "");
  EXPECT_EQ(bench.Say("/01RAE0\r"), "");                                // bad sum
  EXPECT_EQ(bench.Ask("RO00040100000004A8EB799D").substr(0, 2), "RO");  // good check
  EXPECT_EQ(bench.Ask("RO00040100000004A8EB799E"), "");
  EXPECT_EQ(bench.Ask("WO"), "");
  EXPECT_EQ(bench.Say(LineBench::Block(1, "x", 2)), "");
  EXPECT_EQ(bench.controller->executed.size(), 2U);
  EXPECT_EQ(bench.controller->lastAdvance, bench.now);
}

TEST(Line, CounterAndSyncOutliveConnectionsAndResets) {
  LineBench bench;
  const auto sync = [&] { return bench.Ask("SYFFFE3B1F5E1E"); };
  EXPECT_EQ(sync(), "SYFFFE0000000000000007");
  EXPECT_EQ(bench.counter, 1);
  EXPECT_EQ(bench.Ask("WD42"), "WD-");
  EXPECT_EQ(bench.Ask("RD"), "RD-42");
  EXPECT_EQ(bench.Ask("CCE"), "CC-");
  EXPECT_EQ(bench.Ask("RD"), "") << "while the controller resets";
  bench.now += 200ms;
  bench.line->Disconnect(bench.now);
  ASSERT_TRUE(bench.line->Connect(bench.now));
  // 507F4352 is the CRC-32 of "CCE", from another tool.
  EXPECT_EQ(sync(), "SYFFFE0004507F43520007CC-");
  EXPECT_EQ(bench.counter, 5);
  EXPECT_EQ(bench.Ask("SYFFFE00BADC0DE5"), "");
}

TEST(Line, TheSameBlockMessageIsNotExecutedTwice) {
  LineBench bench;
  const std::string first = bench.Say(LineBench::Block(9, "a"));
  EXPECT_EQ(DecodeBlock(first)->payload, "done 1");
  EXPECT_EQ(bench.Say(LineBench::Block(9, "a")), first);
  EXPECT_EQ(DecodeBlock(bench.Say(LineBench::Block(9, "b")))->payload, "done 2") << "same number, other request";
  EXPECT_EQ(DecodeBlock(bench.Say(LineBench::Block(10, "b")))->payload, "done 3");
  bench.line->Disconnect(bench.now);
  ASSERT_TRUE(bench.line->Connect(bench.now));
  EXPECT_EQ(DecodeBlock(bench.Say(LineBench::Block(10, "b")))->payload, "done 4") << "another connection";
  std::string ownReply = bench.Say(LineBench::Block(11, "c"));
  EXPECT_EQ(bench.Say(ownReply), "") << "a reply is no request";
}

TEST(Line, ConnectionsShareTheControllerButNotTheirAccess) {
  LineBench bench;
  const auto other = bench.simulated->NewLine();
  EXPECT_EQ(other->Read(bench.now), "");
  ASSERT_TRUE(other->Connect(bench.now));
  EXPECT_EQ(bench.Ask("GI"), "GI+");
  EXPECT_EQ(bench.Ask("WD7"), "WD+");
  other->Write("/01RDF7\r", bench.now);
  EXPECT_EQ(bench.Unsealed(bench.Hear(*other), "RD"), "RD-7");
  EXPECT_EQ(bench.counter, 3);
  other->Write(EncodeFrame(1, "CCE"), bench.now);
  bench.now += 200ms;
  EXPECT_EQ(bench.Ask("RD"), "RD-7") << "the reset has taken everybody's access";
  bench.simulated.reset();
  EXPECT_EQ(bench.Ask("RD"), "RD-7") << "a line outlives the one who made it";
}

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

TEST(Line, CompactControllersTakeBlockMessagesForNoise) {
  for (const auto& [model, hasBlocks] : {std::pair("K220-22-R1", true), std::pair("Q51", false)}) {
    SimulatorOptions options;
    options.model = model;
    const auto line = SimulatedController::Create(options).value()->NewLine();
    ASSERT_TRUE(line->Connect({}));
    line->Write(LineBench::Block(1, "") + EncodeFrame(1, "ID"), {});
    const std::string heard = line->Read({});
    EXPECT_NE(heard.find("/01ID" + std::string(model)), std::string::npos);
    EXPECT_EQ(heard.front() == kBlockStart, hasBlocks);
  }
}

}  // namespace
}  // namespace sim::test
