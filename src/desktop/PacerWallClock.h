#pragma once

#include "desktop/WallClock.h"

namespace kv {

// The machine's wall clock in its own time zone; it goes with the real pacers.
class PacerWallClock final : public WallClock {
 public:
  [[nodiscard]] std::chrono::local_time<Duration> LocalMoment() const override;
  [[nodiscard]] std::chrono::minutes UtcOffset() const override;
};

}  // namespace kv
