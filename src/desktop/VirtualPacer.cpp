#include "desktop/VirtualPacer.h"

#include <algorithm>

namespace kv {

namespace {

// By value, for the hook may replace itself.
void RunHook(VirtualPacer::Action hook) {
  if (hook) hook();
}

}  // namespace

void VirtualPacer::SetLocalTime(std::chrono::local_seconds time) {
  mLocalStart = time - mNow.time_since_epoch();
}

void VirtualPacer::Sleep(Duration span) {
  const Instant end = mNow + std::max(span, Duration::zero());
  RunActionsUntil(end);
  mNow = std::max(mNow, end);
}

void VirtualPacer::DoEvents() {
  RunActionsUntil(mNow);
  RunHook(mOnDoEvents);
}

void VirtualPacer::Turn() {
  ++mTurnCount;
  RunActionsUntil(mNow);
  RunHook(mOnTurn);
}

std::chrono::local_time<Duration> VirtualPacer::LocalMoment() const {
  return mLocalStart + mNow.time_since_epoch();
}

void VirtualPacer::RunActionsUntil(Instant moment) {
  while (!mActions.empty() && mActions.begin()->first <= moment) {
    auto due = mActions.extract(mActions.begin());  // taken out first: the action may tell others, or sleep
    mNow = std::max(mNow, due.key());
    due.mapped()();
  }
}

}  // namespace kv
