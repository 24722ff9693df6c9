#include "download/BackupBefore.h"

#include <utility>

#include "base/PathText.h"
#include "clone/CloneCompare.h"
#include "clone/CloneVerify.h"
#include "clone/ProgramState.h"
#include "clone/clsDumpPLC.h"
#include "link/OsVersion.h"

namespace kv {
namespace {

DownloadOutcome OutcomeOf(const CloneOutcome& clone, ControllerLeft left) {
  const bool isStop = clone.end == CloneEnd::Stopped;
  return {.end = isStop ? DownloadEnd::Stopped : DownloadEnd::Failed,
          .cause = isStop ? DownloadCause::User : DownloadCause::Backup,
          .reason = "The backup before the download was not made, so nothing was downloaded.\n" + clone.reason,
          .left = left,
          .link = clone.link};
}

}  // namespace

ControllerLeft LeftByClone(const clsDumpPLC& engine, const CloneOutcome& outcome, Channel& link) {
  if (!engine.HasStoppedProgram() && outcome.link.code != LinkErrorCode::Unsure) return ControllerLeft::Untouched;
  const auto info = link.GetControllerInfo(link.UnitID());
  return info && IsRunningState(info->state) ? ControllerLeft::Untouched : ControllerLeft::Stopped;
}

std::string WhyNoBackup(Channel& link, const FoundController& controller) {
  if (link.GetDownloadEngine() == nullptr && link.LastError().code == LinkErrorCode::NotSupported) {
    return "A controller of the compact family cannot be cloned, so there can be no backup of it.";
  }
  if (controller.info.state == 'B') return "A controller in its boot loader cannot be cloned: there can be no backup.";
  if (ParsePlainOsVersion(controller.version.osVersion).value_or(0) >= kFirstOsWithClones) return "";
  return "A controller with O/S " + controller.OsText() +
         " cannot be cloned, so there can be no backup of it: clones need 4.60 or newer, in plain digits.";
}

BackupBefore::BackupBefore(const std::filesystem::path& file, const BackupContext& context)
    : mFile(file), mContext(context), mSafe(file) {}

BackupBefore::Step BackupBefore::Take(Channel& link, const FoundController& controller,
                                      const std::string& controllerText, const std::string& download) {
  const bool isWanted = IsStartWanted(mContext.questions, controllerText, controller.info.state);
  if (mContext.pacer.StopRequested()) {
    return std::unexpected(OutcomeOf(CloneOutcome::OfStop(), ControllerLeft::Untouched));
  }
  if (!isWanted) {
    return std::unexpected(DownloadOutcome{.end = DownloadEnd::Declined,
                                           .cause = DownloadCause::User,
                                           .reason = "The backup ends with starting the program, which was declined. "
                                                     "Nothing was downloaded."});
  }
  mSafe.SetComment("Before " + download + " was downloaded");
  if (Step created = Create(link, controllerText); !created) return created;
  return Compare(link);
}

BackupBefore::Step BackupBefore::Create(Channel& link, const std::string& controllerText) {
  clsDumpPLC engine(mContext.window, mContext.cloner, mContext.pacer, mContext.clock);
  mSafe.Create(engine, mContext.cloner, link, Work());
  if (mSafe.Outcome().end == CloneEnd::Done) return {};
  CloneOutcome outcome = mSafe.Outcome();
  OfferToRun(engine, link, mContext.questions, mContext.pacer, controllerText, outcome);
  return std::unexpected(OutcomeOf(outcome, LeftByClone(engine, outcome, link)));
}

// What it holds of program and settings; a running program changes the values of its operands by itself.
BackupBefore::Step BackupBefore::Compare(Channel& link) const {
  const auto codes = CodesOf(*mSafe.Info(), ComparedKinds::Program);
  if (codes.empty()) return std::unexpected(OutcomeOf(NothingToCompare(), ControllerLeft::Untouched));
  const auto comparison = VerifyClone(link, *mSafe.File(), Work(), codes);
  if (!comparison) return std::unexpected(OutcomeOf(comparison.error(), ControllerLeft::Untouched));
  if (comparison->IsSame()) return {};
  const std::string what = Utf8FromPath(mFile) + " was compared with the controller's program and settings, and " +
                           std::to_string(comparison->DifferingBytes()) +
                           " bytes differ.\nLikely cause: somebody else is changing the controller.\nWhat to do: find "
                           "out who, and begin again.";
  return std::unexpected(OutcomeOf(CloneOutcome::Failed(CloneCause::Unproven, what), ControllerLeft::Untouched));
}

CloneWork BackupBefore::Work() const {
  CloneWork work = mContext.work;
  work.isStopped = [&pacer = mContext.pacer] { return pacer.StopRequested(); };
  return work;
}

}  // namespace kv
