// The host on line: the values of the session's regions, read at a rhythm that takes little of the line.

#include <algorithm>

#include "KvTele2/TelepanelHost.h"
#include "base/ScopeGuard.h"
#include "desktop/RemainingTime.h"
#include "link/ErrorMeaning.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

constexpr Duration kTilePause = 2s;         // between two readings of a tile
constexpr Duration kFaultyTilePause = 30s;  // what has been refused is refused again
constexpr Duration kTileShare = 200ms;      // of each second; a request that has begun is ended
constexpr Duration kFresh = 10s;

// So many characters of values have their place in a tile; the operand view has them all.
constexpr std::size_t kMostValues = 160;

std::string Shortened(std::string values) {
  values.erase(0, values.find_first_not_of(' '));
  if (values.size() <= kMostValues) return values;
  const std::size_t cut = values.rfind(' ', kMostValues);
  return values.substr(0, cut == std::string::npos ? kMostValues : cut) + " ...";
}

}  // namespace

void TelepanelHost::LoadTiles() {
  mAreTilesOld = false;
  if (!mTiles) return;
  mTiles->LoadTiles();
  mTilesDueAt.assign(mTiles->Tiles().size(), Instant{});
  ShowTiles();
}

void TelepanelHost::ReadTiles() {
  if (!mTiles || !IsOnline() || mNext || !OtherModel(mState).empty()) return;
  if (mAreTilesOld) LoadTiles();
  const Instant end = mServices.pacer.Now() + kTileShare;
  for (auto due = DueTile(); due && mServices.pacer.Now() < end; due = DueTile()) {
    if (!ReadTile(*due)) return;
  }
}

// The one that has waited longest.
std::optional<std::size_t> TelepanelHost::DueTile() const {
  const auto oldest = std::ranges::min_element(mTilesDueAt);
  if (oldest == mTilesDueAt.end() || mServices.pacer.Now() < *oldest) return std::nullopt;
  return static_cast<std::size_t>(oldest - mTilesDueAt.begin());
}

// False: nothing more is to be asked now.
bool TelepanelHost::ReadTile(std::size_t index) {
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  const std::shared_ptr<Channel> channel = mChannel;
  BeginWait(HostView::Wait::Quiet, "Reading values: " + mState.link);
  const auto read = mTiles->ReadTile(index, *channel, mServices.pacer.Now());
  EndSilence();
  const bool isFaulty = !mTiles->Tiles()[index].fault.empty();
  mTilesDueAt[index] = mServices.pacer.Now() + (isFaulty ? kFaultyTilePause : kTilePause);
  const bool goesOn = read || LeavesLinkAsItWas(read.error().code);
  if (!goesOn) TakeFailure(read.error());
  EndWait();
  if (mChannel) mState.quality = LinkFactsOf(mChannel->Quality());
  return goesOn && !mNext;
}

void TelepanelHost::ShowTiles() {
  mState.tiles.clear();
  if (!mTiles || !mChannel) return;
  const Instant now = mServices.pacer.Now();
  for (const RegionTile& tile : mTiles->Tiles()) {
    ShownTile& shown = mState.tiles.emplace_back(ShownTile{.operands = tile.operands, .title = tile.title});
    shown.values = Shortened(tile.values);
    shown.allValues = tile.values;
    shown.fault = tile.fault;
    if (!tile.readAt) continue;
    shown.age = AgeText(now - *tile.readAt) + " ago";
    shown.isOld = !IsOnline() || now - *tile.readAt > kFresh;
  }
}

}  // namespace kv
