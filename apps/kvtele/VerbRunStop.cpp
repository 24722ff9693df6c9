#include "apps/kvtele/CloneActions.h"
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
  [[nodiscard]] OrFailure<void> Switch(ConnectedController& controller) const;

  bool mRuns;
};

VerbOutput MakeOutput(const std::string& name, char state) {
  return {"", {{"controller", name}, {"state", std::string(1, state)}}};
}

const char* VerbRunStop::Examples() const {
  return mRuns ? "  kvtele --link sim:K220-22-R1 --yes run\n"
                 "  kvtele --link tcp:192.168.1.20 --password 1234 run           asks before\n"
               : "  kvtele --link sim:K220-22-R1 --yes stop\n"
                 "  kvtele --link tcp:192.168.1.20 --password 1234 stop          asks before\n";
}

VerbResult VerbRunStop::Run(Environment& environment, const CommonOptions& common) {
  const auto controller = ConnectedController::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  ConnectedController& plc = **controller;
  const auto before = plc.Link().GetControllerInfo(plc.Unit());
  if (!before) return std::unexpected(plc.LastFailure());
  const std::string name = ControllerText(plc.Version(), *before, plc.Description());
  const auto isDone = [this](char state) { return mRuns ? IsRunningState(state) : state == 'S'; };
  if (isDone(before->state)) {
    environment.err << "The program of " << name << (mRuns ? " runs already.\n" : " is stopped already.\n");
    return MakeOutput(name, before->state);
  }
  const std::string warning = mRuns ? RunWarning(before->state) : "";
  const std::string question = "The program of the controller (" + name + ") is about to be " +
                               (mRuns ? "started. " : "stopped. ") + warning + (warning.empty() ? "" : " ") +
                               "Continue?";
  const auto confirmed =
      Confirm(environment, {common.yes, "--yes"}, question, mRuns ? "starting the program" : "stopping the program");
  if (!confirmed) return std::unexpected(confirmed.error());
  if (const auto met = MeetAgain(plc.Link(), *before); !met) {
    return std::unexpected(CloneFailure(mRuns ? "starting the program" : "stopping the program", met.error()));
  }
  if (const auto done = Switch(plc); !done) return std::unexpected(done.error());
  const auto after = plc.Link().GetControllerInfo(plc.Unit());
  if (!after) return std::unexpected(plc.LastFailure());
  if (!isDone(after->state)) {
    return std::unexpected(
        NotFitFailure(mRuns ? "starting the program" : "stopping the program",
                      std::string("the controller took the command, but its state is ") + after->state + " now",
                      "somebody else has changed it, or the program ended by itself", "see kvtele identify"));
  }
  environment.err << "The program of " << name << (mRuns ? " runs.\n" : " is stopped.\n");
  return MakeOutput(name, after->state);
}

OrFailure<void> VerbRunStop::Switch(ConnectedController& controller) const {
  const bool isDone =
      mRuns ? controller.Link().RunController(controller.Unit()) : controller.Link().StopController(controller.Unit());
  if (!isDone) return std::unexpected(controller.LastFailure());
  return {};
}

}  // namespace

std::unique_ptr<Verb> MakeVerbRun() {
  return std::make_unique<VerbRunStop>(true);
}

std::unique_ptr<Verb> MakeVerbStop() {
  return std::make_unique<VerbRunStop>(false);
}

}  // namespace kv::cli
