#pragma once

#include <algorithm>

#include "link/ReconnectPauses.h"

namespace kv {

// When the controller that is on line is asked next: every two seconds while it answers, and with growing pauses while
// it does not, because each such question can keep the user waiting for as long as the link's time-outs last.
class LinkWatch {
 public:
  [[nodiscard]] bool IsDue(Instant now) const { return now >= mNext; }
  void AskNow() { mNext = {}; }
  // Until then; none when it is due.
  [[nodiscard]] Duration PauseFrom(Instant now) const { return std::max(mNext - now, Duration::zero()); }

  void Answered(Instant now) { AskAfter(1, now); }
  void Silent(Instant now) { AskAfter(mFailures + 1, now); }

 private:
  // An answer counts as one failure: a quiet link is asked as often as one that is looked for at first.
  void AskAfter(int failures, Instant now) {
    mFailures = failures;
    mNext = now + kPausesWhileWatching.After(failures);
  }

  int mFailures = 1;
  Instant mNext{};
};

}  // namespace kv
