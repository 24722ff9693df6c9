#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kvsim {

// Writes `content` to `file` and makes the folders that are missing; on failure the text says what went wrong.
[[nodiscard]] std::expected<void, std::string> WriteSample(const std::filesystem::path& file,
                                                           const std::string& content);

// The files that a fresh installation has: O/S files in the folders in which the programs look for them, and a project
// for each family in "Samples".
[[nodiscard]] std::expected<void, std::string> WriteSampleSet(const std::filesystem::path& folder);

}  // namespace kvsim
