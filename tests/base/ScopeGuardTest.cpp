#include "base/ScopeGuard.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(ScopeGuard, RunDismissAndMoveLeaveOneDutyAtMost) {
  int runs = 0;
  const auto make = [&runs] { return ScopeGuard([&runs] { ++runs; }); };
  {
    auto first = make();
    const auto second = std::move(first);
  }
  EXPECT_EQ(runs, 1);
  make().Run();
  EXPECT_EQ(runs, 2);
  make().Dismiss();
  EXPECT_EQ(runs, 2);
}

}  // namespace
}  // namespace kv
