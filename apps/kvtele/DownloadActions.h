#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "apps/kvtele/CloneActions.h"
#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/TerminalCloner.h"
#include "apps/kvtele/TerminalDownload.h"
#include "apps/kvtele/VerbOutput.h"
#include "desktop/PacerWallClock.h"
#include "download/BackupBefore.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"

// What `download` does with a file and a controller, an action or two in each VerbDownload*.cpp.
namespace kv::cli {

// What each action that changes a controller is told.
struct DownloadFlags {
  bool isDryRun = false;
  ConsentFlags consents{};
  std::optional<std::filesystem::path> backup{};  // what the controller holds before goes there
  CreateOrder backupOrder{};
};

// The clone before a download, with all that it works with on a terminal.
class TerminalBackup {
 public:
  // Null in `Backup()` when no backup is wanted. Asks before a file is replaced.
  [[nodiscard]] static OrFailure<std::unique_ptr<TerminalBackup>> Prepare(Environment& environment,
                                                                          const CommonOptions& common,
                                                                          const DownloadFlags& flags);
  [[nodiscard]] BackupBefore* Backup() { return mBackup ? &*mBackup : nullptr; }
  // Tells what is worth knowing although the backup is good.
  void TellWarnings(Environment& environment) const;

 private:
  TerminalBackup(Environment& environment, const CommonOptions& common, const DownloadFlags& flags);

  PacerWallClock mClock;
  TerminalCloner mWindow;
  ConsolePrompts mQuestions;
  WatchedWork mWork;
  std::optional<BackupBefore> mBackup;
};

// Any of the five kinds of file, without a controller.
[[nodiscard]] VerbResult ReportDownloadFile(const std::filesystem::path& file);

// Sends a project into the controller.
[[nodiscard]] VerbResult DownloadProject(Environment& environment, const CommonOptions& common,
                                         const std::filesystem::path& file, const DownloadFlags& flags);

// Which O/S goes into the controller.
struct OsFiles {
  std::optional<std::filesystem::path> os{};     // else the newest in the folder of its O/S files that fits it
  std::optional<std::filesystem::path> fonts{};  // of an Aurex controller; else the newest
};

// Replaces the O/S of a controller of either family.
[[nodiscard]] VerbResult DownloadOs(Environment& environment, const CommonOptions& common, const OsFiles& files,
                                    const DownloadFlags& flags);
// What could be chosen for the controller that is connected.
[[nodiscard]] VerbResult ListOs(Environment& environment, const CommonOptions& common);

// A dry run that would go on, or a download that went through: both sides, in both forms. `file` names what was sent.
[[nodiscard]] VerbOutput ReportOf(const DownloadPreview& preview, const std::optional<DownloadReview>& review,
                                  bool isDryRun);
// The failure of a download; `doing` says what for. What a box of `window` has told is not told again on the terminal.
[[nodiscard]] Failure DownloadFailure(std::string doing, const DownloadOutcome& outcome,
                                      const TerminalDownload& window);
// What is shown before the first question.
[[nodiscard]] std::string PreviewText(const DownloadPreview& preview);

}  // namespace kv::cli
