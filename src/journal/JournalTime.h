#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "base/Time.h"
#include "desktop/WallClock.h"

namespace kv {

// "2026-11-22T08:41:12.345+01:00": the time of day where the user sits, and how far that is from UTC.
[[nodiscard]] std::string JournalTime(const WallClock& clock);

// The moment in UTC; nothing for any other text.
[[nodiscard]] std::optional<std::chrono::sys_time<std::chrono::milliseconds>> ParseJournalTime(std::string_view text);

}  // namespace kv
