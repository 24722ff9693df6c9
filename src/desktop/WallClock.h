#pragma once

#include <chrono>

#include "base/Time.h"

namespace kv {

// The time of day where the user sits, for texts and file titles. It jumps when the clock is set and by the hour in
// spring and autumn, so nothing is timed with it: spans are a Pacer's business.
class WallClock {
 public:
  virtual ~WallClock() = default;

  [[nodiscard]] virtual std::chrono::local_time<Duration> LocalMoment() const = 0;
  // How far that is ahead of UTC now.
  [[nodiscard]] virtual std::chrono::minutes UtcOffset() const = 0;
  [[nodiscard]] std::chrono::local_seconds LocalTime() const {
    return std::chrono::floor<std::chrono::seconds>(LocalMoment());
  }
};

}  // namespace kv
