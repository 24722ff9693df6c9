#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "base/ProgramPaths.h"
#include "download/AurexOsFile.h"
#include "download/AurexOsRules.h"
#include "download/AurexOsSender.h"
#include "download/AurexOsTransfer.h"
#include "download/BackupBefore.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadPreview.h"
#include "download/DownloadWindow.h"
#include "download/DownloadWork.h"
#include "download/FontsFile.h"
#include "download/FoundController.h"
#include "download/SavedMemory.h"
#include "link/Channel.h"

namespace kv {

// Replaces O/S and system fonts of an Aurex controller without a colour screen.
//
//   identified -> files chosen -> confirmed -> (backup) -> (memory saved) -> boot mode -> sent -> programmed -> reset
//     -> identified again -> (bit 501 restored) -> (memory restored)
//
// One instance serves one download. It tells the user in boxes of settled text; Outcome() says what these do not. Up to
// the boot mode nothing in the controller is changed, but that the clones stop its program and start it; after it the
// controller stays in its boot loader, where the download can be repeated. What it is left as when it is cut at each
// step: docs/downloads.md.
class clsAurexOSDownloader {
 public:
  // Boxes go to `context.questions`, and so do questions for which the order names nobody else. The rest of it is for
  // the memory that is saved.
  clsAurexOSDownloader(DownloadWindow& window, const BackupContext& context, const ProgramPaths& paths)
      : mWindow(window), mContext(context), mPaths(paths), mMemory(context, paths) {}
  clsAurexOSDownloader(const clsAurexOSDownloader&) = delete;
  clsAurexOSDownloader& operator=(const clsAurexOSDownloader&) = delete;

  // True when all of it has been done, and the controller then reports what the file holds.
  [[nodiscard]] bool DownloadOS(Channel& link, const DownloadOrder& order);

  [[nodiscard]] const DownloadOutcome& Outcome() const { return mOutcome; }
  // Nothing before the controller has answered after its reset.
  [[nodiscard]] const std::optional<DownloadReview>& Review() const { return mReview; }

 private:
  using Step = std::expected<void, DownloadOutcome>;

  [[nodiscard]] Step RunSteps();
  // Nothing of the controller is changed in these.
  [[nodiscard]] Step Identify();
  [[nodiscard]] Step CheckFamily();
  [[nodiscard]] Step ChooseFiles();
  [[nodiscard]] Step CheckType();
  [[nodiscard]] Step ReadFiles();
  [[nodiscard]] Step ShowPreview();
  [[nodiscard]] Step CheckBackup();
  [[nodiscard]] Step AskForNoNewerOs();
  [[nodiscard]] Step AskToEndLoad();
  [[nodiscard]] Step Confirm();
  [[nodiscard]] Step CheckFontsVersion();
  [[nodiscard]] Step WarnOfBootLoader();
  [[nodiscard]] Step WarnOfDataTypes();
  [[nodiscard]] Step CheckFonts();
  [[nodiscard]] Step GetAccess() { return mWork->GetAccess(); }
  [[nodiscard]] Step EndDryRun();
  [[nodiscard]] Step NameOperation();
  // From here on its program may be stopped and started.
  [[nodiscard]] Step TakeBackup();
  [[nodiscard]] Step SaveMemory();
  [[nodiscard]] Step CheckFilesAreTheSame();
  [[nodiscard]] Step CheckControllerIsTheSame();
  [[nodiscard]] Step TellUncompressed();
  [[nodiscard]] Step ReadForceBit();
  // And from here on it is in its boot loader.
  [[nodiscard]] Step EnterBootMode();
  [[nodiscard]] Step WriteFiles();
  [[nodiscard]] Step Reset();
  [[nodiscard]] Step CheckNewOs();
  [[nodiscard]] Step RestoreForceBit();
  [[nodiscard]] Step RestoreMemory();
  [[nodiscard]] Step TellForceFailure();
  [[nodiscard]] Step TellStoppedProgram();

  [[nodiscard]] Step FindAgain();
  void AskWhatIsLeft();
  // A controller that was left as `left` and now runs.
  [[nodiscard]] ControllerLeft LeftWhen(ControllerLeft left, const FoundController& runs) const;
  // Whether the O/S of the file, when the controller reports it, is the one that was sent.
  [[nodiscard]] bool IsProven() const;
  void TellFoundBoot();
  [[nodiscard]] DownloadPreview Preview() const;
  // Why the fonts cannot go with the O/S, a sentence; empty when they can.
  [[nodiscard]] std::string WhyNoFonts() const;
  [[nodiscard]] std::string DoneText() const;
  [[nodiscard]] std::string ControllerName() const;
  [[nodiscard]] Step Refuse(DownloadCause cause, const std::string& reason) const;
  [[nodiscard]] Step Decline() const;
  [[nodiscard]] Step FailLink(const std::string& what, const LinkError& error) const;
  // The same failure, with `what` before its reason.
  [[nodiscard]] Step Behind(const std::string& what, DownloadOutcome failure) const;
  [[nodiscard]] LinkError SetForceBit();

  DownloadWindow& mWindow;
  BackupContext mContext;
  const ProgramPaths& mPaths;
  SavedMemory mMemory;

  std::optional<DownloadWork> mWork;  // while DownloadOS runs
  FoundController mFound;
  std::string mModel;  // that decides on the files: its first 7 characters, in the boot loader by its hardware
  AurexOsChoice mChoice;
  AurexOsChange mChange;
  std::optional<AurexOsFile> mOs;
  std::expected<FontsFile, DownloadFileError> mFonts;
  OsTransfer mTransfer;
  bool mIsMemoryBack = false;        // it was saved, and has been written back
  bool mIsForced = false;            // system bit 501 was set
  bool mIsProvenProgrammed = false;  // the boot loader has said so
  LinkError mForceFailure;
  FoundController mAfter;

  DownloadOutcome mOutcome;
  std::optional<DownloadReview> mReview;
};

}  // namespace kv
