// The O/S download of an Aurex controller, cut at each of its exchanges.

#include <gmock/gmock.h>

#include <set>

#include "AurexOsFixture.h"
#include "tests/support/MarkdownTables.h"

namespace kv::test {
namespace {

// What a controller is, in the words of the page.
std::string NameOf(const std::string& truth) {
  if (truth.starts_with("BOOT|")) return "boot loader";
  const bool isNew = truth.contains("|4.75|03|");
  switch (truth.back()) {
    case 'R':
      return isNew ? "new O/S" : "old O/S";
    case 'S':
      return isNew ? "new O/S, stopped" : "old O/S, stopped";
    default:
      return isNew ? "new O/S, loading" : "old O/S, loading";
  }
}

// "65" of "65 3.17", "WD" of a line of memory.
std::string LastOf(const std::vector<std::string>& told) {
  if (told.empty()) return "nothing";
  const std::string& last = told.back();
  if (last.starts_with("W")) return last.substr(0, 2);
  return last.substr(0, last.find(' '));
}

// The page tells for each sentence after which message it is said, what the controller may be then, and what it is
// after it has been switched off and on.
void ExpectIsOnThePage(const AurexOsFixture& fixture, bool isSwitched) {
  static const auto rows = RowsBelow({"Said of an Aurex controller that was sent an O/S"}, "downloads.md");
  const DownloadOutcome& outcome = fixture.outcome;
  const std::string last = LastOf(fixture.controller->told);
  const std::string now = NameOf(fixture.controller->Truth());
  if (isSwitched) fixture.controller->Restart();
  const std::string then = isSwitched ? NameOf(fixture.controller->Truth()) : "";
  SCOPED_TRACE(last + ", " + now + ", " + then + ": " + OutcomeText(outcome));
  EXPECT_EQ(outcome.reason.empty(), outcome.end == DownloadEnd::Done);
  EXPECT_TRUE(outcome.end != DownloadEnd::Done || outcome.left == ControllerLeft::NewOs);
  const auto row = std::ranges::find(rows, LeftBehindText(outcome.left), [](const Row& each) { return each.front(); });
  ASSERT_NE(row, rows.end());
  EXPECT_THAT(row->at(1), testing::HasSubstr(last));
  const auto lists = [](const std::string& each) { return testing::ContainsRegex("; " + each + "(;|, when)"); };
  EXPECT_THAT("; " + row->at(2) + ";", lists(now));
  if (!isSwitched) return;
  EXPECT_THAT("; " + row->at(3) + ";", lists(then));
}

// Some of each segment of RAM.
std::string MemoryOf(const AurexOsFixture& fixture) {
  std::string memory;
  for (const char* address : {"00100000", "00101700", "00110000", "00114D00", "00220000", "00220200"}) {
    memory += fixture.controller->Tell("RM0000" + std::string(address) + "008000000000").text.substr(6);
  }
  return memory;
}

struct Cut {
  const char* fault;
  bool hasLink;  // at the end of the download
  int failures;  // of the exchanges, at least
  bool isInBoot = false;
};

// The download with the fault at its n-th exchange, then once more on a good line.
bool CutAt(int nth, const Cut& cut, const char* installed) {
  const bool hasKey = std::string_view(cut.fault).contains(':');
  const std::string fault = std::string(cut.fault) + (hasKey ? "," : ":") + "nth=" + std::to_string(nth);
  SCOPED_TRACE(fault);
  AurexOsFixture fixture("K220-22-R1", installed, cut.isInBoot);
  fixture.Put("K220", {"4.75", 3}, {"1.30", 0});
  EXPECT_TRUE(fixture.simulated->UseFaults({fault}));
  const std::string before = MemoryOf(fixture);
  const bool isDone = fixture.Download();
  EXPECT_TRUE(!isDone || cut.isInBoot || (before.size() > 1000 && MemoryOf(fixture) == before))
      << "the memory is not what it was";
  const ControllerLeft left = fixture.outcome.left;
  const bool isGuess = left == ControllerLeft::BootLoaderPerhaps || left == ControllerLeft::OsPerhaps;
  EXPECT_FALSE(cut.hasLink && isGuess) << "it could have been asked";
  ExpectIsOnThePage(fixture, nth % 2 == 0);
  EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
  EXPECT_EQ(NameOf(fixture.controller->Truth()), "new O/S");
  return isDone;
}

TEST(AurexOsCuts, LeaveWhatIsSaidAndCanBeRepeated) {
  const Cut cuts[] = {
      {"refuse:code=09", true, 30},
      {"refuse:code=0F", true, 30},
      {"busy", true, 30},
      {"reset", true, 20},
      {"noreply", true, 0},
      {"late:ms=1500", true, 5},
      {"lost:at=9,away=1000", true, 8},
      {"lost:away=400000", false, 30},
      {"lost:dir=in,away=400000", false, 30},
      {"lost:away=400000", false, 25, true},
      {"reset", true, 12, true},
  };
  constexpr int kExchanges = 40;  // some more than there are
  for (const Cut& cut : cuts) {
    int failures = 0;
    for (int nth = 1; nth <= kExchanges && !testing::Test::HasFailure(); ++nth) {
      failures += CutAt(nth, cut, "4.60") ? 0 : 1;
    }
    EXPECT_GE(failures, cut.failures) << cut.fault;
  }
}

// Where the memory is saved before and written back afterwards there are many hundred exchanges more.
TEST(AurexOsCuts, LeaveTheMemoryWhereItCanBeFound) {
  const Cut cuts[] = {{"refuse:code=09", true, 16}, {"reset", true, 4}, {"lost:away=400000", false, 16}};
  for (const Cut& cut : cuts) {
    int failures = 0;
    for (int nth = 8; nth < 900 && !testing::Test::HasFailure(); nth += nth < 24 ? 1 : 151) {
      failures += CutAt(nth, cut, "3.73") ? 0 : 1;
    }
    EXPECT_GE(failures, cut.failures) << cut.fault;
  }
}

}  // namespace
}  // namespace kv::test
