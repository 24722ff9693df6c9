#include "download/ui/BackupView.h"

#include <algorithm>

namespace kv {

void BackupView::Begin(bool isRestore) {
  mProgress.emplace(mPacer);
  mIsRestore = isRestore;
}

// Every create begins with it.
void BackupView::FillSegments(std::span<const CloneSegment> segments) {
  Begin(false);
  mProgress->FillSegments(segments, CheckedSegments());
}

void BackupView::Event_SegmentIndex(int index) {
  if (mProgress) mProgress->SegmentIndex(index);
}

void BackupView::Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) {
  mMaximum = std::max<std::int64_t>(1, maximum);
  if (mProgress) mProgress->ProgressBarInit(maximum);
  mShow(minimum, mMaximum, mProgress && !mIsRestore ? mProgress->Text() : "");
}

void BackupView::Event_ProgressBarValue(std::int64_t value) {
  if (mProgress) mProgress->ProgressBarValue(value);
  mShow(value, mMaximum, mProgress ? mProgress->Text() : "");
}

// Only a restore has lines.
void BackupView::Event_AddWriteCommand(std::string_view) {
  if (mProgress && mIsRestore) return;
  Begin(true);
  mProgress->ProgressBarInit(mMaximum);
}

}  // namespace kv
