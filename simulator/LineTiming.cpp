#include "simulator/LineTiming.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

constexpr std::int64_t kMicrosForTenBits = 10'000'000;  // at 1 baud

// What a receiver keeps when nobody fetches it for long; the rest is lost, as in any input buffer.
constexpr std::size_t kMostNoise = 65536;

}  // namespace

Pace Pace::AtBaud(int baud) {
  return baud > 0 ? Pace{kMicrosForTenBits, baud} : Pace{};
}

kv::Duration Pace::TimeFor(std::size_t count) const {
  return kv::Duration((static_cast<std::int64_t>(count) * micros + bytes - 1) / bytes);
}

std::size_t Pace::CountWithin(kv::Duration duration) const {
  return static_cast<std::size_t>(std::max<std::int64_t>(duration.count(), 0) * bytes / micros);
}

Pace Slower(Pace one, Pace other) {
  return one.micros * other.bytes >= other.micros * one.bytes ? one : other;
}

void Wire::Send(std::string bytes, kv::Instant from, Pace pace) {
  if (bytes.empty() || mNoise) return;
  const kv::Instant start = std::max(from, mEnd);
  mEnd = start + pace.TimeFor(bytes.size());
  mStretches.push_back({std::move(bytes), start, pace});
}

void Wire::Jam(std::uint64_t seed, kv::Instant from, Pace pace) {
  if (!mNoise) mNoise = Noise{FaultRandom(seed), std::max(from, mEnd), pace};
}

void Wire::Clear() {
  *this = Wire();
}

std::string Wire::Take(kv::Instant now) {
  std::string taken;
  while (!mStretches.empty() && mStretches.front().start <= now) {
    Stretch& first = mStretches.front();
    std::size_t arrived = first.bytes.size();
    if (!first.pace.IsAtOnce()) arrived = std::min(arrived, first.pace.CountWithin(now - first.start));
    const bool isWhole = first.taken == 0 && arrived == first.bytes.size();
    if (isWhole && taken.empty()) {
      taken = std::move(first.bytes);
    } else {
      taken.append(first.bytes, first.taken, arrived - first.taken);
      first.taken = arrived;
      if (arrived < first.bytes.size()) return taken;
    }
    mStretches.pop_front();
  }
  if (mNoise) taken += TakeNoise(now);
  return taken;
}

std::string Wire::TakeNoise(kv::Instant now) {
  const std::size_t arrived = mNoise->pace.CountWithin(now - mNoise->start);
  std::string bytes(std::min(arrived - mNoise->taken, kMostNoise), '\0');
  for (char& byte : bytes) byte = mNoise->random.Byte();
  mNoise->taken = arrived;
  return bytes;
}

std::optional<Wire::Arrival> Wire::TakeFirst(kv::Instant now) {
  if (mStretches.empty()) return std::nullopt;
  Stretch& first = mStretches.front();
  const kv::Instant at = first.start + first.pace.TimeFor(first.taken + 1);
  if (at > now) return std::nullopt;
  Arrival arrival{first.pace.IsAtOnce() ? std::move(first.bytes) : first.bytes.substr(first.taken, 1), at};
  if (first.pace.IsAtOnce() || ++first.taken == first.bytes.size()) mStretches.pop_front();
  return arrival;
}

std::optional<kv::Instant> Wire::NextArrival() const {
  if (!mStretches.empty())
    return mStretches.front().start + mStretches.front().pace.TimeFor(mStretches.front().taken + 1);
  if (mNoise) return mNoise->start + mNoise->pace.TimeFor(mNoise->taken + 1);
  return std::nullopt;
}

}  // namespace sim
