#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "desktop/StopScope.h"
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

TEST(ConsolePacer, CtrlCIsTheStopRequest) {
  ConsolePacer pacer;
  pacer.RequestStop();
  for (const int signal : {SIGINT, SIGTERM}) {
    const StopScope operation(pacer);
    EXPECT_FALSE(pacer.StopRequested()) << "what came before is no stop of this operation";
    std::raise(signal);
    EXPECT_TRUE(pacer.StopRequested());
  }
  EXPECT_FALSE(pacer.StopRequested());
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
    (void)std::signal(SIGINT, SIG_DFL);  // a shell starts what runs in its background with the signal ignored
    {
      const ConsolePacer pacer;
    }
    std::raise(SIGINT);
  };
  EXPECT_EXIT(after(), testing::KilledBySignal(SIGINT), "");
}

// Started with nohup a program is meant to outlive its terminal.
TEST(ConsolePacer, TheLossOfTheTerminalIsAStopRequestUnlessItIsIgnored) {
  for (const bool isIgnored : {false, true}) {
    const auto before = std::signal(SIGHUP, isIgnored ? SIG_IGN : SIG_DFL);
    {
      ConsolePacer pacer;
      std::raise(SIGHUP);
      EXPECT_EQ(pacer.StopRequested(), !isIgnored);
    }
    std::signal(SIGHUP, before);
  }
}
#endif

}  // namespace
}  // namespace kv
