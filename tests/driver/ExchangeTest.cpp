#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

TEST(Exchange, AFaultThatStaysIsToldByItsReason) {
  for (const auto& [fault, code] :
       {std::pair{"noreply:on=RO", LinkErrorCode::NoReply}, {"cut:after=7,on=RO", LinkErrorCode::Damaged}}) {
    Bench bench;
    bench.plant.UseFaults({fault});
    EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
    EXPECT_EQ(bench.Error().code, code) << bench.Error().Text();
  }
}

TEST(Exchange, RefusalIsNeverRepeated) {
  Bench bench;
  bench.plant.UseFaults({"busy:on=RO,nth=1"});
  EXPECT_FALSE(bench.channel.ReadMI(0, 60, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Busy);
  EXPECT_TRUE(
      bench.Error().Text().starts_with("Reading MI 0..59 from unit 1 on COM3, 115200 8N1 failed: the controller "
                                       "refused: it is busy (code 0A)"));
  EXPECT_EQ(bench.channel.Quality().repeats, 0U);
}

// A link on which replies take 2 ms does not wait half a second for each that is lost.
TEST(Exchange, LostReplyCostsTheTimeOfThisLink) {
  Bench bench;
  bench.plant.UseFaults({"noreply:on=RO,nth=1"});
  const Instant start = bench.pacer.Now();
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_LE(bench.pacer.Now() - start, 150ms);
  EXPECT_EQ(bench.channel.Quality().repeats, 1U);
}

TEST(Exchange, AnsweredAtOnceItCostsNoTurn) {
  Bench bench;
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.pacer.TurnCount(), 0);
}

TEST(Exchange, StopAndAbortEndAWaitWithin200Milliseconds) {
  for (const bool isAbort : {false, true}) {
    for (const char* fault : {"noreply:on=CC", "garbage:on=CC"}) {
      Bench bench;
      bench.plant.UseFaults({fault});
      bench.channel.SetTimeOut(20000);
      bench.pacer.After(300ms, [&] { isAbort ? bench.channel.AbortComm(true) : bench.pacer.RequestStop(); });
      const Instant start = bench.pacer.Now();
      EXPECT_FALSE(bench.channel.SendCommand("CCS") && bench.channel.SendCommand("CCR"));
      EXPECT_EQ(bench.Error().code, LinkErrorCode::Stopped);
      EXPECT_LE(bench.pacer.Now() - start, 500ms);
      bench.pacer.ClearStop();
      bench.channel.AbortComm(true);  // with nothing under way it stops nothing
      bench.plant.UseFaults({});
      bench.channel.Close();
      EXPECT_TRUE(bench.channel.Open());
      EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << bench.Error().Text();
    }
  }
}

TEST(Exchange, SecondRequestInTheMiddleOfOneIsRefused) {
  Bench bench;
  bench.plant.UseFaults({"noreply:on=RO,nth=1"});
  bool wasRefused = false;
  bench.pacer.After(20ms,
                    [&] { wasRefused = !bench.channel.ReadMI(1, 1, 1) && bench.Error().code == LinkErrorCode::Busy; });
  EXPECT_TRUE(bench.channel.ReadMI(9, 1, 1));
  EXPECT_TRUE(wasRefused);
}

// The counter has gone half around since the last write; an equal request that is lost must not be taken for that one.
TEST(Exchange, OldEqualRequestIsNotMistakenForTheLostOne) {
  Bench bench;
  EXPECT_TRUE(bench.channel.StopController(1));
  for (int i = 0; i < 40000; ++i) ASSERT_TRUE(bench.channel.ReadMI(0, 1, 1));
  bench.plant.UseFaults({"damage:dir=in,on=CC,nth=1"});
  EXPECT_TRUE(bench.channel.StopController(1));
  EXPECT_EQ(bench.plant.controller->MostExecutions(), 2);
}

}  // namespace
}  // namespace kv
