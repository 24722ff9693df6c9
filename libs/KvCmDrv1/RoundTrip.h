#pragma once

#include "base/Time.h"

namespace kv {

// How long a reply may take on this link, learnt from how long replies took: the smoothed time plus four mean
// deviations, the estimate of TCP (RFC 6298). A fixed time-out of half a second costs a factor of ten on a line that
// loses frames.
class RoundTrip {
 public:
  // Below this a busy controller or desktop would look like a lost reply.
  static constexpr Duration kFloor = std::chrono::milliseconds(50);

  // An exchange took this long, without the time on the wire. Only of exchanges that were sent once: of others nobody
  // knows which of the requests was answered.
  void Sample(Duration took);
  // A request was not answered in time: the next waits are twice as long, until there is a sample again.
  void Silence();

  // kFloor to `ceiling`; `ceiling` before the first sample.
  [[nodiscard]] Duration TimeOut(Duration ceiling) const;
  [[nodiscard]] Duration Smoothed() const { return mSmoothed; }

 private:
  Duration mSmoothed{};
  Duration mDeviation{};
  int mBackOff = 1;
  bool mHasSample = false;
};

}  // namespace kv
