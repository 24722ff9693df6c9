#pragma once

#include <cstdint>
#include <string>

#include "desktop/Pacer.h"
#include "link/Channel.h"

namespace kv {

// How far a restore came that did not end well. What follows from it for the controller is said here and nowhere else:
// what is known, and no more.
struct RestoreReach {
  std::int64_t lines = 0;    // command lines of the file
  std::int64_t written = 0;  // that were answered with OK
  bool isUnsure = false;     // one more may have been executed: it went out, and its reply is missing or damaged
  bool isEnd = false;        // that one is the end frame
};

// What the traffic alone tells of the controller, a sentence or more; empty when nothing was written.
[[nodiscard]] std::string LeftText(const RestoreReach& reach);

// Asks the controller what it is doing now, and says what that means after this restore. A stop that was asked for is
// taken back: it has ended the restore. Empty when nothing can have been written.
[[nodiscard]] std::string AskWhatIsLeft(const RestoreReach& reach, Channel& link, Pacer& pacer);

}  // namespace kv
