#include "dataview/operands/Region.h"

#include <gmock/gmock.h>

namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Region, OverlapsWhereAnOperandIsCommon) {
  const Region region{10, 20, MI};
  EXPECT_TRUE(region.Overlaps({20, 30, MI}));
  EXPECT_TRUE(region.Overlaps({0, 10, MI}));
  EXPECT_TRUE(region.Overlaps({12, 13, MI}));
  EXPECT_TRUE(region.Overlaps({0, 99, MI}));
  EXPECT_FALSE(region.Overlaps({21, 30, MI}));
  EXPECT_FALSE(region.Overlaps({0, 9, MI}));
  EXPECT_FALSE(region.Overlaps({10, 20, ML}));
  EXPECT_FALSE(region.Overlaps({15, 14, MI}));  // it is empty

  DisjointRegions regions;
  EXPECT_TRUE(regions.Add(region) && regions.Add({0, 9, MI}) && regions.Add({10, 20, ML}));
  EXPECT_FALSE(regions.Add({9, 9, MI}) || regions.Add({15, 99, MI}) || regions.Add({0, 99, MI}));
}

TEST(Region, SplitsIntoWhatFitsOneRequest) {
  EXPECT_THAT(SplitRegion({5, 125, MI}), ElementsAre(Region{5, 64, MI}, Region{65, 124, MI}, Region{125, 125, MI}));
  EXPECT_THAT(SplitRegion({INT32_MAX, INT32_MAX, MI}), ElementsAre(Region{INT32_MAX, INT32_MAX, MI}));
  EXPECT_THAT(SplitRegion({0, -1, MI}), IsEmpty());
  EXPECT_THAT(SplitRegion({0, 9, static_cast<OperandTypeCode>(23)}), IsEmpty());
}

}  // namespace
}  // namespace kv::mdlDataTypesView
