#pragma once

#include <algorithm>

#include "base/Time.h"

namespace kv {

// The pauses before a link that was lost is tried again: the first, then twice as long after each further failure, up
// to the longest.
struct ReconnectPauses {
  Duration first;
  Duration longest;

  // None before the first failure.
  [[nodiscard]] constexpr Duration After(int failures) const {
    if (failures <= 0) return {};
    Duration pause = first;
    for (int i = 1; i < failures && pause < longest; ++i) pause *= 2;
    return std::min(pause, longest);
  }
};

// Within one request, by the driver: a controller that restarts needs a moment, a network that is down minutes.
inline constexpr ReconnectPauses kPausesInRequest{std::chrono::milliseconds(100), std::chrono::seconds(5)};
// By a window or command that watches: each try can keep the user waiting for as long as the time-outs last.
inline constexpr ReconnectPauses kPausesWhileWatching{std::chrono::seconds(2), std::chrono::seconds(30)};
// Between calls by telephone: each costs money and keeps a line busy.
inline constexpr ReconnectPauses kPausesBetweenCalls{std::chrono::seconds(10), std::chrono::minutes(5)};

}  // namespace kv
