#include "download/ProjectDownload.h"

#include <memory>
#include <utility>

#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "desktop/StopScope.h"
#include "download/AurexProjectSender.h"
#include "download/CompactProjectSender.h"
#include "download/DownloadWork.h"
#include "download/FileFields.h"
#include "download/OsFileName.h"
#include "link/ErrorMeaning.h"
#include "link/StateText.h"
#include "link/TimeOnLink.h"

namespace kv {
namespace {

using Step = DownloadWork::Step;

constexpr const char* kLineEnd = "\r\n";

// An exchange that is unsure has an end: the controller answered afterwards, and was asked.
bool IsLinkGone(LinkErrorCode code) {
  return code != LinkErrorCode::None && code != LinkErrorCode::Stopped && code != LinkErrorCode::Unsure &&
         !IsRefusal(code);
}

struct ProjectNames {
  std::string inController;  // before the download
  std::string inFile;
};

// What the controller's own answer makes of what the traffic shows: it may have lost its power or been reset since,
// which ends a load.
ControllerLeft Refined(ControllerLeft left, char state, const std::string& project, const ProjectNames& names) {
  const bool isOld = project == names.inController;
  const bool mayBeNew = left == ControllerLeft::Programming || left == ControllerLeft::ProjectPerhaps;
  if (mayBeNew && IsRunningState(state) && project == names.inFile) {
    return isOld || project.empty() ? ControllerLeft::ProjectPerhaps : ControllerLeft::NewProject;
  }
  if (left == ControllerLeft::Programming && IsRunningState(state) && isOld) return ControllerLeft::Untouched;
  if (left == ControllerLeft::ProjectErased && isOld && !project.empty() && project != names.inFile) {
    return IsRunningState(state) ? ControllerLeft::Untouched : ControllerLeft::Stopped;  // DE takes the name away
  }
  const bool isBeforeErase = left == ControllerLeft::Stopped || left == ControllerLeft::ProjectBegun;
  if (isBeforeErase && state == 'S' && isOld) return ControllerLeft::Stopped;
  const bool mayBeLost = isBeforeErase || left == ControllerLeft::Programming;
  if (isBeforeErase && IsRunningState(state) && isOld) return ControllerLeft::Untouched;
  if (mayBeLost && state != 'L' && project.empty() && !isOld) return ControllerLeft::ProjectErased;
  return left;
}

void AskWhatIsLeft(Channel& link, Pacer& pacer, const ProjectNames& names, DownloadOutcome& outcome) {
  if (outcome.left == ControllerLeft::Untouched || IsLinkGone(outcome.link.code)) return;
  const StopScope asking(pacer);  // a stop ended the download, not this question
  const auto info = link.GetControllerInfo(link.UnitID());
  if (!info) return;
  const std::string project = FoundController{{}, *info}.ProjectText();
  outcome.reason += std::string("\nAsked afterwards, the controller says that its state is ") + StateText(info->state) +
                    " and its project \"" + project + "\".";
  outcome.left = Refined(outcome.left, info->state, project, names);
  const bool isInDoubt =
      outcome.left == ControllerLeft::ProjectErased || outcome.left == ControllerLeft::ProjectUnproven;
  if (isInDoubt && IsRunningState(info->state)) {
    outcome.reason += " It has restarted and runs on what is there: stop it if that can do harm.";
  }
}

}  // namespace

// One download, from the first question to the controller to the last.
class ProjectDownload::Run {
 public:
  Run(DownloadWork& work, const ProjectFile& file) : mWork(work), mFile(file) {
    if (const auto* compact = std::get_if<CompactProjectFile>(&file.project)) {
      mSender = std::make_unique<CompactProjectSender>(work, *compact);
    } else {
      mSender = std::make_unique<AurexProjectSender>(work, std::get<AurexProjectFile>(file.project));
    }
  }

  [[nodiscard]] Step All() {
    using Stage = Step (Run::*)();
    constexpr Stage kStages[] = {&Run::Meet,          &Run::Preview,   &Run::CheckBackup, &Run::AskToEndLoad,
                                 &Run::AskToBegin,    &Run::GetAccess, &Run::CheckFile,   &Run::EndDryRun,
                                 &Run::NameOperation, &Run::Backup,    &Run::CheckFile,   &Run::CheckNobodyLoads,
                                 &Run::Send,          &Run::Compare};
    return mWork.DoAll(*this, kStages);
  }

  [[nodiscard]] const std::optional<DownloadReview>& Review() const { return mReview; }
  [[nodiscard]] bool HasCompared() const { return mHasCompared; }
  [[nodiscard]] std::string OldProject() const { return mController.ProjectText(); }

 private:
  Step Meet() {
    mSender->Begin();
    auto found = FindController(mWork.link);
    if (!found) return mWork.FailOf(found.error());
    mController = *std::move(found);
    mControllerText = ControllerText(mController.version, mController.info, mWork.order.link);
    return mSender->CheckFits(mController);
  }

  Step Preview() {
    const ProjectSender::Traffic traffic = mSender->Amount();
    mPreview = {.controller = mControllerText,
                .now = SideOf(mController),
                .then = {.model = mFile.Model(), .os = mSender->NeededOs(), .fonts = {}, .project = mFile.Name()},
                .bytes = traffic.content,
                .about = TimeOnLink(mWork.link, traffic.bytes, traffic.exchanges),
                .clones = CloneTimeText(mWork.link, mWork.order.backup ? kPassesOfBackup : 0)};
    const std::string old = mController.ProjectText();
    if (!old.empty()) {
      mPreview.losses.push_back("The project \"" + old + "\" in the controller is replaced by \"" + mFile.Name() +
                                "\".");
    }
    mPreview.losses.emplace_back(
        mSender->Restarts() ? "The controller's program stops; at the end the controller resets and runs the new one."
                            : "The controller's program stops; the new one runs once the controller is restarted.");
    // Of the compact family: any other is refused.
    if (const std::string model = ShownText(mController.version.model); model != mFile.Model()) {
      mPreview.warnings.push_back("The project is made for a " + mFile.Model() + ", and the controller is a " + model +
                                  ".");
    }
    for (std::string& warning : mWork.WarningsOf(mController)) mPreview.warnings.push_back(std::move(warning));
    mNameWarning = NameWarning();
    if (!mNameWarning.empty()) mPreview.warnings.push_back(mNameWarning);
    if (mWork.order.onPreview) mWork.order.onPreview(mPreview);
    return {};
  }

  // Success is told by the name: what the file itself says otherwise is said before the old project is gone.
  [[nodiscard]] std::string NameWarning() const {
    const auto name = mFile.NameInController();
    const std::string head = "The file is named \"" + mFile.Name() + "\", but ";
    if (!name) return head + "gives the controller no name for its project: no name will tell that it is in there.";
    if (KeptName(*name) == KeptName(mFile.Name())) return "";
    return head + (name->empty() ? "the controller's project will have no name."
                                 : "the controller's project will be named \"" + *name + "\".");
  }

  Step CheckBackup() {
    if (mWork.order.backup == nullptr) return {};
    const std::string why = WhyNoBackup(mWork.link, mController);
    if (why.empty()) return {};
    auto refused = mWork.Refuse(why + " Nothing was downloaded.\nWhat to do: download without a backup.");
    refused.error().cause = DownloadCause::Backup;
    return refused;
  }

  // A question of its own: who wants the file downloaded need not know that somebody else is at it.
  Step AskToEndLoad() {
    if (mController.info.state != 'L') return {};
    const std::string question =
        "The controller (" + mControllerText +
        ") is loading: a restore or download was cut, or somebody else's is under way. The download would begin anew; "
        "what somebody else is loading would be lost, and his tool may take what comes out for its own. End that load?";
    if (mWork.Asks(DownloadQuestion::EndLoad, question, PromptIcon::Exclamation)) return {};
    return mWork.Decline(DownloadCause::User,
                         "A load is under way in the controller, or was cut, and was not to be ended.");
  }

  Step AskToBegin() {
    std::string text = "The project in the controller is about to be replaced." + std::string(kLineEnd) + kLineEnd +
                       "Controller: " + mControllerText + kLineEnd + "File: " + Utf8FromPath(mFile.path) + kLineEnd +
                       kLineEnd;
    for (const std::string& loss : mPreview.losses) text += loss + kLineEnd;
    if (!mNameWarning.empty()) text += mNameWarning + kLineEnd;
    text += WhatBecomesOfTheOld();
    if (mWork.Asks(DownloadQuestion::Begin, text + kLineEnd + kLineEnd + "Download it?", PromptIcon::Exclamation)) {
      return {};
    }
    return mWork.Decline(DownloadCause::User, "The download was not confirmed.");
  }

  [[nodiscard]] std::string WhatBecomesOfTheOld() const {
    if (mWork.order.backup != nullptr) {
      return "What it holds now is kept in " + Utf8FromPath(mWork.order.backup->File()) + " first.";
    }
    const bool canBeCloned = WhyNoBackup(mWork.link, mController).empty();
    return canBeCloned ? "What it holds now is lost, unless there is a clone of it."
                       : "What it holds now is lost: a controller of this kind cannot be cloned.";
  }

  Step GetAccess() { return mWork.GetAccess(); }

  // The file may have been written anew since it was shown, while questions were open and while the backup was taken.
  Step CheckFile() {
    const auto again = ReadProject(mFile.path, mFile.IsCompact());
    if (!again) return mWork.Fail(DownloadCause::File, again.error().Text() + "\nNothing was sent of it.");
    if (again->Stamp() == mFile.Stamp()) return {};
    return mWork.Fail(DownloadCause::File, Utf8FromPath(mFile.path) +
                                               " has been changed since it was chosen. Nothing was sent of it.\nWhat "
                                               "to do: choose it again, and look at what is shown.");
  }

  Step EndDryRun() {
    if (!mWork.order.isDryRun) return {};
    if (mWork.order.backup != nullptr) {
      if (Step asked = mWork.ShowCloneQuestions(mControllerText, mController.info.state); !asked) return asked;
    }
    return std::unexpected(DownloadOutcome{.end = DownloadEnd::WouldGoOn});
  }

  Step NameOperation() {
    const std::string old = mController.ProjectText();
    mWork.BeginOperation("download the project " + Utf8FromPath(mFile.path) +
                         (old.empty() ? "" : " in place of the project \"" + old + "\""));
    return {};
  }

  Step Backup() {
    BackupBefore* backup = mWork.order.backup;
    if (backup == nullptr) return {};
    mWork.AnnounceClone();
    return backup->Take(mWork.link, mController, mControllerText, GetFileName(mFile.path));
  }

  // Questions can be open for long. That another controller answers now, the link finds by itself.
  Step CheckNobodyLoads() {
    const auto now = FindController(mWork.link);
    if (!now) return mWork.FailOf(now.error());
    if (now->info.state != 'L' || mController.info.state == 'L') return {};
    return mWork.Fail(DownloadCause::Link,
                      "Somebody else has begun to load into the controller since you were asked. Nothing was "
                      "sent.\nWhat to do: wait until that is over, or find out who it is, and begin again.");
  }

  // When only the answer to the reset is missing, what the controller says afterwards decides; and so it does when it
  // has lost its power behind the programming.
  Step Send() {
    Step sent = mSender->Send();
    if (sent || sent.error().end != DownloadEnd::Failed) return sent;
    const bool isResetUnanswered =
        mWork.left == ControllerLeft::ProjectPerhaps && sent.error().cause == DownloadCause::Link;
    if (!isResetUnanswered && !RunsTheNewOne(sent.error())) return sent;
    mWork.left = ControllerLeft::ProjectPerhaps;
    return {};
  }

  // A name that it did not have before tells it.
  [[nodiscard]] bool RunsTheNewOne(const DownloadOutcome& failed) {
    const auto name = mFile.NameInController();
    const bool mayRun = mWork.left == ControllerLeft::Programming || mWork.left == ControllerLeft::ProjectWaits;
    if (!mayRun || IsLinkGone(failed.link.code) || !name || name->empty() || *name == mController.ProjectText())
      return false;
    const auto now = FindController(mWork.link);
    return now && IsRunningState(now->info.state) && now->ProjectText() == *name;
  }

  [[nodiscard]] std::expected<FoundController, DownloadOutcome> FindNow() {
    auto now = mSender->Restarts() ? FindAfterReset(mWork.link, mWork.pacer, mController.info.serialNumber)
                                   : FindController(mWork.link);
    if (now) return *std::move(now);
    return mWork.FailOf(now.error());
  }

  // What the controller says of itself now: only that makes a success of it.
  Step Compare() {
    mHasCompared = true;
    const auto find = [this] { return FindNow(); };
    auto after = mWork.WhileBusy(find);
    while (!after && mWork.GoesOnAfter(after.error())) after = mWork.WhileBusy(find);
    if (!after) return NotIdentified(after.error().link);
    mReview = DownloadReview{SideOf(mController), SideOf(*after)};
    if (mWork.order.onReview) mWork.order.onReview(*mReview);
    std::vector<std::string> differences = DifferencesFrom(
        {.model = mReview->before.model, .os = mReview->before.os, .fonts = {}, .project = mFile.NameInController()},
        mReview->after);
    const bool isNamedNew = differences.empty() && mReview->after.project != mReview->before.project;
    if (IsRunningState(after->info.state) != mSender->Restarts()) {
      differences.push_back("Its state is " + StateText(after->info.state) +
                            (mSender->Restarts() ? "; its program does not run." : "; it has restarted meanwhile."));
    }
    if (after->info.state == 'L') mWork.left = ControllerLeft::ProjectWaits;  // the reset has not come to it
    if (!mSender->Restarts() && IsRunningState(after->info.state)) {          // by itself
      mWork.left = isNamedNew ? ControllerLeft::NewProject : ControllerLeft::ProjectPerhaps;
    }
    if (!differences.empty()) return Differs(differences);
    mWork.left = mSender->Restarts() ? ControllerLeft::NewProject : ControllerLeft::ProjectWaits;
    mWork.Tell(mSender->SuccessText(), PromptIcon::Information);
    if (!mSender->Restarts()) mWork.Tell(LeftBehindText(mWork.left), PromptIcon::Information);
    return {};
  }

  Step Differs(const std::vector<std::string>& differences) {
    std::string text = "All was sent, but what the controller says now is not what the file holds.";
    for (const std::string& difference : differences) text += "\n" + difference;
    return Unproven(text);
  }

  Step NotIdentified(const LinkError& error) {
    Step failed = Unproven("All was sent, but the controller was not identified after it.\n" + error.Text());
    failed.error().link = error;
    return failed;
  }

  Step Unproven(const std::string& text) {
    mWork.Tell(text + "\n" + std::string(LeftBehindText(mWork.left)), PromptIcon::Exclamation);
    return mWork.Fail(DownloadCause::Unproven, text);
  }

  DownloadWork& mWork;
  const ProjectFile& mFile;
  std::unique_ptr<ProjectSender> mSender;
  FoundController mController;
  std::string mControllerText;
  DownloadPreview mPreview;
  std::string mNameWarning;
  bool mHasCompared = false;
  std::optional<DownloadReview> mReview;
};

void ProjectDownload::Download(Channel& link, const ProjectFile& file, const DownloadOrder& order) {
  const ScopeGuard ended([this] {
    mWindow.ResetProgress(1);
    mWindow.SetStatus("");
  });
  DownloadWork work(link, mWindow, mPrompts, mPacer, order);
  Run run(work, file);
  const Step done = run.All();
  mReview = run.Review();
  mOutcome = done ? DownloadOutcome{.left = work.left} : done.error();
  work.EndOperation(mOutcome);
  if (done || run.HasCompared()) return;
  AskWhatIsLeft(link, mPacer, {run.OldProject(), file.NameInController().value_or("")}, mOutcome);
}

const std::string& ProjectFile::Name() const {
  return std::visit([](const auto& each) -> const std::string& { return each.name; }, project);
}

std::optional<std::string> ProjectFile::NameInController() const {
  return std::visit([](const auto& each) -> std::optional<std::string> { return each.nameInController; }, project);
}

const std::string& ProjectFile::Model() const {
  return std::visit([](const auto& each) -> const std::string& { return each.model; }, project);
}

const ContentStamp& ProjectFile::Stamp() const {
  return std::visit([](const auto& each) -> const ContentStamp& { return each.stamp; }, project);
}

std::expected<ProjectFile, DownloadFileError> ReadProject(const std::filesystem::path& file, bool isCompact) {
  if (isCompact) {
    auto project = ReadCompactProject(file);
    if (!project) return std::unexpected(project.error());
    return ProjectFile{file, *std::move(project)};
  }
  auto project = ReadAurexProject(file);
  if (!project) return std::unexpected(project.error());
  return ProjectFile{file, *std::move(project)};
}

std::string NotLegalText(bool isCompact) {
  return std::string("This file cannot be downloaded. It is not a legal ") +
         (isCompact ? "T50/BRIO Ladder file." : "Cadenza file.");
}

std::string OtherModelText(const std::string& intended, const std::string& found) {
  return "The program you are downloading is intended for controller model " + intended +
         ".\r\nThe model to which you are downloading the programm is " + found + ".";
}

}  // namespace kv
