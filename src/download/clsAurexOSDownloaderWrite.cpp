#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "base/PathText.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "desktop/StopScope.h"
#include "download/OsFileName.h"
#include "download/clsAurexOSDownloader.h"
#include "link/ControllerErrorText.h"
#include "link/ErrorMeaning.h"
#include "link/StateText.h"

// From the first command that changes the controller on.
namespace kv {
namespace {

constexpr std::int16_t kForceBit = 501;
constexpr Duration kAfterReset = std::chrono::milliseconds(4000);
constexpr int kNoSuchTypeCode = 0x03;

}  // namespace

clsAurexOSDownloader::Step clsAurexOSDownloader::TakeBackup() {
  if (mWork->order.backup == nullptr) return {};
  mWork->AnnounceClone();
  return mWork->order.backup->Take(mWork->link, mFound, ControllerName(), GetFileName(mChoice.os));
}

clsAurexOSDownloader::Step clsAurexOSDownloader::SaveMemory() {
  if (!mChange.NeedsMemorySaved()) return {};
  mWork->AnnounceClone();
  mWindow.SetStatus("Saving the controller's memory ...");
  Step saved = mMemory.Save(mWork->link, mFound, ControllerName());
  if (saved) {
    mWindow.Note("What the controller's memory holds is saved in " + Utf8FromPath(mMemory.File()) +
                 " until it has been written back.");
  }
  return saved;
}

// Clones take minutes, and questions as long as the user wants.
clsAurexOSDownloader::Step clsAurexOSDownloader::CheckFilesAreTheSame() {
  const auto os = ReadAurexOsFile(mChoice.os);
  const auto fonts = ReadFontsFile(mChoice.fonts);
  const bool isSame = os && fonts && os->stamp == mOs->stamp && fonts->stamp == mFonts->stamp;
  if (isSame) return {};
  return Refuse(DownloadCause::File,
                "The files are not the ones any more that were looked through before. Begin the download again.");
}

// It is the driver that sees to it that no other controller answers.
clsAurexOSDownloader::Step clsAurexOSDownloader::CheckControllerIsTheSame() {
  const auto now = FindController(mWork->link);
  if (!now) return FailLink("The controller could not be identified again.", now.error());
  const bool isSame = now->version == mFound.version && now->info.serialNumber == mFound.info.serialNumber;
  if (isSame && (now->info.state != 'L' || mFound.info.state == 'L')) return {};
  return mWork->Fail(DownloadCause::Link,
                     "Somebody else has done something to the controller since you were asked: it reports " +
                         ControllerText(now->version, now->info, mWork->order.link) + ", O/S " + now->OsText() +
                         ", state " + StateText(now->info.state) + ". Nothing was sent.");
}

clsAurexOSDownloader::Step clsAurexOSDownloader::TellUncompressed() {
  for (const OsTransferTopic& topic : mTransfer.topics) {
    if (!topic.compressionFailed) continue;
    mWork->Tell("Unable to compress data for " + topic.name, PromptIcon::Critical, "Warning");
  }
  return {};
}

// A controller that has no such bit has no forces either.
clsAurexOSDownloader::Step clsAurexOSDownloader::ReadForceBit() {
  if (mChange.isInBoot) return {};
  const auto bit = mWork->link.ReadSB(kForceBit, 1, mWork->link.UnitID());
  if (bit) {
    mIsForced = !bit->empty() && bit->front() != 0;
    return {};
  }
  const LinkError& error = mWork->link.LastError();
  if (error.controllerCode == kPastEndCode || error.controllerCode == kNoSuchTypeCode) return {};
  return FailLink("System bit 501 could not be read.", error);
}

clsAurexOSDownloader::Step clsAurexOSDownloader::EnterBootMode() {
  if (mChange.isInBoot) {
    mWork->left = ControllerLeft::BootLoaderAsFound;
    return {};
  }
  mWindow.SetStatus("Entering the boot loader ...");
  const auto reply = mWork->WhileBusy([this] { return mWork->Send("CCB"); });
  const LinkErrorCode code = reply ? LinkErrorCode::None : reply.error().link.code;
  if (IsRefusal(code)) return Behind("The controller does not go into its boot loader.", reply.error());
  mWork->left = ControllerLeft::BootLoaderPerhaps;
  if (code == LinkErrorCode::Stopped && !mWork->GoesOnAfter(reply.error())) {
    return Behind("Going into the boot loader was stopped.", reply.error());
  }
  static_cast<void>(mWork->link.CommPort());  // it is the same line for the boot loader
  // When only the answer was lost, who answers now shows it.
  const auto version = mWork->link.GetVersionInfo(mWork->link.UnitID());
  if (!version) return FailLink("The boot loader could not be identified.", mWork->link.LastError());
  if (version->model != kAurexBootText) {
    if (!reply) return Behind("The controller was told to go into its boot loader.", reply.error());
    return mWork->Fail(DownloadCause::Reply, "The controller did not go into its boot loader.");
  }
  if (reply && !reply->text.starts_with("CC")) {
    return mWork->Fail(DownloadCause::Reply, "The controller's answer to CCB is none.");
  }
  mWork->left = ControllerLeft::BootLoader;
  return {};
}

clsAurexOSDownloader::Step clsAurexOSDownloader::WriteFiles() {
  DownloadEngine* engine = mWork->link.GetDownloadEngine();
  if (engine == nullptr) return FailLink("The boot loader takes no block messages.", mWork->link.LastError());
  AurexOsSender sender(*engine, *mWork);
  Step done = sender.Prepare();
  if (done && !mWork->link.GetVersionInfo(mWork->link.UnitID())) {
    done = FailLink("The boot loader could not be identified.", mWork->link.LastError());
  }
  if (done) done = sender.Send(mTransfer);
  if (done) done = sender.Program();
  mIsProvenProgrammed = sender.IsProven();
  return done;
}

clsAurexOSDownloader::Step clsAurexOSDownloader::Reset() {
  mWindow.SetStatus("Restarting the controller ...");
  mWork->Tell("The controller is about to restart", PromptIcon::Information, "Reset PLC");
  const Step told = mWork->WhileBusy([this]() -> Step {
    if (mWork->link.ResetController(mWork->link.UnitID())) return {};
    return mWork->FailOf(mWork->link.LastError());
  });
  if (!told && IsRefusal(told.error().link.code)) return Behind("The controller does not restart.", told.error());
  mWork->left = ControllerLeft::OsPerhaps;
  // Its answer may have been lost: who answers now shows it.
  if (Step found = FindAgain(); !found) return found;
  if (!told && IsBootLoader(mAfter)) return Behind("The controller did not restart.", told.error());
  mReview = DownloadReview{SideOf(mFound), SideOf(mAfter)};
  return {};
}

// Asks until it answers; a stop ends that, when the user means it.
clsAurexOSDownloader::Step clsAurexOSDownloader::FindAgain() {
  while (true) {
    auto after = FindAfterReset(mWork->link, mContext.pacer, mFound.info.serialNumber);
    if (after) {
      mAfter = *std::move(after);
      return {};
    }
    Step failed = FailLink("The controller has not come back after its restart.", after.error());
    if (!mWork->GoesOnAfter(failed.error())) return failed;
  }
}

clsAurexOSDownloader::Step clsAurexOSDownloader::CheckNewOs() {
  const auto fail = [this](const std::string& found, const std::string& expected) {
    return mWork->Fail(DownloadCause::Unproven, "All was sent and answered well, but after the restart " + found +
                                                    " instead of " + expected + ".");
  };
  if (IsBootLoader(mAfter)) return fail("its boot loader runs", NumberText(mOs->number));
  mWork->left = LeftWhen(mWork->left, mAfter);
  if (OsNumberOf(mAfter.version) != mOs->number) {
    return fail("it reports the O/S " + mAfter.OsText(), NumberText(mOs->number));
  }
  if (!IsProven()) {
    return mWork->Fail(DownloadCause::Unproven,
                       "The controller reports the O/S of the file, but may have had that one before, and its boot "
                       "loader has never said that it has programmed one.");
  }
  // Who knew only the boot loader knows the hardware, which some models have in common.
  const std::string model = AurexOsModelText(mAfter.version.model, mAfter.version.hardwareCode);
  const bool isSameModel = mChange.isInBoot ? ExpectedAurexOsType(model) == ExpectedAurexOsType(mModel)
                                            : mAfter.version.model == mFound.version.model;
  // A controller does not report its fonts.
  mReview->after.fonts = FontsText(*mFonts) + ", as sent";
  if (mWork->order.onReview) mWork->order.onReview(*mReview);
  if (isSameModel) return {};
  return fail("it reports itself as a " + mAfter.version.model, mChange.isInBoot ? mModel : mFound.version.model);
}

// What fails here must not keep the memory from being written back.
clsAurexOSDownloader::Step clsAurexOSDownloader::RestoreForceBit() {
  if (!mIsForced) return {};
  mContext.pacer.Sleep(kAfterReset);
  const StopScope notToBeStopped(mContext.pacer);  // two exchanges
  mForceFailure = SetForceBit();
  if (mForceFailure.code != LinkErrorCode::None) return {};
  mWork->Tell("SB 501 is ON, Inputs forces might be active.", PromptIcon::Exclamation, "Warning");
  return {};
}

// Code None when the bit is set now.
LinkError clsAurexOSDownloader::SetForceBit() {
  constexpr std::uint8_t kOn[] = {1};
  if (!mWork->link.WriteSB(kForceBit, kOn, mWork->link.UnitID())) return mWork->link.LastError();
  const auto bit = mWork->link.ReadSB(kForceBit, 1, mWork->link.UnitID());
  if (!bit) return mWork->link.LastError();
  if (!bit->empty() && bit->front() == 1) return {};
  LinkError error;
  error.code = LinkErrorCode::Refused;
  error.doing = "setting system bit 501";
  error.happened = "it reads 0 again";
  return error;
}

// Begun anew after a stop that the user did not mean: it erases what a part of it has written.
clsAurexOSDownloader::Step clsAurexOSDownloader::RestoreMemory() {
  if (mMemory.IsEmpty()) return {};
  mWindow.SetStatus("Writing the controller's memory back ...");
  mWork->left = ControllerLeft::NewOsLoading;
  const std::filesystem::path file = mMemory.File();
  while (true) {
    Step done = mMemory.Restore(mWork->link, mAfter);
    if (done) break;
    mWork->left = done.error().left;
    if (done.error().end != DownloadEnd::Stopped || !mWork->GoesOnAfter(done.error())) return done;
  }
  mWork->left = ControllerLeft::NewOs;
  mIsMemoryBack = true;
  if (!mMemory.IsEmpty()) return {};  // its file stays, which has been told
  std::error_code error;
  mWindow.Note("The controller's memory has been written back; its file " +
               std::string(std::filesystem::exists(file, error) || error ? "could not be deleted: " : "was deleted: ") +
               Utf8FromPath(file));
  return {};
}

clsAurexOSDownloader::Step clsAurexOSDownloader::TellForceFailure() {
  if (mForceFailure.code == LinkErrorCode::None) return {};
  return FailLink(
      "The new O/S runs. System bit 501 was set before and could not be set again: forces of inputs are off.",
      mForceFailure);
}

// The O/S is in, but the machine stands still. Memory that has been written back runs: that was proven there.
clsAurexOSDownloader::Step clsAurexOSDownloader::TellStoppedProgram() {
  if (mChange.NeedsMemorySaved() || IsRunningState(mAfter.info.state)) return {};
  mWork->Tell(std::string("The new O/S runs, but the controller's program does not (") + StateText(mAfter.info.state) +
                  "). Start it, or look for its project.",
              PromptIcon::Exclamation, "Telepanel");
  return {};
}

// What is known by what was sent may be wrong since: the power fails, others send something. So the controller itself
// is asked, as far as it still answers.
void clsAurexOSDownloader::AskWhatIsLeft() {
  using enum ControllerLeft;
  constexpr ControllerLeft kOpen[] = {BootLoader,    BootLoaderAsFound, BootLoaderPerhaps,
                                      OsProgramming, OsWaits,           OsPerhaps};
  if (std::ranges::find(kOpen, mOutcome.left) == std::end(kOpen)) return;
  const StopScope asking(mContext.pacer);  // a stop ended the download, not this question
  const auto found = FindController(mWork->link);
  if (!found) return;
  if (IsBootLoader(*found)) return TellFoundBoot();
  mOutcome.left = LeftWhen(mOutcome.left, *found);
  mOutcome.reason += "\nAsked afterwards, the controller runs and reports the O/S " + found->OsText() + ".";
}

// By a number that it had not before, or by its boot loader.
bool clsAurexOSDownloader::IsProven() const {
  return mIsProvenProgrammed || (!mChange.isInBoot && OsNumberOf(mFound.version) != mOs->number);
}

ControllerLeft clsAurexOSDownloader::LeftWhen(ControllerLeft left, const FoundController& runs) const {
  using enum ControllerLeft;
  const bool isTold = left == OsWaits || left == OsPerhaps;
  const bool isNew = OsNumberOf(runs.version) == mOs->number;
  if (isTold && isNew && IsProven()) return NewOs;
  const bool mayBeNew = isTold || left == OsProgramming;
  if (mChange.isInBoot) return mayBeNew ? SomeOs : OldOs;
  const bool isOld = runs.OsText() == mFound.OsText();
  if (mayBeNew && isNew) return isOld ? SomeOs : NewOs;
  return isOld ? OldOs : SomeOs;
}

// It holds nothing any more when its power has failed, in the middle of the programming or after it.
void clsAurexOSDownloader::TellFoundBoot() {
  using enum ControllerLeft;
  if (mOutcome.left == BootLoaderPerhaps) mOutcome.left = BootLoader;
  if (mOutcome.left != OsProgramming && mOutcome.left != OsWaits && mOutcome.left != OsPerhaps) return;
  const auto status = AurexOsSender::AskStatus(mWork->link);
  if (!status) return;
  if (!status->isIdle) {
    mOutcome.left = OsProgramming;
  } else if (!status->hasTopic) {
    mOutcome.left = BootLoaderErased;
  } else if (status->isProgrammed) {
    mOutcome.left = OsWaits;
  } else {
    mOutcome.left = mChange.isInBoot ? BootLoaderAsFound : BootLoader;
  }
}

}  // namespace kv
