#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "clone/CloneOutcome.h"
#include "desktop/Pacer.h"
#include "link/Channel.h"

namespace kv {

// How far a restore came, and how sure that is. What follows from it for the controller is said here and nowhere else:
// what is known, and no more.
struct RestoreReach {
  std::int64_t lines = 0;         // command lines of the file
  std::int64_t written = 0;       // that were answered with OK
  bool isUnsure = false;          // one more may have been executed: it went out, and its reply is missing or damaged
  bool isEnd = false;             // that one is the end frame
  std::int64_t unproven = 0;      // lines whose OK was not the controller's sealed reply to them
  std::size_t firstUnproven = 0;  // number of the first of these in the file, from 1
};

// What the traffic alone tells of the controller, a sentence or more; empty when nothing was written.
[[nodiscard]] std::string LeftText(const RestoreReach& reach);

// Asks the controller what it is doing now, and says what that means after this restore. A stop that was asked for is
// taken back: it has ended the restore. Empty when nothing can have been written.
[[nodiscard]] std::string AskWhatIsLeft(const RestoreReach& reach, Channel& link, Pacer& pacer);

// What is asked after a restore whose lines were all answered with OK, because such an OK may be a late or damaged one,
// or another unit's: that it is still the controller `asked`, that it runs now, and that each line has its own reply.
// A failure when not: what was written is then not known.
[[nodiscard]] std::expected<void, CloneOutcome> CheckAfterRestore(const RestoreReach& reach, Channel& link,
                                                                  const Channel::ControllerInfo& asked);

}  // namespace kv
