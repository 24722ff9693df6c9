#pragma once

#include <functional>
#include <optional>
#include <string>

#include "clone/DumpProgress.h"
#include "clone/DumpWindow.h"

namespace kv {

// Shows how far a clone is that is taken before a download, or written back after it, by the controls of the download.
class BackupView final : public DumpWindow {
 public:
  using OnProgress = std::function<void(std::uint64_t done, std::uint64_t total, const std::string& text)>;

  BackupView(const Pacer& pacer, OnProgress show) : mPacer(pacer), mShow(std::move(show)) {}

  void FillSegments(std::span<const CloneSegment> segments) override;
  void Event_SegmentIndex(int index) override;
  void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) override;
  void Event_ProgressBarValue(std::int64_t value) override;
  void Event_AddWriteCommand(std::string_view line) override;
  void Event_Refresh() override {}
  // All: what cannot be told now is which of them will be missed.
  [[nodiscard]] SegmentBoxes CheckedSegments() const override { return {}; }

 private:
  void Begin(bool isRestore);
  void Show();

  const Pacer& mPacer;
  OnProgress mShow;
  std::optional<DumpProgress> mProgress;  // of one create or restore
  bool mIsRestore = false;
  std::int64_t mMaximum = 1;
};

}  // namespace kv
