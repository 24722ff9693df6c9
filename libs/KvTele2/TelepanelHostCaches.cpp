// The host's colour caches: which one the panel is drawn with, and how it fits the controller.

#include <utility>

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/cache/CacheScreen.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
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

std::string CureOf(const cache::CacheError& error) {
  switch (error.fault) {
    case cache::CacheFault::Cut:
    case cache::CacheFault::Damaged:
      return "import from its controller into this file, or choose another one.";
    case cache::CacheFault::Newer:
      return "open it with that version, or import from the controller into another file.";
    case cache::CacheFault::Unreadable:
      return "see that you may read it and that its disk is there.";
    case cache::CacheFault::Missing:
    case cache::CacheFault::TooLarge:
    case cache::CacheFault::NoCache:
      break;
  }
  return "choose another file, or import from the controller into a new one.";
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

std::expected<bool, std::string> TelepanelHost::OpenColourCache(const std::string& path) {
  const auto content = cache::ReadCacheFile(PathFromUtf8(path));
  if (!content) return CacheNotOpened(path, content.error().Text() + ".\r\nWhat to do: " + CureOf(content.error()));
  const bool hasController = IsOnline() && mState.controller && content->owner;
  if (hasController && cache::IsOfOtherModel(*content, Utf8ToAnsi(mState.controller->model))) {
    Warn(path + " is the cache of a " + AnsiToUtf8(content->owner->version.model) + ", and a " +
         mState.controller->model + " is on line: nothing of it could be drawn. The cache that was in use stays." +
         "\r\nWhat to do: import a cache from this controller, or go off line to open this one.");
    return false;
  }
  const auto kept = cache::SaveCacheFile(PathFromUtf8(mSessionFolder) / kWorkingCopy, *content);
  if (!kept) {
    return CacheNotOpened(
        path, "The file is whole, but the session's working copy of it cannot be written. " + kept.error().Text() +
                  ".\r\nWhat to do: make room in the session's folder, and see that it may be written to.");
  }
  std::string said = "Opened " + path + ": " + ContentText(*content);
  if (hasController && std::to_string(content->owner->serialNumber) != mState.controller->serialNumber) {
    said += ". On line is serial number " + mState.controller->serialNumber + ": only what both have is drawn from it.";
  }
  StatusMessage(said);
  UseCache(*content, path);
  return true;
}

std::unexpected<std::string> TelepanelHost::CacheNotOpened(const std::string& path, const std::string& why) {
  StatusMessage("The cache " + path + " was not opened. " + why);
  return std::unexpected(why);
}

std::string TelepanelHost::ChooseColourCache(const std::vector<std::string>& paths, const std::string& model) {
  const cache::CacheChoice choice = cache::ChooseCache(paths, model);
  for (const std::string& why : choice.passedOver) StatusMessage(why);
  return paths[choice.index];
}

// Called while a colour controller goes on line, before its panel is asked for.
void TelepanelHost::SetPanelData(const std::string& path, const std::string& source) {
  auto content = cache::ReadCacheFile(PathFromUtf8(path));
  if (!content) {
    content.error().file.file = source;
    return StatusMessage("The screen is drawn without a cache. " + content.error().Text());
  }
  UseCache(*std::move(content), source);
}

void TelepanelHost::UseCache(cache::CacheContent content, const std::string& path) {
  mCache = std::move(content);
  mCacheName = Utf8FromPath(PathFromUtf8(path).filename());
  if (mState.hasPanel) FitCache();
}

// Takes of the cache what is the controller's as it is now, and tells what is not.
void TelepanelHost::FitCache() {
  const bool isWanted = mCache && mCache->owner && IsOnline() && mState.controller;
  if (!isWanted || mPanel->Panel()->kind != PanelKind::Colour) return;
  const bool wasAsking = std::exchange(mIsAsking, true);
  const ScopeGuard asked([this, wasAsking] { mIsAsking = wasAsking; });
  const std::shared_ptr<Channel> channel = mChannel;
  const std::shared_ptr<panel::PanelSession> panel = mPanel;
  const PanelDescription described = *panel->Panel();
  BeginWait(HostView::Wait::Screen, "Comparing the cache: " + mState.link);
  const auto fit = cache::TakeFromCache(*mCache, Utf8ToAnsi(mState.controller->model), described, *channel->Panel(),
                                        mUnit, mResources);
  EndWait();
  if (panel != mPanel) return;  // the link was let go meanwhile
  if (mFetch) FetchWhenFast();  // what had come without a cache is gone
  panel->Redraw();
  const std::string text = fit ? cache::FitText(*fit, mCacheName) : "The cache is not used. " + fit.error().Text();
  if (!text.empty()) StatusMessage(text);
}

}  // namespace kv
