#include "dataview/SessionTiles.h"

#include "dataview/files/GridFile.h"
#include "tests/dataview/DataViewFixture.h"

namespace kv::test {
namespace {

struct SessionTilesTest : testing::Test, SessionFixture {
  void Keep(std::vector<RegionRow> rows) {
    GridState state{OperandStore(host.model), {}, {}};
    state.regions.Assign(std::move(rows));
    ASSERT_TRUE(SaveSessionGrids(shared.paths, state, shared.CurrentSession));
    tiles.LoadTiles();
  }

  OperandChannel channel{log};
  SessionTiles tiles{shared};
};

TEST_F(SessionTilesTest, TheRegionsOfTheViewAreReadAndShownAsThere) {
  RegionRow hex = NewRegionRow({10, 11, MI});
  hex.description = "Tank";
  hex.format = FormatCode::Hex;
  Keep({hex, NewRegionRow({3, 3, ML})});
  ASSERT_EQ(tiles.Tiles().size(), 2u);
  EXPECT_EQ(tiles.Tiles()[0].title + ", " + tiles.Tiles()[0].operands, "Tank, MI 10..11");
  ASSERT_TRUE(tiles.ReadTile(0, channel, Instant{} + std::chrono::seconds(5)));
  EXPECT_EQ(tiles.Tiles()[0].values, "000A 000B");

  channel.error.code = LinkErrorCode::Refused;
  channel.error.happened = "it does not have them";
  channel.succeeds = false;
  channel.failAt = 0;
  EXPECT_FALSE(tiles.ReadTile(1, channel, {}));
  EXPECT_EQ(tiles.Tiles()[1].fault, "it does not have them");

  Keep({NewRegionRow({7, 7, MB}), hex});
  EXPECT_EQ(tiles.Tiles()[0].readAt, std::nullopt);
  EXPECT_EQ(tiles.Tiles()[1].values, "000A 000B") << "what was read stays with its region";
  shared.CurrentSession = "Other";
  std::filesystem::create_directory(Session("Other"));
  Keep({hex});
  EXPECT_EQ(tiles.Tiles()[0].values, "") << "that was another machine";
  Put("../Other/vsfRegions_1.vsf", "damaged");
  tiles.LoadTiles();
  EXPECT_THAT(tiles.Tiles(), IsEmpty());
  EXPECT_EQ(TemporaryFolder::Content(Session("Other") / "vsfRegions_1.vsf"), "damaged") << "left to the view";
}

}  // namespace
}  // namespace kv::test
