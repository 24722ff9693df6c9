#pragma once

#include <expected>
#include <string>
#include <vector>

#include "host/shared/SharedState.h"

namespace kv {

// The recent colour cache files of the current session: at most ten entries, newest first, kept in the session's
// settings. An entry is a text of fields joined by "*" whose first field is the file's path.
inline constexpr std::size_t kMostRecentCaches = 10;

[[nodiscard]] std::vector<std::string> ReadRecentCaches(const SharedState& shared);

// Puts `entry` first; an entry with the same path goes, and with ten entries the last one. Returns the new list. The
// error, sentences for the user, says why the entry could not be kept.
[[nodiscard]] std::expected<std::vector<std::string>, std::string> AddRecentCache(const SharedState& shared,
                                                                                  const std::string& entry);

// The first field of an entry.
[[nodiscard]] std::string CachePath(const std::string& entry);

}  // namespace kv
