#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "desktop/Pacer.h"
#include "desktop/WallClock.h"
#include "journal/JournalDisk.h"
#include "journal/JournalFiles.h"

namespace kv {

// Who acknowledges what a check has found, and why it is so.
struct Acknowledgement {
  std::string user;
  std::string reason;
};

// Records that somebody has looked at all that the check of the journal finds now; from then on the check tells it
// apart, for as long as it finds the same. The number of the record; the error is a sentence for the user.
[[nodiscard]] std::expected<std::uint64_t, std::string> AcknowledgeFindings(const JournalPlaces& places,
                                                                            JournalDisk& disk, Pacer& pacer,
                                                                            const WallClock& clock,
                                                                            const Acknowledgement& by);

}  // namespace kv
