#include "dataview/SessionTiles.h"

#include <algorithm>
#include <utility>

#include "base/AtomicFile.h"
#include "dataview/files/GridFile.h"
#include "dataview/files/GridText.h"
#include "dataview/operands/RegionTransfer.h"
#include "dataview/operands/RowDisplay.h"
#include "link/ErrorMeaning.h"

namespace kv::mdlDataTypesView {
namespace {

std::vector<RegionRow> KeptRegions(const SharedState& shared, const std::string& model) {
  const auto file = SessionGridFiles(shared.paths, shared.CurrentSession).regions;
  const auto bytes = ReadWholeFile(file, kLargestGridFile);
  if (!bytes) return {};
  auto grid = ParseRegionsGrid(*bytes, model);
  return grid ? std::move(grid->rows) : std::vector<RegionRow>();
}

bool IsShownAlike(const RegionRow& one, const RegionRow& other) {
  return one.region == other.region && one.size == other.size && one.format == other.format;
}

}  // namespace

std::string SessionTiles::Model() const {
  return mShared.Remote ? mShared.Remote->Model() : std::string();
}

void SessionTiles::LoadTiles() {
  const std::string owner = mShared.CurrentSession + "\n" + Model();
  const auto before = std::exchange(mRows, KeptRegions(mShared, Model()));
  const auto tiles = std::exchange(mTiles, {});
  const bool isSameOwner = std::exchange(mLoaded, owner) == owner;
  for (const RegionRow& row : mRows) {
    mTiles.push_back({.operands = RegionText(row.region), .title = row.description});
    const auto same = std::ranges::find_if(before, [&](const RegionRow& each) { return IsShownAlike(each, row); });
    if (!isSameOwner || same == before.end()) continue;
    const RegionTile& tile = tiles[static_cast<std::size_t>(same - before.begin())];
    mTiles.back().values = tile.values;
    mTiles.back().readAt = tile.readAt;
  }
}

std::expected<void, LinkError> SessionTiles::ReadTile(std::size_t index, Channel& channel, Instant now) {
  const RegionRow& row = mRows[index];
  RegionTile& tile = mTiles[index];
  const auto texts = ReadRegion(channel, Model(), row.region);
  if (texts) {
    tile.values = DisplayRow(row.region.type, *texts, row.size, row.format);
    tile.readAt = now;
    tile.fault.clear();
    return {};
  }
  if (LeavesLinkAsItWas(texts.error().code)) tile.fault = texts.error().happened;
  return std::unexpected(texts.error());
}

}  // namespace kv::mdlDataTypesView
