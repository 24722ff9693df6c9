#include "download/ui/BackupView.h"

#include <algorithm>

namespace kv {

void BackupView::Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) {
  mMaximum = std::max<std::int64_t>(1, maximum);
  mProgress.ProgressBarInit(maximum);
  mShow(minimum, mMaximum, mProgress.Text());
}

void BackupView::Event_ProgressBarValue(std::int64_t value) {
  mProgress.ProgressBarValue(value);
  mShow(value, mMaximum, mProgress.Text());
}

}  // namespace kv
