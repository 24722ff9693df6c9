#include <string>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/Verb.h"
#include "clone/ProgramState.h"
#include "clone/RestoreBegin.h"
#include "clone/RestoreCheck.h"

namespace kv::cli {

namespace {

// Starts or stops the controller's program, after a question that names whose it is.
class VerbRunStop : public Verb {
 public:
  explicit VerbRunStop(bool runs) : mRuns(runs) {}

  [[nodiscard]] const char* Name() const override { return mRuns ? "run" : "stop"; }
  [[nodiscard]] const char* Summary() const override {
    return mRuns ? "Start the controller's program" : "Stop the controller's program";
  }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] bool IsDone(char state) const { return mRuns ? IsRunningState(state) : state == 'S'; }
  [[nodiscard]] const char* Doing() const { return mRuns ? "starting the program" : "stopping the program"; }
  [[nodiscard]] std::string Question(const std::string& name, char state) const;
  [[nodiscard]] OrFailure<void> Switch(ConnectedController& plc, const Channel::ControllerInfo& asked) const;
  [[nodiscard]] OrFailure<char> StateAfter(ConnectedController& plc) const;

  bool mRuns;
};

VerbOutput MakeOutput(const std::string& name, char state) {
  return {"", {{"controller", name}, {"state", std::string(1, state)}}};
}

const char* VerbRunStop::Examples() const {
  return mRuns ? "  kvtele --link sim:K220-22-R1 --yes run\n"
                 "  kvtele --link tcp:192.168.1.20 --password-file pw.txt run    asks before\n"
               : "  kvtele --link sim:K220-22-R1 --yes stop\n"
                 "  kvtele --link tcp:192.168.1.20 --password-file pw.txt stop   asks before\n";
}

VerbResult VerbRunStop::Run(Environment& environment, const CommonOptions& common) {
  const auto connected = ConnectedController::Open(environment, common);
  if (!connected) return std::unexpected(connected.error());
  ConnectedController& plc = **connected;
  const auto before = plc.AskInfo();
  if (!before) return std::unexpected(before.error());
  const std::string name = ControllerText(plc.Version(), *before, plc.Description());
  if (IsDone(before->state)) {
    environment.err << "The program of " << name << (mRuns ? " runs already.\n" : " is stopped already.\n");
    return MakeOutput(name, before->state);
  }
  const auto confirmed = Confirm(environment, {common.yes, "--yes"}, Question(name, before->state), Doing());
  if (!confirmed) return std::unexpected(confirmed.error());
  if (const auto done = Switch(plc, *before); !done) return std::unexpected(done.error());
  const auto after = StateAfter(plc);
  if (!after) return std::unexpected(after.error());
  environment.err << "The program of " << name << (mRuns ? " runs.\n" : " is stopped.\n");
  return MakeOutput(name, *after);
}

std::string VerbRunStop::Question(const std::string& name, char state) const {
  const std::string warning = mRuns ? RunWarning(state) : "";
  return "The program of the controller (" + name + ") is about to be " + (mRuns ? "started. " : "stopped. ") +
         warning + (warning.empty() ? "" : " ") + "Continue?";
}

// It may have been exchanged while the question was open.
OrFailure<void> VerbRunStop::Switch(ConnectedController& plc, const Channel::ControllerInfo& asked) const {
  if (const auto met = MeetAgain(plc.Link(), asked); !met) return std::unexpected(CloneFailure(Doing(), met.error()));
  const OperationScope switching(plc.Link().Changes(), {.tool = mRuns ? "kvtele run" : "kvtele stop",
                                                        .what = mRuns ? "start the program" : "stop the program"});
  if (mRuns ? plc.Link().RunController(plc.Unit()) : plc.Link().StopController(plc.Unit())) return {};
  return std::unexpected(plc.LastFailure());
}

OrFailure<char> VerbRunStop::StateAfter(ConnectedController& plc) const {
  const auto after = plc.AskInfo();
  if (!after) return std::unexpected(after.error());
  if (IsDone(after->state)) return after->state;
  return std::unexpected(
      NotFitFailure(Doing(), std::string("the controller took the command, but its state is ") + after->state + " now",
                    "somebody else has changed it, or the program ended by itself", "see kvtele identify"));
}

}  // namespace

std::unique_ptr<Verb> MakeVerbRun() {
  return std::make_unique<VerbRunStop>(true);
}

std::unique_ptr<Verb> MakeVerbStop() {
  return std::make_unique<VerbRunStop>(false);
}

}  // namespace kv::cli
