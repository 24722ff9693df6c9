#pragma once

#include <cstdint>
#include <filesystem>

namespace kv {

// Lets the platform's own viewer for compiled help files show the topic with this map number, with no owner window.
// False when there is none, or when it would show blank pages: it does so with a file on a network drive, and with one
// that carries the mark of a download.
[[nodiscard]] bool ShowPlatformHelp(const std::filesystem::path& file, std::int32_t mapNumber);

}  // namespace kv
