#pragma once

#include <string>
#include <vector>

#include "dataview/RegionTable.h"
#include "host/shared/RegionTiles.h"
#include "host/shared/SharedState.h"

namespace kv::mdlDataTypesView {

// The regions that the operand view has kept in the session, for the host's main window: read by the same request and
// shown by the same rule as in the view. The files are only read: what is wrong with them the view tells when it opens.
class SessionTiles final : public RegionTiles {
 public:
  explicit SessionTiles(const SharedState& shared) : mShared(shared) {}

  void LoadTiles() override;
  [[nodiscard]] std::span<const RegionTile> Tiles() const override { return mTiles; }
  std::expected<void, LinkError> ReadTile(std::size_t index, Channel& channel, Instant now) override;

 private:
  [[nodiscard]] std::string Model() const;

  const SharedState& mShared;
  std::string mLoaded;  // whose they are: session and model
  std::vector<RegionRow> mRows;
  std::vector<RegionTile> mTiles;  // one for each row
};

}  // namespace kv::mdlDataTypesView
