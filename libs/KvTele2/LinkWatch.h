#pragma once

#include <algorithm>

#include "base/Time.h"

namespace kv {

// When the controller that is on line is asked next: every two seconds while it answers, and with growing pauses while
// it does not, because each such question can keep the user waiting for as long as the link's time-outs last.
class LinkWatch {
 public:
  static constexpr Duration kPause = std::chrono::seconds(2);
  static constexpr Duration kLongestPause = std::chrono::seconds(30);

  [[nodiscard]] bool IsDue(Instant now) const { return now >= mNext; }
  void AskNow() { mNext = {}; }

  void Answered(Instant now) {
    mPause = kPause;
    mNext = now + mPause;
  }
  void Silent(Instant now) {
    mPause = std::min(2 * mPause, kLongestPause);
    mNext = now + mPause;
  }

 private:
  Duration mPause = kPause;
  Instant mNext{};
};

}  // namespace kv
