#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "KvCmDrv1/Driver.h"
#include "clone/CloneVerify.h"
#include "clone/ErasedSegments.h"
#include "clone/RestoreBegin.h"
#include "simulator/SimulatedController.h"
#include "tests/clone/CloneBench.h"
#include "tests/support/SilentCloner.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A clone file without the command lines that contain `text`.
std::string WithoutLines(const std::string& content, const std::string& text) {
  std::istringstream lines(content);
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    if (!line.contains(text)) kept += line + "\n";
  }
  return kept;
}

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
  EXPECT_EQ(plc.Restore(bench.file).end, CloneEnd::Done) << "the password is given again";
  Plc other(bench, 1, "Secret");
  const CloneOutcome refused = other.Restore(bench.file);
  EXPECT_EQ(refused.cause, CloneCause::Reply);
  EXPECT_THAT(refused.reason, HasSubstr("password"));
  EXPECT_EQ(other.State(), 'R');
  EXPECT_TRUE(VerifyClone(plc.Link(), bench.file)->IsSame());
}

TEST(SimulatedClone, AWholeRestoreAfterOneThatWasCutAtAnyLineLeavesNothingOfIt) {
  CloneBench bench;
  ASSERT_EQ(Plc(bench, 2).Create(bench.file).end, CloneEnd::Done);
  const std::filesystem::path other = bench.folder.Path() / "other.kdf";
  std::filesystem::rename(bench.file, other);
  ASSERT_EQ(Plc(bench, 3).Create(bench.file).end, CloneEnd::Done);
  const auto lines = static_cast<int>(InspectClone(other)->frames);
  for (int nth = 2; nth < lines; nth += nth < lines - 5 ? 7 : 1) {
    Plc plc(bench);
    ASSERT_TRUE(plc.simulated->UseFaults({"refuse:on=WD,code=0D,nth=" + std::to_string(nth)}));
    ASSERT_EQ(plc.Restore(other).end, CloneEnd::Failed);
    ASSERT_EQ(plc.State(), 'L');
    ASSERT_TRUE(BeginRestore(plc.Link(), *plc.Link().GetControllerInfo(1)));
    ASSERT_EQ(plc.Restore(bench.file).end, CloneEnd::Done) << nth;
    EXPECT_TRUE(VerifyClone(plc.Link(), bench.file)->IsSame()) << nth;
  }
}

TEST(SimulatedClone, ASegmentThatIsErasedAsAWholeIsErasedInTheTargetOnRequestAlone) {
  CloneBench bench;
  ASSERT_EQ(Plc(bench, 2).Create(bench.file).end, CloneEnd::Done);
  bench.folder.Put("clone.kdf", WithoutLines(bench.Content(), "WDF003"));  // as if AP had been 255 from end to end
  const auto erased = ErasedSegments(*InspectClone(bench.file));
  ASSERT_EQ(erased.size(), 1U);
  EXPECT_EQ(erased[0].code, "AP");

  Plc plc(bench, 3);
  EXPECT_THAT(*SegmentsThatStay(plc.Link(), erased), ElementsAre(erased[0]));
  const Channel::ControllerInfo asked = *plc.Link().GetControllerInfo(1);
  ASSERT_TRUE(BeginRestore(plc.Link(), asked));
  ASSERT_EQ(plc.Restore(bench.file).end, CloneEnd::Done);
  EXPECT_FALSE(VerifyClone(plc.Link(), bench.file)->IsSame());  // and would never be
  ASSERT_TRUE(BeginRestore(plc.Link(), asked, erased));
  ASSERT_EQ(plc.Restore(bench.file).end, CloneEnd::Done);
  EXPECT_TRUE(VerifyClone(plc.Link(), bench.file)->IsSame());
  EXPECT_THAT(*SegmentsThatStay(plc.Link(), erased), IsEmpty());
  EXPECT_EQ(plc.State(), 'R');
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
      EXPECT_EQ(plc.State(), 'R');  // it is met, so that lines alone are counted
      ASSERT_TRUE(plc.simulated->UseFaults({rule}));
      const CloneOutcome outcome = plc.Restore(bench.file);
      EXPECT_EQ(outcome.cause, CloneCause::Reply) << rule;
      EXPECT_THAT(outcome.reason, HasSubstr("Line " + std::to_string(nth + 4))) << rule;
      EXPECT_EQ(plc.State(), nth == lines || kind == "reset" ? 'R' : 'L') << rule;
    }
    Plc liar(bench, 2);
    EXPECT_EQ(liar.State(), 'R');
    ASSERT_TRUE(liar.simulated->UseFaults({"lie" + selector}));
    EXPECT_EQ(liar.Restore(bench.file).end, CloneEnd::Done);
    EXPECT_EQ(VerifyClone(liar.Link(), bench.file)->IsSame(), nth == lines) << nth;
  }
}

}  // namespace
}  // namespace kv::test
