#include "apps/support/SimulatedControllers.h"

#include <gtest/gtest.h>

#include "tests/base/TemporaryFolder.h"

namespace kv::test {
namespace {

TEST(SimulatedControllers, KeepTheirMemoryInTheSessionAndSayWhenItIsDamaged) {
  const TemporaryFolder folder;
  const char* const file = "Simulated K670-67-C30 - K390-29-C30.state";
  EXPECT_TRUE(SimulatedControllers(folder.Path()).NewLine("K670").has_value());  // saved when it goes
  ASSERT_TRUE(std::filesystem::exists(folder.Path() / file));
  EXPECT_TRUE(SimulatedControllers(folder.Path()).NewLine("K670-67-C30 / K390-29-C30").has_value());

  folder.Put(file, "no state at all");
  const auto damaged = SimulatedControllers(folder.Path()).NewLine("K670");
  ASSERT_FALSE(damaged.has_value());
  EXPECT_NE(damaged.error().find(file), std::string::npos) << damaged.error();
}

}  // namespace
}  // namespace kv::test
