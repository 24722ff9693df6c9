#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// The host's own settings in a session's folder: "KvTele2.ini", section "KvTele2". Texts are UTF-8.
class HostSettings {
 public:
  static constexpr std::size_t kMostRecentPages = 10;

  explicit HostSettings(std::filesystem::path folder) : mFile(std::move(folder) / "KvTele2.ini") {}

  [[nodiscard]] std::string Read(std::string_view key) const;  // empty when it is missing
  // The error, sentences for the user, says why the value could not be kept.
  [[nodiscard]] std::expected<void, std::string> Write(std::string_view key, std::string_view value) const;

  // The pages files that were opened last, newest first: keys RecentPages0 to RecentPages9.
  [[nodiscard]] std::vector<std::string> ReadRecentPages() const;
  // Puts `path` first; returns the new list. The error, sentences for the user, says why it could not be kept.
  [[nodiscard]] std::expected<std::vector<std::string>, std::string> AddRecentPages(const std::string& path) const;

 private:
  std::filesystem::path mFile;
};

}  // namespace kv
