#pragma once

#include <optional>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/TerminalProgress.h"
#include "apps/kvtele/TerminalPrompts.h"
#include "clone/CloneOutcome.h"
#include "clone/DumpProgress.h"
#include "clone/DumpWindow.h"
#include "clone/WorkProgress.h"

namespace kv::cli {

// The cloner's window on the terminal: one line of progress, and before each box of the engine it makes room. The one
// question that the engine asks is whether the program may be stopped: `mayStop` answers it beforehand.
class TerminalCloner final : public DumpWindow, public TerminalPrompts {
 public:
  TerminalCloner(Environment& environment, const CommonOptions& common, const SegmentBoxes& boxes,
                 std::optional<bool> mayStop);

  void FillSegments(std::span<const CloneSegment> segments) override { mProgress.FillSegments(segments, mBoxes); }
  void Event_SegmentIndex(int index) override { mProgress.SegmentIndex(index); }
  void Event_ProgressBarInit(std::int64_t, std::int64_t maximum) override { mProgress.ProgressBarInit(maximum); }
  void Event_ProgressBarValue(std::int64_t value) override;
  void Event_AddWriteCommand(std::string_view) override {}
  void Event_Refresh() override {}
  [[nodiscard]] SegmentBoxes CheckedSegments() const override { return mBoxes; }

 private:
  SegmentBoxes mBoxes;
  DumpProgress mProgress;
};

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
