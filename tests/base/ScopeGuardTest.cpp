#include "base/ScopeGuard.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(ScopeGuard, RunsExactlyOnceOnEveryWayOut) {
  int runs = 0;
  const auto count = [&runs] { ++runs; };
  const auto leaveEarly = [&](bool early) {
    const ScopeGuard guard(count);
    if (early) return;
    runs += 10;
  };
  leaveEarly(true);
  EXPECT_EQ(runs, 1);
  leaveEarly(false);
  EXPECT_EQ(runs, 12);
  try {
    const ScopeGuard guard(count);
    throw 1;
  } catch (int) {
  }
  EXPECT_EQ(runs, 13);
}

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
