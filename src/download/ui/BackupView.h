#pragma once

#include <functional>

#include "clone/DumpProgress.h"
#include "clone/DumpWindow.h"

namespace kv {

// Shows how far the clone is that is taken before a download, by the controls of the download.
class BackupView final : public DumpWindow {
 public:
  using Show = std::function<void(std::int64_t done, std::int64_t total, const std::string& text)>;

  BackupView(const Pacer& pacer, Show show) : mProgress(pacer), mShow(std::move(show)) {}

  void FillSegments(std::span<const CloneSegment> segments) override {
    mProgress.FillSegments(segments, CheckedSegments());
  }
  void Event_SegmentIndex(int index) override { mProgress.SegmentIndex(index); }
  void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) override;
  void Event_ProgressBarValue(std::int64_t value) override;
  void Event_AddWriteCommand(std::string_view) override {}  // of a restore
  void Event_Refresh() override {}
  // All: what cannot be told now is which of them will be missed.
  [[nodiscard]] SegmentBoxes CheckedSegments() const override { return {}; }

 private:
  DumpProgress mProgress;
  Show mShow;
  std::int64_t mMaximum = 1;
};

}  // namespace kv
