#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// The two profile-string calls after their arguments have been checked; ProfileFilePosix.cpp and ProfileFileWindows.cpp
// implement them for ProfileStrings.

// A larger file is no settings file of ours.
inline constexpr std::size_t kLargestProfile = std::size_t{16} * 1024 * 1024;

// The value, cut to `bufferSize` - 1 bytes; nothing when the key or the file is missing.
[[nodiscard]] std::optional<std::string> ReadFromProfile(const std::filesystem::path& file, std::string_view section,
                                                         std::string_view key, std::size_t bufferSize);

[[nodiscard]] bool WriteToProfile(const std::filesystem::path& file, std::string_view section,
                                  std::optional<std::string_view> key, std::optional<std::string_view> value);

// The same by a reader and writer of our own, which keeps the lines: what platforms without such calls do, and Windows
// where its calls would lose something.
[[nodiscard]] std::optional<std::string> ReadByLines(const std::filesystem::path& file, std::string_view section,
                                                     std::string_view key, std::size_t bufferSize);
[[nodiscard]] bool WriteByLines(const std::filesystem::path& file, std::string_view section,
                                std::optional<std::string_view> key, std::optional<std::string_view> value);

}  // namespace kv
