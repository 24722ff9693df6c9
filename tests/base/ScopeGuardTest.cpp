#include "base/ScopeGuard.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(ScopeGuard, RunDismissAndMoveLeaveOneDutyAtMost) {
  int runs = 0;
  const auto make = [&runs] { return ScopeGuard([&runs] { ++runs; }); };
  {
    auto first = make();
    auto second = std::move(first);
    EXPECT_EQ(runs, 0);
  }
  EXPECT_EQ(runs, 1);
  {
    auto guard = make();
    guard.Run();
    EXPECT_EQ(runs, 2);
  }
  EXPECT_EQ(runs, 2);
  make().Dismiss();
  EXPECT_EQ(runs, 2);
}

}  // namespace
}  // namespace kv
