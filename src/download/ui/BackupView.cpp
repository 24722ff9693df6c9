#include "download/ui/BackupView.h"

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

void BackupView::Event_ProgressBarInit(std::int64_t, std::int64_t maximum) {
  mMaximum = maximum;
  if (!mProgress) return;
  mProgress->ProgressBarInit(maximum);
  Show();
}

void BackupView::Event_ProgressBarValue(std::int64_t value) {
  if (!mProgress) return;
  mProgress->ProgressBarValue(value);
  Show();
}

// The engine counts each segment for itself; the bar and the amount beside it are those of all.
void BackupView::Show() {
  const DumpProgress::Amount amount = mProgress->InAll();
  mShow(amount.done, amount.total, mProgress->Text());
}

// Only a restore has lines.
void BackupView::Event_AddWriteCommand(std::string_view) {
  if (mProgress && mIsRestore) return;
  Begin(true);
  mProgress->ProgressBarInit(mMaximum);
}

}  // namespace kv
