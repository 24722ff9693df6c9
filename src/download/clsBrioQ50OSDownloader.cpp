#include "download/clsBrioQ50OSDownloader.h"

#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "download/CompactApplication.h"
#include "download/FileFields.h"
#include "download/OsFileLists.h"
#include "download/OtherSpeeds.h"
#include "link/StateText.h"
#include "link/TimeOnLink.h"

namespace kv {
namespace {

constexpr std::string_view kTitle = "O/S Downloader";  // of every box
constexpr int kProgramming = 1;                        // the one phase of which progress is told
constexpr int kOldestQ50Os = 160;

// A version of 0 is not known, and let through.
bool IsTooOld(int version) {
  return version > 0 && version <= kOldestQ50Os;
}

}  // namespace

bool clsBrioQ50OSDownloader::DownloadOS(Channel& link, const DownloadOrder& order) {
  const ScopeGuard ended([this, &link] {
    link.SetLinkBusy(false);
    mWindow.ResetProgress(1);
    mWindow.SetStatus("");
  });
  link.SetLinkBusy(true);
  mUsualBaud = order.usualBaudRate > 0 ? order.usualBaudRate : link.GetComParams().baudRate;
  mWork.emplace(link, mWindow, mPrompts, mPacer, order);
  const Step done = RunSteps();
  mOutcome = done ? DownloadOutcome{.left = mWork->left} : done.error();
  mWork->EndOperation(mOutcome);
  return done.has_value();
}

std::optional<Bytes> clsBrioQ50OSDownloader::ReadPlcApp(Channel& link) {
  const DownloadOrder order;
  DownloadWork work(link, mWindow, mPrompts, mPacer, order);
  auto application = CompactApplication(work).Read();
  if (application) return *std::move(application);
  mOutcome = application.error();
  work.Tell("Failed to read PLC memory", PromptIcon::Exclamation, kTitle);
  return std::nullopt;
}

bool clsBrioQ50OSDownloader::prvWritePlcAppToFlash(Channel& link, const Bytes& application) {
  const DownloadOrder order;
  DownloadWork work(link, mWindow, mPrompts, mPacer, order);
  work.BeginOperation("write the saved application back");
  const Step written = CompactApplication(work).Write(application);
  if (written) return true;
  mOutcome = written.error();
  work.Tell("Failed to restore PLC memory", PromptIcon::Exclamation, kTitle);
  return false;
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::RunSteps() {
  using C = clsBrioQ50OSDownloader;
  constexpr Step (C::* kSteps[])() = {&C::Identify,       &C::ChooseFile,      &C::CheckSuits,   &C::CheckBuilds,
                                      &C::CheckFile,      &C::ShowBothSides,   &C::CheckBackup,  &C::AskForNoNewerOs,
                                      &C::GetAccess,      &C::AskToEndLoad,    &C::Confirm,      &C::EndDryRun,
                                      &C::NameOperation,
                                      &C::CheckFile,  // it may have become another one while the questions were open
                                      &C::CheckStillSame, &C::EnterBootLoader, &C::AgreeOnSpeed,
                                      &C::CheckFile,  // the last moment at which the old O/S is still there
                                      &C::EraseFlash,     &C::Program,         &C::Restart,      &C::IdentifyAgain};
  return mWork->DoAll(*this, kSteps);
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::Identify() {
  Identification controller = AskIdentification();
  if (!controller && MayBeOfSpeed(controller.error().link.code)) {
    mWindow.SetStatus("Looking for the boot loader...");
    if (FindAtOtherSpeed(mWork->link)) controller = AskIdentification();
  }
  if (!controller) return std::unexpected(std::move(controller.error()));
  mController = *controller;
  auto found = FindController(mWork->link);
  if (!found) return mWork->FailOf(found.error());
  mFound = *std::move(found);
  return {};
}

clsBrioQ50OSDownloader::Identification clsBrioQ50OSDownloader::AskIdentification() {
  const auto reply = mWork->Send("ID");
  if (!reply) return std::unexpected(reply.error());
  if (const auto controller = ParseCompactIdentification(reply->Data())) return *controller;
  return mWork->Refuse("This is no controller of the compact family. Nothing was sent that changes it.");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::ChooseFile() {
  if (mGiven) {
    mChosen = *mGiven;
    if (Step there = mWork->CheckIsThere(mChosen, kTitle); !there) return there;
  } else {
    const FileList list = ListCompactOsFiles(mPaths, mController);
    const std::string missing = "O/S file(s) missing in ";
    if (list.IsEmpty()) {
      return Refuse(DownloadCause::File, missing + Utf8FromPath(list.folder / ""), PromptIcon::Information,
                    missing + Utf8FromPath(list.folder) + ".");
    }
    const auto place = mWindow.ChooseCompactOs(list);
    if (!place || *place >= list.files.size()) return mWork->Decline(DownloadCause::User, "No O/S was chosen.");
    mChosen = list.files[*place].path;
  }
  mName = CompactOsNameIn(GetFileName(mChosen));
  return {};
}

// The controller may have become another one while the list was open.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::CheckSuits() {
  const Identification controller = AskIdentification();
  if (!controller) return std::unexpected(controller.error());
  mController = *controller;
  if (mName && mName->model == mController.OsModel()) return {};
  const std::string what = mName ? "is for a " + mName->model : "has no name of an O/S for the compact family";
  return Refuse(
      DownloadCause::NotFit, "Selected O/S file does not suite the PLC you communicate with.", PromptIcon::Information,
      Utf8FromPath(mChosen) + " " + what + ", and the controller takes an O/S for a " + mController.OsModel() + ".");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::CheckBuilds() {
  const bool isOlder = IsTooOld(mName->number.version) || IsTooOld(mController.osVersion);
  if (mController.kind != CompactKind::Q50 || !isOlder) return {};
  const std::string text = "Operation supported only for O/S version higher then Build 1.60";
  return Refuse(DownloadCause::NotFit, text, PromptIcon::Information, text + ".");
}

// The first time it is read; afterwards it must still be the same one.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::CheckFile() {
  auto file = ReadCompactOsFile(mChosen);
  const bool isAnother = file && mFile && file->stamp != mFile->stamp;
  if (file && !isAnother) {
    mFile = *std::move(file);
    return {};
  }
  return Refuse(DownloadCause::File, "Invalid O/S File!", PromptIcon::Exclamation,
                isAnother ? Utf8FromPath(mChosen) + " has been changed since it was chosen." : file.error().Text());
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::ShowBothSides() {
  if (!mWork->order.onPreview) return {};
  DownloadPreview preview{.controller = ControllerName(),
                          .now = SideOf(mFound),
                          .then = FileSide(),
                          .bytes = mFile->image.size(),
                          .about = TimeOnBootLink()};
  preview.losses.emplace_back(mController.isInBoot
                                  ? "The controller restarts at the end; its project stays."
                                  : "The program stops, and the controller restarts at the end; its project stays.");
  preview.losses.emplace_back("The O/S in the controller is erased, and until the new one is whole it has none.");
  preview.warnings = mWork->WarningsOf(mFound, mFile->head.number);
  mWork->order.onPreview(preview);
  return {};
}

// The boot loaders of a Q50, Q51 and Q58 have a speed of their own.
Duration clsBrioQ50OSDownloader::TimeOnBootLink() const {
  constexpr std::uint64_t kOfBlock = 2 * kCompactOsBlock + 16 + 22;  // its digits, the rest of the frame, the reply
  const std::uint64_t blocks = mFile->image.size() / kCompactOsBlock;
  const Duration about = TimeOnLink(mWork->link, blocks * kOfBlock, blocks);
  const int baud = mWork->link.GetComParams().baudRate;
  const bool hasOwnSpeed = mController.kind == CompactKind::Q50 || mController.kind == CompactKind::Q51OrQ58;
  return hasOwnSpeed && baud > 0 ? about * baud / kFastBootBaud : about;
}

DownloadSide clsBrioQ50OSDownloader::FileSide() const {
  const OsNumber& number = mFile->head.number;
  return {
      .model = {}, .os = VersionText(number) + " (B0" + std::to_string(number.build) + ")", .fonts = {}, .project = {}};
}

std::string clsBrioQ50OSDownloader::ControllerName() const {
  return ControllerNameOf(mFound, DownloadFamily::Compact, mWork->order.link);
}

// There are no clones of controllers of this family.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::CheckBackup() {
  if (mWork->order.backup == nullptr) return {};
  auto refused = mWork->Refuse(WhyNoBackup(mWork->link, mFound) + "\nWhat to do: download without one.");
  refused.error().cause = DownloadCause::Backup;
  return refused;
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::GetAccess() {
  return mWork->GetAccess();
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::AskForNoNewerOs() {
  return mWork->AskForNoNewerOs(mFound, ControllerName(), mFile->head.number, kTitle);
}

// A question of its own: who wants an O/S downloaded need not know that somebody else is at it.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::AskToEndLoad() {
  if (mFound.info.state != 'L') return {};
  const std::string question =
      "The controller (" + ControllerName() +
      ") is loading: a restore or download was cut, or somebody else's is under way. What is being loaded would be "
      "lost, and somebody else's tool may take what comes out for its own. End that load?";
  if (mWork->Asks(DownloadQuestion::EndLoad, question, PromptIcon::Exclamation, kTitle)) return {};
  return mWork->Decline(DownloadCause::User,
                        "A load is under way in the controller, or was cut, and was not to be ended.");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::Confirm() {
  const std::string question =
      mController.isInBoot
          ? QuestionInBoot()
          : "Note that the download O/S process will cause:\r\n - Your current application to STOP running.\r\n - The "
            "PLC to RESET at the end of the download process.\r\n\r\nContinue ?";
  if (mWork->Asks(DownloadQuestion::Begin, question, PromptIcon::Exclamation, kTitle)) return {};
  return mWork->Decline(DownloadCause::User, "The download was not confirmed.");
}

// Its program stands still already, but its flash may hold a whole O/S, and a newer one.
std::string clsBrioQ50OSDownloader::QuestionInBoot() const {
  return "The O/S in the controller is about to be replaced.\r\n\r\nController: " + ControllerName() +
         "\r\nFile: " + Utf8FromPath(mChosen) + ", O/S " + *FileSide().os +
         "\r\n\r\nIts boot loader runs. Whatever O/S its flash still holds is erased, a newer one, too; at the end the "
         "controller restarts.\r\n\r\nDownload it?";
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::EndDryRun() {
  if (!mWork->order.isDryRun) return {};
  return std::unexpected(DownloadOutcome{.end = DownloadEnd::WouldGoOn});
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::NameOperation() {
  mWork->BeginOperation("download the O/S " + Utf8FromPath(mChosen) + mFound.ReplacedText());
  return {};
}

// Questions can be open for long.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::CheckStillSame() {
  const auto now = FindController(mWork->link);
  if (!now) return mWork->FailOf(now.error());
  const bool isSame = now->version == mFound.version && now->info.serialNumber == mFound.info.serialNumber;
  if (!isSame) return mWork->Fail(DownloadCause::Link, "Another controller answers now than before. Nothing was sent.");
  if (now->info.state != 'L' || mFound.info.state == 'L') return {};
  return mWork->Fail(
      DownloadCause::Link,
      "Somebody else has begun to load into the controller since you were asked. Nothing was sent.\nWhat "
      "to do: wait until that is over, or find out who it is, and begin again.");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::EnterBootLoader() {
  // One whose O/S runs is at its usual speed, wherever it was found.
  mBoot.emplace(*mWork, mController.kind, mController.isInBoot ? mUsualBaud : 0);
  if (mController.isInBoot) {
    mWork->left = ControllerLeft::BootLoaderAsFound;
    return {};
  }
  mWindow.SetStatus("Entering the boot loader...");
  return ShowFailure(mBoot->Enter(), "O/S Download Failed!");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::AgreeOnSpeed() {
  return ShowFailure(mBoot->AgreeOnSpeed(), "O/S Download Failed!");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::EraseFlash() {
  mWindow.SetStatus("Erasing the flash...");
  return ShowFailure(mBoot->EraseFlash(), "Error during FLASH erase! Operation failed.");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::Program() {
  mWindow.SetStatus("Downloading O/S...");
  const auto onBlock = [this](std::int64_t block, std::int64_t count) {
    mWindow.ProgressInfo(kProgramming, block, count);
    mWindow.AmountSent(static_cast<std::uint64_t>(block) * kCompactOsBlock, mFile->image.size());
  };
  return ShowFailure(mBoot->Write(mFile->image, onBlock), "O/S Download Failed!");
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::Restart() {
  mWindow.SetStatus("Restarting the controller...");
  return ShowFailure(mBoot->Reset(), "O/S Download Failed!");
}

// Only what the controller says then makes a success of it.
clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::IdentifyAgain() {
  const auto after = FindAgain();
  if (after) return HoldAgainstFile(*after);
  const std::string text = "The O/S was sent, but the controller was not identified after its restart.";
  Tell(text, PromptIcon::Exclamation);
  auto failed = mWork->Fail(DownloadCause::Unproven, text + "\n" + after.error().Text());
  failed.error().link = after.error();
  return failed;
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::HoldAgainstFile(const FoundController& after) {
  mReview = DownloadReview{SideOf(mFound), SideOf(after)};
  if (mWork->order.onReview) mWork->order.onReview(*mReview);
  const std::vector<std::string> differences = DifferencesOf(after);
  mWork->left = LeftWhen(after);
  if (differences.empty()) {
    Tell("O/S Download Succeded!", PromptIcon::Information);
    TellStoppedProgram(after);
    return {};
  }
  const std::string text = "The O/S was sent, but the controller is not what it was to be then.";
  const auto withAll = [&](std::string all, const char* lineEnd) {
    for (const std::string& difference : differences) all += lineEnd + difference;
    return all;
  };
  Tell(withAll(text, "\r\n"), PromptIcon::Exclamation);
  return mWork->Fail(DownloadCause::Unproven, withAll(text, "\n"));
}

std::vector<std::string> clsBrioQ50OSDownloader::DifferencesOf(const FoundController& after) const {
  std::vector<std::string> differences = DifferencesFrom(FileSide(), SideOf(after));
  if (IsBootLoader(after)) differences.insert(differences.begin(), "Its boot loader runs.");
  const VersionInfo& version = after.version;
  const auto model = ParseCompactIdentification(version.model + "|" + version.hardwareCode + "|" + version.osVersion);
  if (!model || model->OsModel() != mController.OsModel()) {
    differences.push_back("It reports itself as a " + ShownText(version.model) + ", and was a " +
                          mController.OsModel() + ".");
  }
  return differences;
}

// When all has been sent and the controller was told to restart.
ControllerLeft clsBrioQ50OSDownloader::LeftWhen(const FoundController& after) const {
  using enum ControllerLeft;
  if (IsBootLoader(after)) return BootLoaderUnsure;  // it may not have restarted at all
  if (after.OsText() == *FileSide().os) return NewOs;
  return !mController.isInBoot && after.OsText() == mFound.OsText() ? OldOs : SomeOs;
}

void clsBrioQ50OSDownloader::TellStoppedProgram(const FoundController& after) {
  if (IsRunningState(after.info.state)) return;
  Tell(std::string("The new O/S runs, but the controller's program does not (") + StateText(after.info.state) +
           "). Start it, or look for its project.",
       PromptIcon::Exclamation);
}

// The controller has its usual speed again. The link may not, when both were found at that of a boot loader: then half
// a minute at a speed at which nobody is would be wasted.
std::expected<FoundController, LinkError> clsBrioQ50OSDownloader::FindAgain() {
  Channel& link = mWork->link;
  const std::uint32_t serialNumber = mFound.info.serialNumber;
  if (mController.isInBoot && !link.GetControllerInfo(link.UnitID())) static_cast<void>(FindAtOtherSpeed(link));
  auto found = FindAfterReset(link, mPacer, serialNumber);
  if (found || !MayBeOfSpeed(found.error().code) || !FindAtOtherSpeed(link)) return found;
  return FindAfterReset(link, mPacer, serialNumber);
}

void clsBrioQ50OSDownloader::Tell(const std::string& text, PromptIcon icon) {
  mWork->Tell(text, icon, kTitle);
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::Refuse(DownloadCause cause, const std::string& text,
                                                            PromptIcon icon, std::string reason) {
  auto refused = mWork->Fail(cause, std::move(reason));
  if (!mBoot) refused.error().end = DownloadEnd::Refused;
  return mBoot ? ShowFailure(refused, text) : (Tell(text, icon), Step(refused));
}

clsBrioQ50OSDownloader::Step clsBrioQ50OSDownloader::ShowFailure(Step step, const std::string& text) {
  if (step) return step;
  mBoot->FindOutWhatIsLeft(mFound.OsText(), *FileSide().os);
  step.error().left = mWork->left;
  if (const std::string speed = mBoot->SpeedText(); !speed.empty()) step.error().reason += "\n" + speed;
  if (step.error().end != DownloadEnd::Stopped) Tell(text, PromptIcon::Exclamation);
  return step;
}

}  // namespace kv
