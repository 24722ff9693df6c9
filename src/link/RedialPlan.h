#pragma once

#include <optional>

#include "link/ReconnectPauses.h"

namespace kv {

// When a call that was lost is dialled again by itself: with growing pauses, and only so often in a row, because each
// call costs money and keeps a line busy. A call that has stood for a while begins the count anew; one that breaks
// again and again does not.
class RedialPlan {
 public:
  static constexpr Duration kStanding = std::chrono::minutes(1);

  explicit RedialPlan(int most) : mMost(most) {}

  // A call has ended that stood for so long.
  void NoteEnd(Duration stood) {
    if (stood >= kStanding) mMade = 0;
  }
  // The pause before the next call, which is counted; nothing when it must not be made.
  [[nodiscard]] std::optional<Duration> Next() {
    if (mMade >= mMost) return std::nullopt;
    return kPausesBetweenCalls.After(++mMade);
  }

  [[nodiscard]] int Made() const { return mMade; }
  [[nodiscard]] int Most() const { return mMost; }

 private:
  int mMost;
  int mMade = 0;
};

}  // namespace kv
