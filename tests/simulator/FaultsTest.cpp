#include "simulator/Faults.h"

#include <gtest/gtest.h>

namespace sim::test {
namespace {

// The hits are written down, worked out with other means, so that another platform or a change of the generator shows.
TEST(Faults, TheSameSeedGivesTheSameFaults) {
  const auto hits = [](std::uint64_t seed, const std::vector<std::string>& rules) {
    Faults faults = *Faults::Create(rules, seed);
    std::string text;
    for (int i = 0; i < 24; ++i) text += faults.PlanFor("RD").isUnanswered ? 'x' : '.';
    return text;
  };
  EXPECT_EQ(hits(1, {"noreply:p=0.3"}), "x...x.x....xx....x....xx");
  EXPECT_NE(hits(2, {"noreply:p=0.3"}), hits(1, {"noreply:p=0.3"}));
  EXPECT_EQ(hits(1, {"double:p=0.5", "noreply:p=0.3"}), hits(1, {"noreply:p=0.3"}))
      << "rules do not disturb each other";
}

}  // namespace
}  // namespace sim::test
