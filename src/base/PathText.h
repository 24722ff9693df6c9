#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kv {

// What no folder's or file's name can have on every computer; Windows refuses them all.
inline constexpr std::string_view kForbiddenInNames = "\\/:*?\"<>|";

// Paths as UTF-8 text, as prompts, settings and messages carry them, and back. On Linux the bytes pass as they are; on
// Windows a text that is not UTF-8 gives an empty path.
[[nodiscard]] std::filesystem::path PathFromUtf8(std::string_view text);
[[nodiscard]] std::string Utf8FromPath(const std::filesystem::path& path);

}  // namespace kv
