#include "KvTele2/HostSettings.h"

#include <system_error>

#include "base/AnsiText.h"
#include "base/KeepSetting.h"
#include "base/ProfileStrings.h"

namespace kv {
namespace {

constexpr std::string_view kSection = "KvTele2";

std::string RecentKey(std::size_t index) {
  return "RecentPages" + std::to_string(index);
}

}  // namespace

std::string HostSettings::Read(std::string_view key) const {
  return AnsiToUtf8(ReadProfileString(mFile, kSection, key, ""));
}

std::expected<void, std::string> HostSettings::Write(std::string_view key, std::string_view value) const {
  std::error_code ignored;
  if (!std::filesystem::is_directory(mFile.parent_path(), ignored)) return std::unexpected(NotWritableText(mFile));
  return KeepSetting(mFile, kSection, key, value);
}

std::vector<std::string> HostSettings::ReadRecentPages() const {
  std::vector<std::string> pages;
  for (std::size_t i = 0; i < kMostRecentPages; ++i) {
    if (std::string path = Read(RecentKey(i)); !path.empty()) pages.push_back(std::move(path));
  }
  return pages;
}

std::expected<std::vector<std::string>, std::string> HostSettings::AddRecentPages(const std::string& path) const {
  const std::vector<std::string> before = ReadRecentPages();
  std::vector<std::string> pages = before;
  std::erase(pages, path);
  pages.insert(pages.begin(), path);
  if (pages.size() > kMostRecentPages) pages.pop_back();
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (i < before.size() && before[i] == pages[i]) continue;
    if (const auto kept = Write(RecentKey(i), pages[i]); !kept) {
      return std::unexpected("The list of recent Telepanel files was not kept. " + kept.error());
    }
  }
  return pages;
}

}  // namespace kv
