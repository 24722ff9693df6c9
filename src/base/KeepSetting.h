#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

namespace kv {

// Sets `key` in an ini file to a text (UTF-8), so that reading it gives the same text back. Fails, with what happened,
// the likely cause and what to do in sentences for the user, when the file cannot be written or cannot hold the text:
// more than 254 characters, letters that Windows-1252 does not have, blanks at its ends. The file is then as it was.
[[nodiscard]] std::expected<void, std::string> KeepSetting(const std::filesystem::path& file, std::string_view section,
                                                           std::string_view key, std::string_view value);

// The sentences about a settings file that cannot be written.
[[nodiscard]] std::string NotWritableText(const std::filesystem::path& file);

}  // namespace kv
