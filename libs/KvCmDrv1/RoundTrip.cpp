#include "KvCmDrv1/RoundTrip.h"

#include <algorithm>

namespace kv {

void RoundTrip::Sample(Duration took) {
  took = std::max(took, Duration{});
  if (mHasSample) {
    mDeviation += (std::chrono::abs(took - mSmoothed) - mDeviation) / 4;
    mSmoothed += (took - mSmoothed) / 8;
  } else {
    mSmoothed = took;
    mDeviation = took / 2;
    mHasSample = true;
  }
  mBackOff = 1;
}

void RoundTrip::Silence() {
  constexpr int kMostBackOff = 1 << 12;  // 50 ms grows past any ceiling
  mBackOff = std::min(2 * mBackOff, kMostBackOff);
}

Duration RoundTrip::TimeOut(Duration ceiling) const {
  if (!mHasSample) return ceiling;
  const Duration wanted = std::max(mSmoothed + 4 * mDeviation, kFloor) * mBackOff;
  return std::min(wanted, ceiling);
}

}  // namespace kv
