#include "sessions/RecentCaches.h"

#include "sessions/SessionIni.h"

namespace kv {
namespace {

std::string Key(std::size_t index) {
  return "RecentCache" + std::to_string(index);
}

}  // namespace

std::string CachePath(const std::string& entry) {
  return entry.substr(0, entry.find('*'));
}

std::vector<std::string> ReadRecentCaches(const SharedState& shared) {
  std::vector<std::string> entries;
  for (std::size_t i = 0; i < kMostRecentCaches; ++i) {
    if (auto entry = ReadSessionIni(shared, Key(i), ""); !entry.empty()) entries.push_back(std::move(entry));
  }
  return entries;
}

std::vector<std::string> AddRecentCache(const SharedState& shared, const std::string& entry) {
  auto entries = ReadRecentCaches(shared);
  std::erase_if(entries, [&](const std::string& old) { return CachePath(old) == CachePath(entry); });
  entries.insert(entries.begin(), entry);
  if (entries.size() > kMostRecentCaches) entries.resize(kMostRecentCaches);
  for (std::size_t i = 0; i < kMostRecentCaches; ++i) {
    if (i < entries.size()) {
      WriteSessionIni(shared, Key(i), entries[i]);
    } else {
      RemoveSessionIni(shared, Key(i));
    }
  }
  return entries;
}

}  // namespace kv
