// kvsim at a pseudo terminal.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvsimClient.h"

namespace kvtest {
namespace {

namespace fs = std::filesystem;
using testing::StartsWith;

Descriptor OpenTerminal(const fs::path& link) {
  Descriptor terminal(::open(link.c_str(), O_RDWR | O_NOCTTY));
  termios settings{};
  ::tcgetattr(terminal.Get(), &settings);
  ::cfmakeraw(&settings);
  ::tcsetattr(terminal.Get(), TCSANOW, &settings);
  return terminal;
}

struct KvsimTerminal : testing::Test {
  kv::TemporaryFolder home;
  const fs::path link = home.Path() / "plc";
};

TEST_F(KvsimTerminal, KeepsATerminalForClientsThatComeAndGo) {
  KvsimProcess kvsim({"--pty", link.string()});
  EXPECT_THAT(kvsim.ReadyLine(), StartsWith("serving " + link.string() + " (/dev/pts/"));
  for (int round = 0; round < 3; ++round) {
    EXPECT_THAT(Exchange(OpenTerminal(link), "ID"), StartsWith("/01IDK220-22-R1|")) << round;
  }
  EXPECT_EQ(kvsim.End(SIGINT), 0);
  EXPECT_FALSE(fs::is_symlink(link));
}

// The system carries every byte over a pseudo terminal, whatever speed its end is set to: kvsim is deaf by itself.
TEST_F(KvsimTerminal, HearsATerminalAtTheSpeedThatItWasToldOnly) {
  KvsimProcess kvsim({"--pty", link.string(), "--model", "Q51", "--baud", "115200", "--restart-time", "0"});
  kvsim.ReadyLine();
  const auto terminal = OpenTerminal(link);
  constexpr int kSilence = 200;  // milliseconds
  const auto isHeard = [&terminal](speed_t speed, const std::string& text) {
    termios settings{};
    ::tcgetattr(terminal.Get(), &settings);
    ::cfsetspeed(&settings, speed);
    ::tcsetattr(terminal.Get(), TCSANOW, &settings);
    terminal.Give(kv::BuildFrame(1, text));
    std::string reply;
    while (!reply.ends_with('\r') && terminal.IsReady(kSilence)) reply += terminal.Take(1);
    return reply.starts_with("/01") && reply.ends_with('\r');
  };
  EXPECT_FALSE(isHeard(B9600, "ID"));
  EXPECT_TRUE(isHeard(B115200, "CPSR010A"));
  EXPECT_FALSE(isHeard(B115200, "ID"));
  EXPECT_TRUE(isHeard(B57600, "CCE"));
  EXPECT_FALSE(isHeard(B57600, "ID"));
  EXPECT_TRUE(isHeard(B115200, "ID"));
}

TEST_F(KvsimTerminal, PullsTheTerminalFromAClientWhoseLineIsCut) {
  KvsimProcess kvsim({"--pty", link.string(), "--fault", "lost:nth=1,at=3"});
  kvsim.ReadyLine();
  EXPECT_EQ(Exchange(OpenTerminal(link), "ID").find('\r'), std::string::npos);
  EXPECT_THAT(Exchange(OpenTerminal(link), "ID"), StartsWith("/01IDK220-22-R1|"));
}

}  // namespace
}  // namespace kvtest
