#pragma once

#include <optional>
#include <set>
#include <string>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/TerminalPrompts.h"
#include "download/DownloadOrder.h"
#include "download/DownloadProgress.h"
#include "download/DownloadWindow.h"

namespace kv::cli {

// The consents that have a flag of their own; --yes answers whether the download may begin.
struct ConsentFlags {
  bool otherModel = false;   // --other-model
  bool noReset = false;      // --no-reset
  bool endLoad = false;      // --end-load
  bool sameOs = false;       // --same-os
  bool olderOs = false;      // --older-os
  bool loseProject = false;  // --lose-project
  bool loseValues = false;   // --lose-values
  int retries = 0;           // --retry: how often a message that is not answered is sent again
};

// The download window on the terminal: one line of progress, and before each box of the engine it makes room. In a dry
// run every question is printed and answered with yes: nothing is done after the last one.
class TerminalDownload : public DownloadWindow, public TerminalPrompts {
 public:
  TerminalDownload(Environment& environment, const CommonOptions& common, const ConsentFlags& consents, bool isDryRun);

  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] bool IsDryRun() const { return mIsDryRun; }
  // The lines of this text that no box has shown.
  [[nodiscard]] std::string WithoutTold(const std::string& text) const;

  void SetStatus(std::string_view text) override;
  void Note(std::string_view text) override;
  void ResetProgress(std::int64_t) override {}
  void StepProgress() override {}
  void ProgressInfo(int, std::int64_t, std::int64_t) override {}
  void AmountSent(std::uint64_t done, std::uint64_t total) override;
  void Programmed(int percent) override { mLine.Show(mStatus + " " + std::to_string(percent) + " %"); }
  [[nodiscard]] AurexOsChoice ChooseAurexOs(const AurexOsLists&) override { return {}; }
  [[nodiscard]] std::optional<std::size_t> ChooseCompactOs(const FileList&) override { return std::nullopt; }
  [[nodiscard]] BiosAnswer WarnOfIncompatibleBios() override;

  // Who answers a question that has a flag of its own.
  [[nodiscard]] Prompts& PromptsOf(DownloadQuestion question);

 protected:
  Environment& mEnvironment;
  const CommonOptions& mCommon;
  bool mIsDryRun;

 private:
  [[nodiscard]] ConsolePrompts Answered(bool yes, const char* flag) const;

  ConsentFlags mConsents;
  int mRetries = 0;  // so far
  std::optional<ConsolePrompts> mQuestion;
  std::set<std::string> mTold;  // lines, by boxes that ask nothing
  std::string mStatus;
  DownloadProgress mProgress;
};

}  // namespace kv::cli
