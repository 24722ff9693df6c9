#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// The platform's profile-string calls on one ini file. On Windows they are called; elsewhere a line-preserving reader
// and writer (IniText) does the same, as measured on the platform. Texts are Windows-1252 bytes, as in the file; a
// missing file reads as an empty one.

// The size of the buffer that tools read values with: 255 characters, the terminating NUL among them.
inline constexpr std::size_t kProfileBuffer = 255;

// The value of `key` in `section`, cut to `bufferSize` - 1 bytes; `fallback` without trailing blanks when the key is
// missing. "key=" gives "". A file over 16 MiB is not read and counts as empty; elsewhere than on Windows, so does
// one in UTF-16.
[[nodiscard]] std::string ReadProfileString(const std::filesystem::path& file, std::string_view section,
                                            std::string_view key, std::string_view fallback,
                                            std::size_t bufferSize = kProfileBuffer);

// Sets `key`; no value deletes the key, no key deletes the section. Every other byte of the file stays. False when the
// file cannot be written, when it is one that is not read, or when a name or the value would make other lines of the
// file than the one meant (a line break, a NUL, "=" in a key, "]" in a section); the file is then as it was.
[[nodiscard]] bool WriteProfileString(const std::filesystem::path& file, std::string_view section,
                                      std::optional<std::string_view> key, std::optional<std::string_view> value);

}  // namespace kv
