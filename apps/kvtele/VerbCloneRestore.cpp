#include "apps/kvtele/CloneActions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/TerminalCloner.h"
#include "base/PathText.h"
#include "clone/ErasedSegments.h"
#include "clone/RestoreBegin.h"
#include "clone/RestoreCheck.h"
#include "clone/clsDumpPLC.h"
#include "desktop/PacerWallClock.h"

namespace kv::cli {

namespace {

// One restore, from the file to the last line.
class Restoring {
 public:
  Restoring(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
            const RestoreOrder& order)
      : mEnvironment(environment), mCommon(common), mFile(file), mOrder(order) {}

  [[nodiscard]] VerbResult Run() {
    using Step = OrFailure<void> (Restoring::*)();
    constexpr Step kSteps[] = {&Restoring::Inspect,   &Restoring::Connect,          &Restoring::CheckUnit,
                               &Restoring::CheckFits, &Restoring::ConsentToEndLoad, &Restoring::ChooseErase,
                               &Restoring::Consent,   &Restoring::Backup,           &Restoring::Send};
    for (const Step step : kSteps) {
      if (const auto done = (this->*step)(); !done) return std::unexpected(done.error());
    }
    if (mOrder.verify) return CompareWithController(mEnvironment, *mController, mFile, {});
    mEnvironment.err << "A restore is not read back by itself. Compare with: kvtele clone verify "
                     << Utf8FromPath(mFile) << "\n";
    return VerbOutput{"", {{"restored", Utf8FromPath(mFile)}, {"lines", mInfo.frames}}};
  }

 private:
  using Done = OrFailure<void>;

  Done Inspect() {
    const std::string doing = "looking through the clone file";
    const WatchedWork watched(mEnvironment);
    auto info = InspectClone(mFile, watched.Work());
    if (!info) return std::unexpected(CloneFailure(doing, info.error()));
    mInfo = *std::move(info);
    mManifest = CheckManifest(mFile, mInfo, watched.Work());
    if (mOrder.backup && IsSameFile(*mOrder.backup, mFile)) {
      return std::unexpected(UsageFailure("the backup would overwrite the clone file that is to be restored",
                                          "give --backup another name"));
    }
    if (mInfo.IsSound()) mEnvironment.err << WholenessText(mInfo, mManifest) << "\n";
    if (mInfo.IsSound() || mOrder.force) return {};
    return std::unexpected(Failure{ExitCode::BadFile, "badFile", doing,
                                   "it is damaged: " + mInfo.damages.front().Text() + "; nothing was sent", "",
                                   "see kvtele clone info; --force restores it all the same"});
  }

  Done Connect() {
    auto controller = ConnectedController::Open(mEnvironment, mCommon);
    if (!controller) return std::unexpected(controller.error());
    mController = *std::move(controller);
    return {};
  }

  Done CheckFits() {
    const WatchedWork watched(mEnvironment);
    auto check = CheckBeforeRestore(mController->Link(), mInfo, mManifest, watched.Work());
    if (!check) return std::unexpected(CloneFailure("holding the clone file against the controller", check.error()));
    mCheck = *std::move(check);
    std::string told;
    for (const std::string& obstacle : mCheck.obstacles) {
      if (mOrder.force) mEnvironment.err << "Warning: " << obstacle << "\n";
      told += (told.empty() ? "" : " ") + obstacle;
    }
    if (told.empty() || mOrder.force) return {};
    return std::unexpected(NotFitFailure("restoring the clone file", told + " Nothing was sent", "",
                                         "choose another file or controller; --force restores it all the same"));
  }

  // Not to be forced: on a shared line the unit of the file may be another controller.
  Done CheckUnit() {
    const std::string other = OtherUnitText(mInfo, mController->Unit());
    if (other.empty() || mOrder.unitFromController) return {};
    return std::unexpected(NotFitFailure("restoring the clone file", other + " Nothing was sent", "",
                                         "--unit-from-controller sends its lines for the controller's unit; --unit "
                                         "chooses another controller"));
  }

  // A question of its own: who wants the file restored need not know that somebody else is at it.
  Done ConsentToEndLoad() {
    if (!mCheck.IsLoading()) return {};
    const std::string whose = ControllerText(mCheck.version, mCheck.controller, mController->Description());
    return Confirm(mEnvironment, {mOrder.endLoad, "--end-load"}, EndLoadQuestion(whose),
                   "restoring " + Utf8FromPath(mFile));
  }

  // A question of its own: who wants the file restored need not want more erased than the file says.
  Done ChooseErase() {
    if (mCheck.staying.empty()) return {};
    const std::string codes = CodesText(mCheck.staying);
    const auto wanted = Confirm(mEnvironment, {mOrder.eraseEmpty, "--erase-empty"},
                                StayText(mCheck.staying) + " Erase " + codes + " in the controller, too?",
                                "restoring " + Utf8FromPath(mFile));
    if (wanted) return {};
    if (wanted.error().exit == ExitCode::Interrupted) return wanted;
    mCheck.staying.clear();
    mEnvironment.err << "What the controller holds in " << codes << " stays. A comparison will show it.\n";
    return {};
  }

  Done Consent() {
    const std::string kept = mOrder.backup ? "What it holds now is kept in " + Utf8FromPath(*mOrder.backup) + " first."
                                           : "What it holds now is lost; --backup FILE.kdf keeps it.";
    const std::string question = RestoreQuestion(
        mCheck, mInfo, mFile, ControllerText(mCheck.version, mCheck.controller, mController->Description()), kept);
    return Confirm(mEnvironment, {mCommon.yes, "--yes"}, question, "restoring " + Utf8FromPath(mFile));
  }

  Done Backup() {
    if (!mOrder.backup) return {};
    CreateOrder order = mOrder.backupOrder;
    if (order.comment.empty()) order.comment = "Before " + Utf8FromPath(mFile.filename()) + " was restored";
    auto safe = CheckCreate(mEnvironment, mCommon, *mOrder.backup, order);
    if (!safe) return std::unexpected(safe.error());
    auto created = CreateFrom(mEnvironment, mCommon, *mController, *safe, *mOrder.backup, order);
    if (!created) mEnvironment.err << "Nothing was restored, because the backup failed.\n";
    return created;
  }

  Done Send() {
    Channel& link = mController->Link();
    if (!link.EnsureAccess(mController->Unit())) return std::unexpected(mController->LastFailure());
    const std::string doing = "restoring " + Utf8FromPath(mFile);
    OperationScope restoring(link.Changes(), RestoreOperation(mFile));
    if (const auto begun = BeginRestore(link, mCheck.controller, mCheck.staying); !begun) {
      return std::unexpected(CloneFailure(doing, begun.error()));
    }
    SerialPortObject* port = link.GetSerialPort();
    if (port == nullptr) return std::unexpected(mController->LastFailure());
    const PacerWallClock clock;
    TerminalCloner window(mEnvironment, mCommon, {}, std::nullopt);
    clsDumpPLC engine(window, window, mEnvironment.pacer, clock);
    engine.UseUnit(mController->Unit());  // of a damaged file, too, nothing goes to another one
    engine.ExpectDigest(mInfo.sha256);
    engine.RestoreGhost(*port, mFile, &link);
    CloneOutcome outcome = engine.Outcome();
    if (outcome.end == CloneEnd::Done) return CheckAfter(engine.Reach(), doing, restoring);
    restoring.End(ChangeEndOf(outcome));
    const std::string left = AskWhatIsLeft(engine.Reach(), link, mEnvironment.pacer);
    if (!left.empty()) outcome.reason += "\n" + left;
    return std::unexpected(CloneFailure(doing, outcome));
  }

  Done CheckAfter(RestoreReach reach, const std::string& doing, OperationScope& restoring) {
    if (mOrder.verify) reach.unproven = 0;  // the comparison will tell
    const auto checked = CheckAfterRestore(reach, mController->Link(), mCheck.controller);
    restoring.End(checked ? ChangeEnd{} : ChangeEndOf(checked.error()));
    if (!checked) return std::unexpected(CloneFailure(doing, checked.error()));
    return {};
  }

  Environment& mEnvironment;
  const CommonOptions& mCommon;
  const std::filesystem::path& mFile;
  const RestoreOrder& mOrder;
  CloneInfo mInfo;
  ManifestReport mManifest;
  std::unique_ptr<ConnectedController> mController;
  RestoreCheck mCheck;
};

}  // namespace

VerbResult RestoreClone(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
                        const RestoreOrder& order) {
  return Restoring(environment, common, file, order).Run();
}

}  // namespace kv::cli
