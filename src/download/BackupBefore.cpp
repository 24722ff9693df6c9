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

constexpr const char* kNoBackup = "The backup before the download was not made, so nothing was downloaded.";
constexpr int kMostPasswords = 3;  // as often as a person would try

DownloadOutcome OutcomeOf(const CloneOutcome& clone, ControllerLeft left, const char* what = kNoBackup) {
  const bool isCancelled = clone.cause == CloneCause::NoPassword;
  const bool isStop = clone.end == CloneEnd::Stopped;
  return {.end = isCancelled ? DownloadEnd::Declined
                 : isStop    ? DownloadEnd::Stopped
                             : DownloadEnd::Failed,
          .cause = isStop || isCancelled ? DownloadCause::User : DownloadCause::Backup,
          .reason = std::string(what) + "\n" + clone.reason,
          .left = left,
          .link = clone.link};
}

bool WantsToEnterItAgain(Prompts& prompts, const std::string& controller, const std::string& reason) {
  return prompts.Show({.text = "The controller (" + controller +
                               ") was not cloned, and nothing was changed in it.\r\n" + reason +
                               "\r\n\r\nEnter the password again?",
                       .title = std::string(kClonerCaption),
                       .icon = PromptIcon::Exclamation,
                       .buttons = PromptButtons::YesNo}) == PromptAnswer::Yes;
}

// Whether a create that failed has left a program standing that ran before. The controller is asked; where it does not
// answer, and the command that stops the program may have been executed, it counts as stopped.
ControllerLeft LeftByClone(const clsDumpPLC& engine, const CloneOutcome& outcome, Channel& link) {
  if (!engine.HasStoppedProgram() && outcome.link.code != LinkErrorCode::Unsure) return ControllerLeft::Untouched;
  const auto info = link.GetControllerInfo(link.UnitID());
  return info && IsRunningState(info->state) ? ControllerLeft::Untouched : ControllerLeft::Stopped;
}

}  // namespace

std::expected<CloneManifest, DownloadOutcome> CreateBefore(SafeCreate& safe, Channel& link, const CloneBefore& order) {
  const BackupContext& context = order.context;
  for (int entered = 1;; ++entered) {
    clsDumpPLC engine(order.window, context.cloner, context.pacer, context.clock);
    engine.NameController(order.controllerText);
    if (order.prepare) order.prepare(engine);
    safe.Create(engine, context.cloner, link, order.work);
    if (safe.Outcome().end == CloneEnd::Done) return engine.Manifest();
    CloneOutcome outcome = safe.Outcome();
    if (outcome.cause == CloneCause::Password && entered < kMostPasswords && !context.pacer.StopRequested() &&
        WantsToEnterItAgain(context.questions, order.controllerText, outcome.reason)) {
      continue;
    }
    OfferToRun(engine, link, context.questions, context.pacer, order.controllerText, outcome);
    return std::unexpected(OutcomeOf(outcome, LeftByClone(engine, outcome, link), order.what));
  }
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
  const CloneBefore order{mContext.window, mContext, controllerText, kNoBackup, {}, Work()};
  const auto made = CreateBefore(mSafe, link, order);
  return made ? Step() : std::unexpected(made.error());
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
