// The host's colour caches.

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/cache/CacheFile.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/Texts.h"

namespace kv {
namespace {

constexpr const char* kWorkingCopy = "APP_TEMP.ktc";

// "18 images and 4 fonts of K670-67-C30, serial number 4711".
std::string ContentText(const cache::CacheContent& content) {
  const std::size_t fonts = content.fonts ? content.fonts->size() : 0;
  const std::size_t images = content.images ? content.images->size() : 0;
  const std::string text = Counted(fonts, "font") + " and " + Counted(images, "image");
  if (!content.owner) return text;
  return text + " of " + AnsiToUtf8(content.owner->version.model) + ", serial number " +
         std::to_string(content.owner->serialNumber);
}

// Each entry's first field is its path.
std::string PathOf(const std::string& entry) {
  return entry.substr(0, entry.find('*'));
}

}  // namespace

void TelepanelHost::SetRecentCaches(const std::vector<std::string>& entries) {
  mState.recentCaches.clear();
  for (const std::string& entry : entries) mState.recentCaches.push_back(PathOf(entry));
  Show();
}

bool TelepanelHost::OpenColourCache(const std::string& path) {
  const auto content = cache::ReadCacheFile(PathFromUtf8(path));
  if (!content) {
    StatusMessage(content.error().Text());
    return false;
  }
  const auto kept = cache::SaveCacheFile(PathFromUtf8(mSessionFolder) / kWorkingCopy, *content);
  if (!kept) {
    StatusMessage("The cache " + path + " was not opened. " + kept.error().Text());
    return false;
  }
  StatusMessage("Opened " + path + ": " + ContentText(*content));
  return true;
}

}  // namespace kv
