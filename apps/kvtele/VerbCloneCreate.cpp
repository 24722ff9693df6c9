#include <system_error>

#include "apps/kvtele/CloneActions.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/TerminalCloner.h"
#include "base/PathText.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "clone/SafeCreate.h"
#include "desktop/PacerWallClock.h"

namespace kv::cli {

namespace {

// Whose program it is, and whether what the create does to it is wanted.
OrFailure<std::string> CheckProgram(Environment& environment, const CommonOptions& common,
                                    ConnectedController& controller, const CreateOrder& order,
                                    const std::string& doing) {
  const auto info = controller.AskInfo();
  if (!info) return std::unexpected(info.error());
  std::string name = ControllerText(controller.Version(), *info, controller.Description());
  const bool canAsk = order.mayStop || environment.input.IsInteractive();
  if (IsRunningState(info->state) && !canAsk) {
    return std::unexpected(Failure{ExitCode::Failed, "notConfirmed", doing,
                                   "the program of the controller (" + name + ") runs, and nobody can be asked", "",
                                   "give --stop to stop it for the clone (it runs again afterwards), or --no-stop to "
                                   "clone it while it runs: what it changes meanwhile is then half old, half new"});
  }
  ConsolePrompts prompts = PromptsFor(environment, common);
  const bool isWanted = IsStartWanted(prompts, name, info->state);
  if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing));
  if (!isWanted) return std::unexpected(NotConfirmedFailure(doing, "--yes"));
  return name;
}

}  // namespace

OrFailure<SafeCreate> CheckCreate(Environment& environment, const CommonOptions& common,
                                  const std::filesystem::path& file, const CreateOrder& order) {
  if (common.password.IsEmpty() && !environment.input.IsInteractive()) {
    return std::unexpected(
        UsageFailure("the controller's password is missing",
                     "give it with --password-file or KVTELE_PASSWORD; a controller without a password takes any"));
  }
  SafeCreate safe(file);  // what stands there later nobody has consented to replace
  safe.SetComment(order.comment);
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) return safe;
  const ConsentFlag consent = order.isDryRun ? ConsentFlag{true, "--dry-run"} : ConsentFlag{order.replace, "--replace"};
  const auto confirmed =
      Confirm(environment, consent, Utf8FromPath(file) + " exists. Replace it?", "creating " + Utf8FromPath(file));
  if (!confirmed) return std::unexpected(confirmed.error());
  return safe;
}

OrFailure<void> CreateFrom(Environment& environment, const CommonOptions& common, ConnectedController& controller,
                           SafeCreate& safe, const std::filesystem::path& file, const CreateOrder& order) {
  const std::string doing = "creating " + Utf8FromPath(file);
  const auto name = CheckProgram(environment, common, controller, order, doing);
  if (!name) return std::unexpected(name.error());
  const PacerWallClock clock;
  TerminalCloner window(environment, common, order.segments, order.mayStop);
  clsDumpPLC engine(window, window, environment.pacer, clock);
  engine.NameController(*name);
  safe.Create(engine, window, controller.Link(), WatchedWork(environment).Work());
  if (safe.Outcome().end == CloneEnd::Done) {
    for (const std::string& warning : safe.Warnings()) environment.err << "Warning: " << warning << "\n";
    return {};
  }
  ConsolePrompts prompts = PromptsFor(environment, common);
  CloneOutcome outcome = safe.Outcome();
  OfferToRun(engine, controller.Link(), prompts, environment.pacer, *name, outcome);
  return std::unexpected(CloneFailure(doing, outcome));
}

VerbResult CreateClone(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
                       const CreateOrder& order) {
  auto safe = CheckCreate(environment, common, file, order);
  if (!safe) return std::unexpected(safe.error());
  const auto controller = ConnectedController::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  if (const auto created = CreateFrom(environment, common, **controller, *safe, file, order); !created) {
    return std::unexpected(created.error());
  }
  auto report = ReportClone(environment, file);
  if (report) report->text.clear();  // the engine has said that it is done
  return report;
}

}  // namespace kv::cli
