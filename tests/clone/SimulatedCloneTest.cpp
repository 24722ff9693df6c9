#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/Driver.h"
#include "clone/CloneVerify.h"
#include "simulator/SimulatedController.h"
#include "tests/clone/CloneBench.h"
#include "tests/support/SilentCloner.h"

namespace kv::test {
namespace {

using testing::HasSubstr;

// A simulated controller behind the driver, and the engine at work on it, on virtual time.
class Plc {
 public:
  explicit Plc(CloneBench& bench, std::uint32_t memorySeed = 1, const std::string& password = {})
      : mBench(bench), mDriver(bench.pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr) {
    sim::SimulatorOptions options;
    options.model = "AurexQ50";
    options.password = password;
    options.memorySeed = memorySeed;
    simulated = sim::SimulatedController::Create(options).value();
  }
  std::unique_ptr<sim::SimulatedController> simulated;
  KnowingPrompts prompts;

  Channel& Link() { return *(mChannel = mDriver.GetChannel()); }
  char State() { return Link().GetControllerInfo(1).value_or(Channel::ControllerInfo()).state; }

  CloneOutcome Create(const std::filesystem::path& file) {
    clsDumpPLC engine(mBench.window, prompts, mBench.pacer, mBench.pacer);
    engine.CreateGhost(Link(), file);
    return engine.Outcome();
  }
  CloneOutcome Restore(const std::filesystem::path& file) {
    clsDumpPLC engine(mBench.window, prompts, mBench.pacer, mBench.pacer);
    mBench.pacer.Sleep(std::chrono::seconds(1));  // a controller that was reset does not listen at once
    Channel& link = Link();
    engine.RestoreGhost(*link.GetSerialPort(), file, &link);
    return engine.Outcome();
  }

 private:
  CloneBench& mBench;
  Driver mDriver;
  std::shared_ptr<Channel> mChannel;
};

TEST(SimulatedClone, NeedsThePasswordBothWays) {
  CloneBench bench;
  Plc plc(bench, 1, "Secret");
  plc.prompts.password = "secret";
  EXPECT_EQ(plc.Create(bench.file).cause, CloneCause::Password);
  plc.prompts.password = "Secret";
  ASSERT_EQ(plc.Create(bench.file).end, CloneEnd::Done);   // and that gives access on this connection
  EXPECT_EQ(plc.Restore(bench.file).end, CloneEnd::Done);  // whose end resets the controller
  const CloneOutcome refused = plc.Restore(bench.file);
  EXPECT_EQ(refused.cause, CloneCause::Reply);
  EXPECT_THAT(refused.reason, HasSubstr("password"));
  EXPECT_EQ(plc.State(), 'R');
  EXPECT_TRUE(VerifyClone(plc.Link(), bench.file)->IsSame());
}

TEST(SimulatedClone, FailsPlainlyAtEachLineOfARestoreOrIsFoundOutByVerify) {
  CloneBench bench;
  ASSERT_EQ(Plc(bench).Create(bench.file).end, CloneEnd::Done);
  const auto lines = static_cast<int>(InspectClone(bench.file)->frames);
  for (int nth = 1; nth <= lines; nth += nth < lines - 5 ? 7 : 1) {
    const std::string selector = ":nth=" + std::to_string(nth);
    for (const std::string kind : {"noreply", "reset", "lost:at=0,away=1"}) {
      Plc plc(bench, 2);
      const std::string rule = kind + (kind.contains(':') ? "," : ":") + selector.substr(1);
      ASSERT_TRUE(plc.simulated->UseFaults({rule}));
      const CloneOutcome outcome = plc.Restore(bench.file);
      EXPECT_EQ(outcome.cause, CloneCause::Reply) << rule;
      EXPECT_THAT(outcome.reason, HasSubstr("Line " + std::to_string(nth + 4))) << rule;
      EXPECT_EQ(plc.State(), nth == lines || kind == "reset" ? 'R' : 'L') << rule;
    }
    Plc liar(bench, 2);
    ASSERT_TRUE(liar.simulated->UseFaults({"lie" + selector}));
    EXPECT_EQ(liar.Restore(bench.file).end, CloneEnd::Done);
    EXPECT_EQ(VerifyClone(liar.Link(), bench.file)->IsSame(), nth == lines) << nth;
  }
}

}  // namespace
}  // namespace kv::test
