#include "sessions/RecentCaches.h"

#include <algorithm>
#include <array>

#include "sessions/SessionIni.h"

namespace kv {
namespace {

using Places = std::array<std::string, kMostRecentCaches>;

std::string Key(std::size_t index) {
  return "RecentCache" + std::to_string(index);
}

// By place, the empty ones among them.
Places ReadPlaces(const SharedState& shared) {
  Places places;
  for (std::size_t i = 0; i < places.size(); ++i) places[i] = ReadSessionIni(shared, Key(i), "");
  return places;
}

// From the end, so that a crash leaves an entry twice rather than none.
std::expected<void, std::string> WritePlaces(const SharedState& shared, const Places& before, const Places& after) {
  for (std::size_t i = after.size(); i-- > 0;) {
    if (after[i] == before[i]) continue;
    const auto written =
        after[i].empty() ? RemoveSessionIni(shared, Key(i)) : WriteSessionIni(shared, Key(i), after[i]);
    if (!written) return written;
  }
  return {};
}

}  // namespace

std::string CachePath(const std::string& entry) {
  return entry.substr(0, entry.find('*'));
}

std::vector<std::string> ReadRecentCaches(const SharedState& shared) {
  const Places places = ReadPlaces(shared);
  std::vector<std::string> entries(places.begin(), places.end());
  std::erase(entries, "");
  return entries;
}

std::expected<std::vector<std::string>, std::string> AddRecentCache(const SharedState& shared,
                                                                    const std::string& entry) {
  auto entries = ReadRecentCaches(shared);
  std::erase_if(entries, [&](const std::string& old) { return CachePath(old) == CachePath(entry); });
  entries.insert(entries.begin(), entry);
  if (entries.size() > kMostRecentCaches) entries.resize(kMostRecentCaches);
  const Places before = ReadPlaces(shared);
  Places places;
  std::ranges::copy(entries, places.begin());
  if (const auto written = WritePlaces(shared, before, places); !written) {
    // The others have moved on by then, and the last of them out of the list.
    (void)WritePlaces(shared, places, before);
    return std::unexpected("The list of recent cache files was not kept. " + written.error());
  }
  return entries;
}

}  // namespace kv
