#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/ProgramPaths.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "download/CompactBootLoader.h"
#include "download/CompactController.h"
#include "download/CompactOsFile.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadWindow.h"
#include "download/DownloadWork.h"
#include "download/FoundController.h"
#include "download/OsFileName.h"
#include "link/Channel.h"

namespace kv {

// Replaces the O/S of a compact controller.
//
//   identified -> file chosen -> confirmed -> boot loader -> erased -> programmed -> reset -> identified again
//
// One instance serves one download. A controller that runs its boot loader already is taken as it is, so a download
// that failed can be repeated. Boxes have settled texts; Outcome() holds what they do not say. What the controller is
// left as when it is cut at each step: docs/downloads.md.
class clsBrioQ50OSDownloader {
 public:
  clsBrioQ50OSDownloader(DownloadWindow& window, Prompts& prompts, Pacer& pacer, ProgramPaths paths)
      : mWindow(window), mPrompts(prompts), mPacer(pacer), mPaths(std::move(paths)) {}
  clsBrioQ50OSDownloader(const clsBrioQ50OSDownloader&) = delete;
  clsBrioQ50OSDownloader& operator=(const clsBrioQ50OSDownloader&) = delete;

  // This file instead of one that the window lets the user choose from the list.
  void UseFile(std::filesystem::path file) { mGiven = std::move(file); }

  // True when the new O/S runs. A failure behind the change of the speed leaves the link at the boot loader's speed.
  [[nodiscard]] bool DownloadOS(Channel& link, const DownloadOrder& order);

  // For callers that save a controller's application by themselves; DownloadOS leaves it alone. Both tell a failure. A
  // controller is written to while its program is stopped.
  [[nodiscard]] std::optional<Bytes> ReadPlcApp(Channel& link);
  [[nodiscard]] bool prvWritePlcAppToFlash(Channel& link, const Bytes& application);

  [[nodiscard]] const DownloadOutcome& Outcome() const { return mOutcome; }
  // Nothing before the controller has answered after its reset.
  [[nodiscard]] const std::optional<DownloadReview>& Review() const { return mReview; }

 private:
  using Step = DownloadWork::Step;

  [[nodiscard]] Step RunSteps();
  [[nodiscard]] Step Identify();
  [[nodiscard]] Step ChooseFile();
  [[nodiscard]] Step CheckSuits();
  [[nodiscard]] Step CheckBuilds();
  [[nodiscard]] Step CheckFile();
  [[nodiscard]] Step ShowBothSides();
  [[nodiscard]] Step CheckBackup();
  [[nodiscard]] Step AskForNoNewerOs();
  [[nodiscard]] Step GetAccess();
  [[nodiscard]] Step AskToEndLoad();
  [[nodiscard]] Step Confirm();
  [[nodiscard]] Step EndDryRun();
  [[nodiscard]] Step NameOperation();
  [[nodiscard]] Step CheckStillSame();
  [[nodiscard]] Step EnterBootLoader();
  [[nodiscard]] Step AgreeOnSpeed();
  [[nodiscard]] Step EraseFlash();
  [[nodiscard]] Step Program();
  [[nodiscard]] Step Restart();
  [[nodiscard]] Step IdentifyAgain();

  using Identification = std::expected<CompactController, DownloadOutcome>;
  [[nodiscard]] Identification AskIdentification();
  [[nodiscard]] std::expected<FoundController, LinkError> FindAgain();
  [[nodiscard]] Step HoldAgainstFile(const FoundController& after);
  [[nodiscard]] std::vector<std::string> DifferencesOf(const FoundController& after) const;
  [[nodiscard]] ControllerLeft LeftWhen(const FoundController& after) const;
  void TellStoppedProgram(const FoundController& after);
  [[nodiscard]] Duration TimeOnBootLink() const;
  [[nodiscard]] DownloadSide FileSide() const;
  [[nodiscard]] std::string ControllerName() const;
  [[nodiscard]] std::string QuestionInBoot() const;

  void Tell(const std::string& text, PromptIcon icon);
  // Both show the box and fail; the second one because of the boot loader's step.
  [[nodiscard]] Step Refuse(DownloadCause cause, const std::string& text, PromptIcon icon, std::string reason);
  [[nodiscard]] Step ShowFailure(Step step, const std::string& text);

  DownloadWindow& mWindow;
  Prompts& mPrompts;
  Pacer& mPacer;
  ProgramPaths mPaths;
  std::optional<std::filesystem::path> mGiven;

  std::optional<DownloadWork> mWork;
  int mUsualBaud = 0;  // of the link; 0 when it has no speed
  CompactController mController;
  FoundController mFound;
  std::filesystem::path mChosen;
  std::optional<CompactOsName> mName;  // of the chosen file
  std::optional<CompactOsFile> mFile;
  std::optional<CompactBootLoader> mBoot;  // from the first command on that changes the controller

  DownloadOutcome mOutcome;
  std::optional<DownloadReview> mReview;
};

}  // namespace kv
