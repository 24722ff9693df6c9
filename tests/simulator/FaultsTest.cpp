// Each fault does what its rule says, to the requests that it names, and the same again with the same seed.

#include "simulator/Faults.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "LineFixture.h"

namespace sim::test {
namespace {

const std::string kWrite = EncodeFrame(1, "WD5");

TEST(Faults, EachDoesWhatItSays) {
  const std::string reply = LineFixture().Say(kWrite);
  ASSERT_EQ(reply.size(), 21U);
  const auto refusal = [](const std::string& text) { return EncodeReply(1, "WD5", text, 1); };
  const std::tuple<std::string, std::string, std::size_t, std::string, kv::Duration> cases[] = {
      {"noreply", "", 1, "5", 0ms},
      {"late:ms=700", reply, 1, "5", 700ms},
      {"double", reply + reply, 1, "5", 0ms},
      {"dribble:ms=30", reply, 1, "5", 630ms},
      {"cut:after=4", reply.substr(0, 4), 1, "5", 0ms},
      {"wrongunit", EncodeReply(2, "WD5", "WD-", 1), 1, "5", 0ms},
      {"echo", kWrite + reply, 1, "5", 0ms},
      {"busy", refusal("WDERROR0A"), 0, "", 0ms},
      {"refuse:code=0D", refusal("WDERROR0D"), 0, "", 0ms},
      {"lie", reply, 1, "", 0ms},
      {"reset", "", 1, "", 0ms},  // what reaches the controller is the restart
      {"lost:at=5", reply.substr(0, 5), 1, "5", 0ms},
      {"lost:dir=in", "", 0, "", 0ms},
  };
  for (const auto& [rule, heard, executed, stored, time] : cases) {
    SCOPED_TRACE(rule);
    LineFixture fixture({rule});
    const kv::Instant start = fixture.now;
    EXPECT_EQ(fixture.Say(kWrite), heard);
    EXPECT_EQ(fixture.now - start, time);
    EXPECT_EQ(fixture.controller->executed.size(), executed);
    EXPECT_EQ(fixture.controller->stored, stored);
    EXPECT_EQ(fixture.line->IsConnected(), !rule.starts_with("lost"));
  }
}

TEST(Faults, RulesChooseTheirRequests) {
  const struct {
    const char* rule;
    const char* hits;  // of twelve requests: WD and RD in turn
  } cases[] = {
      {"noreply:nth=3", "..x........."},       {"noreply:every=4", "...x...x...x"},
      {"noreply:on=RD,nth=2", "...x........"}, {"noreply:on=WD,every=2,max=2", "..x...x....."},
      {"noreply:on=block", "............"},
  };
  for (const auto& c : cases) {
    LineFixture fixture({c.rule});
    std::string hits;
    for (int i = 0; i < 12; ++i) hits += fixture.Ask(i % 2 == 0 ? "WD" : "RD").empty() ? 'x' : '.';
    EXPECT_EQ(hits, c.hits) << c.rule;
  }
}

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
