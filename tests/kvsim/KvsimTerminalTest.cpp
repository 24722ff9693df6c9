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

TEST_F(KvsimTerminal, PullsTheTerminalFromAClientWhoseLineIsCut) {
  KvsimProcess kvsim({"--pty", link.string(), "--fault", "lost:nth=1,at=3"});
  kvsim.ReadyLine();
  EXPECT_EQ(Exchange(OpenTerminal(link), "ID").find('\r'), std::string::npos);
  EXPECT_THAT(Exchange(OpenTerminal(link), "ID"), StartsWith("/01IDK220-22-R1|"));
}

}  // namespace
}  // namespace kvtest
