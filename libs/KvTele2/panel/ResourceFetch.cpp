#include "KvTele2/panel/ResourceFetch.h"

#include <algorithm>

#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "link/ErrorMeaning.h"
#include "link/LinkLimits.h"

namespace kv::panel {
namespace {

constexpr std::uint32_t kFirstPiece = 512;       // 50 ms of a usual serial line, if there is one behind a network
constexpr std::uint32_t kMostBytes = 8'388'608;  // of one font or image

}  // namespace

ResourceFetch::ResourceFetch(Pacer& pacer, PanelLink& link, ScreenResources& resources, std::uint8_t unit,
                             Wanted wanted)
    : mPacer(pacer), mLink(link), mResources(resources), mUnit(unit), mWanted(wanted), mPiece(kFirstPiece) {}

bool ResourceFetch::Has(const std::vector<Drawing::Missing>& missing) {
  const auto isWanted = [this](const Drawing::Missing& one) {
    const bool isNamed = mWanted == Wanted::Names && mDirectories.contains(one.kind);
    return !isNamed && !mDone.contains({one.kind, one.id});
  };
  const auto next = std::ranges::find_if(missing, isWanted);
  const std::optional<Key> key = next == missing.end() ? std::nullopt : std::optional(Key(next->kind, next->id));
  // What has been begun is read to its end, also when the page has changed.
  if (mNow && !mBytes.empty()) return true;
  mNow = key;
  return mNow.has_value();
}

std::expected<bool, LinkError> ResourceFetch::Step() {
  if (!mNow) return false;
  const auto directory = mDirectories.find(mNow->first);
  if (directory == mDirectories.end()) return ReadDirectory(mNow->first);
  const auto entry = std::ranges::find(directory->second, mNow->second, &PanelResource::id);
  const bool canBeRead = entry != directory->second.end() && entry->length > 0 && entry->length <= kMostBytes;
  if (canBeRead) return ReadPiece(*entry);
  mDone.insert(*mNow);
  mNow.reset();
  return false;
}

std::expected<bool, LinkError> ResourceFetch::ReadDirectory(PanelResourceKind kind) {
  const auto directory = mLink.Directory(kind, mUnit);
  if (!directory) return GiveUpOrFail();
  for (const PanelResource& entry : directory->entries) mResources.Name(kind, entry.id, AnsiToUtf8(entry.name));
  mDirectories[kind] = directory->entries;
  return true;
}

std::expected<bool, LinkError> ResourceFetch::ReadPiece(const PanelResource& entry) {
  if (mLink.Connection() != mConnection) mBytes.clear();  // another controller may have answered before
  mConnection = mLink.Connection();
  const auto offset = static_cast<std::uint32_t>(mBytes.size());
  const Instant began = mPacer.Now();
  const auto piece = mLink.ReadPiece(mNow->first, mNow->second, offset, std::min(mPiece, entry.length - offset), mUnit);
  if (!piece) return GiveUpOrFail();
  FitPiece(mPacer.Now() - began);
  mBytes.append(piece->begin(), piece->end());
  if (mBytes.size() < entry.length) return false;
  const bool isRight = Crc32(mBytes) == entry.check;
  const bool isTaken = isRight && mResources.Add(mNow->first, mNow->second, mBytes).has_value();
  mDone.insert(*mNow);
  mNow.reset();
  mBytes.clear();
  return isTaken;
}

// What the controller has answered with a refusal, it would refuse again.
std::expected<bool, LinkError> ResourceFetch::GiveUpOrFail() {
  const LinkError error = mLink.LastError();
  mBytes.clear();
  if (IsRefusal(error.code)) mDone.insert(*mNow);
  mNow.reset();
  return std::unexpected(error);
}

void ResourceFetch::FitPiece(Duration took) {
  if (took > kLongestPiece) mPiece = std::max(mPiece / 2, kFirstPiece / 8);
  if (took < kLongestPiece / 4) mPiece = std::min(2 * mPiece, kMostMemoryPerRead);
}

}  // namespace kv::panel
