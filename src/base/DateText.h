#pragma once

#include <chrono>
#include <string>

namespace kv {

// Date and time of day without the locale, so that files, names of files and logs say the same everywhere.
[[nodiscard]] std::string DateText(std::chrono::local_seconds time);       // "2026-11-21"
[[nodiscard]] std::string TimeOfDayText(std::chrono::local_seconds time);  // "14:03:21"

}  // namespace kv
