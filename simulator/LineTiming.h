#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "base/Time.h"
#include "simulator/FaultRandom.h"

namespace sim {

// How fast bytes follow one another: `micros` microseconds for `bytes` bytes, kept as a fraction because one character
// at 115200 baud takes no whole number of microseconds. 0 microseconds: all at once.
struct Pace {
  std::int64_t micros = 0;
  std::int64_t bytes = 1;

  [[nodiscard]] static Pace AtBaud(int baud);  // 8N1: ten bits a byte; 0: all at once
  [[nodiscard]] static Pace WithGap(kv::Duration gap) { return {gap.count(), 1}; }

  [[nodiscard]] bool IsAtOnce() const { return micros == 0; }
  [[nodiscard]] kv::Duration TimeFor(std::size_t count) const;         // rounded up
  [[nodiscard]] std::size_t CountWithin(kv::Duration duration) const;  // not for all at once
};

[[nodiscard]] Pace Slower(Pace one, Pace other);

// One direction of a line: bytes go in when they are sent and come out, one by one, when they have crossed it.
class Wire {
 public:
  struct Arrival {
    std::string bytes;
    kv::Instant at;
  };

  // Puts bytes on the wire behind what is on it already, and not before `from`.
  void Send(std::string bytes, kv::Instant from, Pace pace);
  // Puts random bytes on the wire that never end. What is sent behind them never arrives.
  void Jam(std::uint64_t seed, kv::Instant from, Pace pace);
  void Clear();

  // Takes everything that has arrived until `now`.
  [[nodiscard]] std::string Take(kv::Instant now);
  // Takes what arrived first and at one moment; nothing when nothing has arrived until `now`.
  [[nodiscard]] std::optional<Arrival> TakeFirst(kv::Instant now);

  [[nodiscard]] std::optional<kv::Instant> NextArrival() const;
  // When the last byte that was sent arrives.
  [[nodiscard]] kv::Instant End() const { return mEnd; }

 private:
  struct Stretch {
    std::string bytes;
    kv::Instant start;
    Pace pace;
    std::size_t taken = 0;
  };
  struct Noise {
    FaultRandom random;
    kv::Instant start;
    Pace pace;
    std::size_t taken = 0;
  };

  [[nodiscard]] std::string TakeNoise(kv::Instant now);

  std::deque<Stretch> mStretches;
  std::optional<Noise> mNoise;
  kv::Instant mEnd;
};

}  // namespace sim
