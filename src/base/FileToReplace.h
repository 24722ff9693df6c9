#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <system_error>

namespace kv {

// What must be known of a name before something new is put there.

// The file that the name stands for: links are followed, also when the last one points at a file that is yet to be
// made. A name that is no link is returned as it is.
[[nodiscard]] std::expected<std::filesystem::path, std::error_code> BehindLinks(std::filesystem::path file);

// Why a file that stands there must not be replaced; empty when it may, and when there is none.
[[nodiscard]] std::string WhyNotReplaceable(const std::filesystem::path& file);

}  // namespace kv
