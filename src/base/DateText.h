#pragma once

#include <chrono>
#include <string>

namespace kv {

// Date and time of day without the locale, so that files, names of files and logs say the same everywhere.
[[nodiscard]] std::string DateText(std::chrono::local_seconds time);       // "2026-11-21"
[[nodiscard]] std::string TimeOfDayText(std::chrono::local_seconds time);  // "14:03:21"
// How far local time is from UTC: "+01:00".
[[nodiscard]] std::string UtcOffsetText(std::chrono::minutes offset);

}  // namespace kv
