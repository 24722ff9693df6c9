#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "desktop/PacerWallClock.h"
#include "desktop/VirtualPacer.h"
#include "desktop/console/ConsolePacer.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

constexpr Instant At(Duration span) {
  return Instant{} + span;
}

TEST(VirtualPacer, ActionsRunInOrderAndSeeTheirMoment) {
  VirtualPacer pacer;
  std::string log;
  const auto note = [&](char name) {
    return [&, name] { log += name + std::to_string(pacer.Now().time_since_epoch() / 1s) + " "; };
  };
  pacer.At(At(3s), note('c'));
  pacer.At(At(1s), note('a'));
  pacer.At(At(1s), [&] {
    note('b')();
    pacer.After(1s, note('n'));  // told by an action, due in the same sleep
  });
  pacer.At(At(5s), note('e'));
  pacer.Sleep(4s);
  EXPECT_EQ(log, "a1 b1 n2 c3 ");
  EXPECT_EQ(pacer.Now(), At(4s));
  pacer.Sleep(1s);
  EXPECT_EQ(log, "a1 b1 n2 c3 e5 ");
}

TEST(VirtualPacer, AnActionThatSleepsDelaysTheSleeper) {
  VirtualPacer pacer;
  pacer.After(1s, [&] { pacer.Sleep(10s); });
  pacer.Sleep(2s);
  EXPECT_EQ(pacer.Now(), At(11s));
  pacer.Sleep(-1s);
  EXPECT_EQ(pacer.Now(), At(11s));
}

TEST(VirtualPacer, TurnsRunWhatIsDueAndTheirHook) {
  VirtualPacer pacer;
  std::string log;
  pacer.OnTurn([&] { log += "turn "; });
  pacer.OnDoEvents([&] {
    log += "events ";
    pacer.OnDoEvents({});  // a hook may take itself away
    pacer.RequestStop();
  });
  pacer.At(At(0s), [&] { log += "due "; });
  pacer.Turn();
  pacer.DoEvents();
  pacer.DoEvents();
  EXPECT_EQ(log, "due turn events ");
  EXPECT_EQ(pacer.TurnCount(), 1);
  EXPECT_EQ(pacer.DoEventsCount(), 2);
  EXPECT_TRUE(pacer.StopRequested());
  pacer.ClearStop();
  EXPECT_FALSE(pacer.StopRequested());
}

TEST(VirtualPacer, LocalTimeCrossesMidnightWithTheSleep) {
  using namespace std::chrono;
  VirtualPacer pacer;
  pacer.Sleep(7s);
  pacer.SetLocalTime(local_days{year{2025} / 12 / 31} + 23h + 59min + 59s);
  pacer.Sleep(1500ms);
  EXPECT_EQ(pacer.LocalTime(), local_days{year{2026} / 1 / 1});
}

TEST(ConsolePacer, TimeNeverGoesBackwardsAndASleepIsWhole) {
  ConsolePacer pacer;
  const Instant before = pacer.Now();
  pacer.Sleep(1ms);
  EXPECT_GE(pacer.Now() - before, 1ms);
}

TEST(PacerWallClock, ReadsTheDate) {
  EXPECT_GE(PacerWallClock().LocalTime(), std::chrono::local_days{std::chrono::year{2024} / 1 / 1});
}

TEST(ConsolePacer, CtrlCIsTheStopRequest) {
  ConsolePacer pacer;
  for (const int signal : {SIGINT, SIGTERM}) {
    EXPECT_FALSE(pacer.StopRequested());
    std::raise(signal);
    EXPECT_TRUE(pacer.StopRequested());
    pacer.ClearStop();
  }
  pacer.RequestStop();
  EXPECT_TRUE(pacer.StopRequested());
}

TEST(ConsolePacerDeathTest, TheSecondCtrlCEndsAtOnce) {
  const auto twice = [] {
    const ConsolePacer pacer;
    std::raise(SIGINT);
    std::raise(SIGINT);
  };
  EXPECT_EXIT(twice(), testing::ExitedWithCode(130), "");
}

#ifndef _WIN32
TEST(ConsolePacerDeathTest, ItsEndGivesTheSignalBack) {
  const auto after = [] {
    {
      const ConsolePacer pacer;
    }
    std::raise(SIGINT);
  };
  EXPECT_EXIT(after(), testing::KilledBySignal(SIGINT), "");
}
#endif

}  // namespace
}  // namespace kv
