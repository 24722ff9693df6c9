#pragma once

#include <chrono>
#include <ratio>

namespace kv {

// Spans of time, in microseconds: fine enough for one character on the fastest line (87 us at 115200 baud).
using Duration = std::chrono::microseconds;

// The clock that engines ask through a Pacer. It has no now() of its own, so nothing can read the machine's clock past
// the pacer, and a test can run hours in microseconds.
struct PacerClock {
  using duration = Duration;
  using rep = Duration::rep;
  using period = Duration::period;
  using time_point = std::chrono::time_point<PacerClock, Duration>;
  static constexpr bool is_steady = true;
};

// A moment, counted from an origin that only the pacer knows. Never goes backwards.
using Instant = PacerClock::time_point;

}  // namespace kv
