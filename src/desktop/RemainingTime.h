#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "desktop/Pacer.h"

namespace kv {

// "12 s", "3 min 20 s", "1 h 5 min".
[[nodiscard]] std::string SpanText(std::chrono::seconds span);

// The same as roughly as an age is told: "12 s", "3 min", "5 h", "2 d".
[[nodiscard]] std::string AgeText(Duration age);

// How long work will still take, judged by the pace that it has had since it was begun.
class RemainingTime {
 public:
  explicit RemainingTime(const Pacer& pacer) : mPacer(pacer) {}

  // The work begins now, or begins anew.
  void Begin() { mStart = mPacer.Now(); }

  // So much of the time since then says nothing of the pace.
  void Exclude(Duration span) {
    if (mStart) *mStart += span;
  }

  // "about 12 s left", "about 3 min 20 s left", "about 1 h 5 min left". Empty in the first second, when the pace means
  // nothing, and when nothing or all is done.
  [[nodiscard]] std::string Text(std::uint64_t done, std::uint64_t total) const;

 private:
  const Pacer& mPacer;
  std::optional<Instant> mStart;
};

}  // namespace kv
