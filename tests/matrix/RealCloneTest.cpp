// Clones with kvsim as a program of its own, over a real TCP connection and a real pseudo terminal.

#include <gtest/gtest.h>

#include "RealFixture.h"
#include "clone/CloneVerify.h"
#include "clone/clsDumpPLC.h"
#include "desktop/PacerWallClock.h"
#include "tests/support/SilentCloner.h"

namespace kv::matrix {
namespace {

using namespace std::chrono_literals;

class RealClone : public testing::TestWithParam<Transport> {
 protected:
  RealClone() { mWindow.boxes = {.op = false, .dt = false, .ap = false, .os = false}; }

  // A controller takes the place of the one before; nothing when it cannot be reached.
  Channel* Serve(const char* memorySeed) {
    fixture.driver.CloseDriver();
    fixture.End();
    return fixture.Serve({"--model", "AurexQ50", "--memory-seed", memorySeed}) ? fixture.Link() : nullptr;
  }
  CloneOutcome Create(Channel& link) {
    clsDumpPLC engine(mWindow, mPrompts, fixture.pacer, mClock);
    engine.CreateGhost(link, file);
    return engine.Outcome();
  }
  CloneOutcome Restore(Channel& link) {
    clsDumpPLC engine(mWindow, mPrompts, fixture.pacer, mClock);
    engine.RestoreGhost(*link.GetSerialPort(), file, &link);
    return engine.Outcome();
  }

  RealFixture fixture{GetParam()};
  std::filesystem::path file = fixture.folder.Path() / "plc.kdf";

 private:
  test::SilentCloner mWindow;
  test::KnowingPrompts mPrompts;
  PacerWallClock mClock;
};

TEST_P(RealClone, MakesAnotherControllerTheSame) {
  Channel* link = Serve("1");
  ASSERT_NE(link, nullptr);
  ASSERT_EQ(Create(*link).reason, "");
  link = Serve("2");
  ASSERT_NE(link, nullptr);
  EXPECT_GT(VerifyClone(*link, file)->DifferingBytes(), 1000U);
  ASSERT_EQ(Restore(*link).reason, "");
  fixture.pacer.Sleep(500ms);  // it restarts
  EXPECT_TRUE(VerifyClone(*link, file)->IsSame());
}

INSTANTIATE_TEST_SUITE_P(Lines, RealClone, testing::Values(Transport::Tcp, Transport::Serial),
                         [](const auto& line) { return line.param == Transport::Tcp ? "tcp" : "pty"; });

}  // namespace
}  // namespace kv::matrix
