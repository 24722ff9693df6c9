#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "KvCmDrv1/LinkSettings.h"

namespace kv {

// The link settings of a session: "KvCmDrv1.ini" in its folder, section "KvCmDrv1".

struct LoadedSettings {
  LinkSettings settings;
  std::vector<std::string> complaints;  // values that could not be used: which, what was expected, what is used instead
  std::string unreadable{};             // why the file, which is there, could not be read; `settings` are the defaults
};

// Why, most likely.
inline constexpr const char* kUnreadableCause = "another program has the file open, or it is not this user's to read";

// What the file does not have is as in `defaults`.
[[nodiscard]] LoadedSettings LoadSettings(const std::filesystem::path& folder, const LinkSettings& defaults);

// The error, sentences for the user, says why they could not be kept.
[[nodiscard]] std::expected<void, std::string> SaveSettings(const std::filesystem::path& folder,
                                                            const LinkSettings& settings);

}  // namespace kv
