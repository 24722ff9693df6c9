// The O/S download of an Aurex controller, cut at each of its exchanges.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"

namespace kv::test {
namespace {

constexpr const char* kOld = "K220-22-R1|10|4.60|19|R";
constexpr const char* kBoot = "BOOT|10|4.60|19|B";
constexpr const char* kNew = "K220-22-R1|10|4.75|03|R";

// What a sentence about the controller promises.
struct Promise {
  ControllerLeft left;
  bool needsNoLink;                   // it is said only when the link is gone, and nobody could be asked any more
  std::vector<std::string> now;       // what the controller may be
  std::vector<std::string> switched;  // and when it has been switched off and on
};

// A sentence that is not here must not be said in this download.
const Promise kPromises[] = {
    {ControllerLeft::Untouched, false, {kOld}, {kOld}},
    {ControllerLeft::BootLoaderPerhaps, true, {kBoot, kOld}, {kOld}},
    {ControllerLeft::BootLoader, false, {kBoot}, {kOld}},
    {ControllerLeft::OsProgramming, false, {kBoot, kNew}, {kBoot, kNew}},
    {ControllerLeft::BootLoaderErased, false, {kBoot}, {kBoot}},
    {ControllerLeft::OsWaits, false, {kBoot}, {kNew}},
    {ControllerLeft::OsPerhaps, true, {kBoot, kNew}, {kNew}},
    {ControllerLeft::OldOs, false, {kOld}, {kOld}},
    {ControllerLeft::NewOs, false, {kNew}, {kNew}},
};

void ExpectIsKept(const AurexOsFixture& fixture, bool hasLink, bool isSwitched) {
  const DownloadOutcome& outcome = fixture.outcome;
  SCOPED_TRACE(OutcomeText(outcome));
  EXPECT_EQ(outcome.reason.empty(), outcome.end == DownloadEnd::Done);
  EXPECT_TRUE(outcome.end != DownloadEnd::Done || outcome.left == ControllerLeft::NewOs);
  EXPECT_TRUE(outcome.left != ControllerLeft::Untouched || fixture.controller->told.empty());
  const auto promise = std::ranges::find(kPromises, outcome.left, &Promise::left);
  ASSERT_NE(promise, std::end(kPromises));
  EXPECT_FALSE(hasLink && promise->needsNoLink);
  EXPECT_THAT(promise->now, testing::Contains(fixture.controller->Truth()));
  if (!isSwitched) return;
  fixture.controller->Restart();
  EXPECT_THAT(promise->switched, testing::Contains(fixture.controller->Truth()));
}

TEST(AurexOsCuts, LeaveWhatIsSaidAndCanBeRepeated) {
  struct Row {
    const char* fault;
    bool hasLink;  // at the end of the download
    int failures;  // of the exchanges, at least
  };
  const Row rows[] = {
      {"refuse:code=09", true, 30},
      {"refuse:code=0F", true, 30},
      {"busy", true, 30},
      {"reset", true, 20},
      {"noreply", true, 0},
      {"late:ms=1500", true, 5},
      {"lost:at=9,away=1000", true, 8},
      {"lost:away=400000", false, 30},
      {"lost:dir=in,away=400000", false, 30},
  };
  constexpr int kExchanges = 40;  // some more than there are
  for (const Row& row : rows) {
    int failures = 0;
    for (int nth = 1; nth <= kExchanges; ++nth) {
      const std::string fault =
          std::string(row.fault) + (std::string(row.fault).contains(':') ? "," : ":") + "nth=" + std::to_string(nth);
      SCOPED_TRACE(fault);
      AurexOsFixture fixture("K220-22-R1");
      fixture.Put("K220", {"4.75", 3}, {"1.30", 0});
      ASSERT_TRUE(fixture.simulated->UseFaults({fault}));
      failures += fixture.Download() ? 0 : 1;
      ExpectIsKept(fixture, row.hasLink, nth % 2 == 0);
      ASSERT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
      ASSERT_EQ(fixture.controller->Truth(), kNew);
    }
    EXPECT_GE(failures, row.failures) << row.fault;
  }
}

}  // namespace
}  // namespace kv::test
