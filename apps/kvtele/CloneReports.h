#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/TerminalLine.h"
#include "apps/kvtele/VerbOutput.h"
#include "clone/CloneInfo.h"
#include "clone/CloneOutcome.h"
#include "clone/WorkProgress.h"

namespace kv::cli {

// What a clone file holds and what is wrong with it; exit code BadFile with the whole report when something is.
[[nodiscard]] VerbResult ReportClone(Environment& environment, const std::filesystem::path& file);

// Two files, segment by segment; exit code Differs when they are not the same.
[[nodiscard]] VerbResult CompareClones(Environment& environment, const std::filesystem::path& first,
                                       const std::filesystem::path& second);
// A file and the controller, in the same way; segments with one of `codes` alone, unless it is empty.
[[nodiscard]] VerbResult CompareWithController(Environment& environment, const CommonOptions& common,
                                               const std::filesystem::path& file,
                                               const std::vector<std::string>& codes);
[[nodiscard]] VerbResult CompareWithController(Environment& environment, ConnectedController& controller,
                                               const std::filesystem::path& file,
                                               const std::vector<std::string>& codes);

// A failure of the cloner's engine; `doing` says what for.
[[nodiscard]] Failure CloneFailure(std::string doing, const CloneOutcome& outcome);

// Work of the cloner without a window: Ctrl-C ends it, and the terminal shows how far it is.
class WatchedWork {
 public:
  explicit WatchedWork(Environment& environment);
  WatchedWork(const WatchedWork&) = delete;
  WatchedWork& operator=(const WatchedWork&) = delete;

  [[nodiscard]] const CloneWork& Work() const { return mWork; }

 private:
  TerminalLine mLine;
  WorkProgress mProgress;
  CloneWork mWork;
};

}  // namespace kv::cli
