// Each download is cut at each of its exchanges: it says what is left, as the page has it, and then gets through.

#include <gmock/gmock.h>

#include "tests/download/AurexOsFixture.h"
#include "tests/download/CompactOsFixture.h"
#include "tests/download/ProjectFixture.h"
#include "tests/support/MarkdownTables.h"
#include "tests/support/WeatherSeeds.h"

namespace kv::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Cut {
  const char* fault;  // without the number of the exchange
  int least;          // of the exchanges that end the download so
  int most;
};

enum class Sent { Project, AurexOs, CompactOs };

struct Download {
  const char* name;
  Sent sent;
  sim::SimulatorOptions options;
  std::vector<Cut> cuts;
  bool isSerial = true;
  int exchanges = 46;  // some more than there are
};

void PrintTo(const Download& download, std::ostream* out) {
  *out << download.name;
}

std::unique_ptr<DownloadFixture> Make(const Download& download, std::uint64_t seed = 1, int baud = 0) {
  sim::SimulatorOptions options = download.options;
  options.seed = seed;
  options.baud = baud;
  switch (download.sent) {
    case Sent::Project:
      return std::make_unique<ProjectFixture>(options);
    case Sent::AurexOs:
      return std::make_unique<AurexOsFixture>(options);
    case Sent::CompactOs:
      break;
  }
  return std::make_unique<CompactOsFixture>(options, download.isSerial);
}

// The page tells for each sentence after which message it is said, what the controller may be then, and what it is
// after it has been switched off and on.
void ExpectIsOnThePage(DownloadFixture& fixture, const Download& download, bool isSwitched, bool isOneCut) {
  const std::string whose = fixture.controller->UnderstandsBlocks() ? "an Aurex" : "a compact";
  const std::string what = download.sent == Sent::Project ? "a project" : "an O/S";
  const auto rows = RowsBelow({"Said of " + whose + " controller that was sent " + what}, "downloads.md");
  const auto& told = fixture.controller->told;
  const std::string last = told.empty() ? "nothing" : "`" + CommandOf(told.back()) + "`";
  const std::string now = fixture.Found();
  if (isSwitched) fixture.controller->Restart();
  const std::string then = isSwitched ? fixture.Found() : "";
  SCOPED_TRACE(last + ", " + now + ", " + then + ": " + OutcomeText(fixture.outcome));
  const auto row =
      std::ranges::find(rows, LeftBehindText(fixture.outcome.left), [](const Row& each) { return each.front(); });
  ASSERT_NE(row, rows.end());
  const auto lists = [](const std::string& each) {
    return testing::AnyOf(HasSubstr("; " + each + ";"), HasSubstr("; " + each + ", when"));
  };
  EXPECT_TRUE(!isOneCut || row->at(1).contains(last));
  EXPECT_THAT("; " + row->at(2) + ";", lists(now));
  if (!isSwitched) return;
  EXPECT_THAT("; " + row->at(3) + ";", lists(then));
}

void ExpectIsNew(const DownloadFixture& fixture) {
  EXPECT_THAT(fixture.Found(), testing::AnyOf(testing::EndsWith("new project"), testing::EndsWith("new O/S")));
}

// The download with a fault, then once more on a good line.
bool CutBy(const std::string& fault, const Download& download, bool isSwitched) {
  SCOPED_TRACE(fault);
  const auto fixture = Make(download);
  fixture->Prepare();
  const auto* aurex = dynamic_cast<const AurexOsFixture*>(fixture.get());
  const std::string memory = aurex != nullptr && !download.options.boot ? aurex->Memory() : "";
  fixture->UseFaults({fault});
  const bool isLie = fault.starts_with("lie");
  bool mayWait = isLie;  // for what was not done
  fixture->pacer.After(std::chrono::minutes(5), [&] {
    if (mayWait) fixture->pacer.RequestStop();
  });
  const bool isDone = fixture->Download();
  mayWait = false;
  EXPECT_TRUE(!isDone || memory.empty() || aurex->Memory() == memory) << "the memory is not what it was";
  if (!isLie) {
    EXPECT_EQ(fixture->outcome.end, isDone ? DownloadEnd::Done : DownloadEnd::Failed);
  }
  EXPECT_EQ(fixture->outcome.reason.empty(), isDone);
  const ControllerLeft left = fixture->outcome.left;
  const bool isGuess = left == ControllerLeft::BootLoaderPerhaps || left == ControllerLeft::OsPerhaps;
  EXPECT_FALSE(aurex != nullptr && isGuess && !fault.contains("away=400000")) << "it could have been asked";
  ExpectIsOnThePage(*fixture, download, isSwitched, !isLie);
  EXPECT_TRUE(fixture->DownloadAgain()) << OutcomeText(fixture->outcome);
  ExpectIsNew(*fixture);
  return isDone;
}

class Cuts : public testing::TestWithParam<Download> {};

TEST_P(Cuts, LeaveWhatIsSaidAndTheDownloadThenGetsThrough) {
  const Download& download = GetParam();
  const bool isLong = download.exchanges > 100;
  for (const Cut& cut : download.cuts) {
    int failures = 0;
    for (int nth = 1; nth < download.exchanges && !HasFailure(); nth += nth < 24 || !isLong ? 1 : 151) {
      failures += CutBy(cut.fault + std::to_string(nth), download, nth % 2 == 0) ? 0 : 1;
    }
    EXPECT_GE(failures, cut.least) << cut.fault;
    EXPECT_LE(failures, cut.most) << cut.fault;
  }
}

class Trips : public Cuts {};

TEST_P(Trips, AStopIsMeantOrTheDownloadGoesThrough) {
  for (const std::string answer : {"no", "yes", "nobody"}) {
    int stopped = 0;
    for (int moment = 1; moment <= 55; moment += 6) {
      SCOPED_TRACE(answer + " " + std::to_string(moment));
      const auto fixture = Make(GetParam(), 1, 57600);
      fixture->Prepare();
      fixture->order.asksBeforeStop = answer != "nobody";
      fixture->desk.declined = answer == "no" ? "Stop it all the same?" : "";
      int turns = 0;
      const auto stop = [&] {
        if (++turns == moment * moment / 4 + 1) fixture->pacer.RequestStop();
      };
      fixture->pacer.OnTurn(stop);
      fixture->pacer.OnDoEvents(stop);
      const bool isDone = fixture->Download();
      const DownloadCause cause = fixture->outcome.cause;
      EXPECT_TRUE(isDone || cause == DownloadCause::User || cause == DownloadCause::Unproven)
          << fixture->outcome.reason;
      const bool isAurexProject = GetParam().name == std::string("AurexProject");
      EXPECT_TRUE(!isDone || !isAurexProject || std::ranges::count(fixture->desk.log, "65") == 3) << "a topic twice";
      ExpectIsOnThePage(*fixture, GetParam(), false, false);
      stopped += isDone ? 0 : 1;
    }
    EXPECT_TRUE(answer == "no" ? stopped <= 3 : stopped >= 2) << answer << " " << stopped;
  }
}

class Weather : public Cuts {};

// That the failure names where: the exchange that it failed at, or what was found instead of what was expected.
void ExpectNamesThePlace(const DownloadOutcome& outcome) {
  const std::string doing = outcome.link.doing.substr(std::min<std::size_t>(1, outcome.link.doing.size()));
  EXPECT_EQ(outcome.end, DownloadEnd::Failed);
  EXPECT_THAT(outcome.reason, HasSubstr(doing)) << "but for its capital letter";
  const bool isLine = outcome.reason.contains("\nLine ");  // of memory that is written back
  EXPECT_TRUE(!doing.empty() || isLine || outcome.cause != DownloadCause::Link) << outcome.reason;
  constexpr std::string_view kVerbs[] = {"failed", "answered with", "reports", "is not", "says", "did not", "\nLine "};
  EXPECT_TRUE(std::ranges::any_of(kVerbs, [&](auto verb) { return outcome.reason.contains(verb); })) << outcome.reason;
}

// Whatever the weather: what was to be in the controller, or a plain failure that names the place; and then the same
// download gets through. How many get through, the fair weather tells.
TEST_P(Weather, ItIsRightOrAPlainFailure) {
  const int seeds = WeatherSeeds(GetParam().exchanges > 100 ? 6 : 24);
  int done = 0;
  for (int seed = 1; seed <= seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const auto fixture = Make(GetParam(), static_cast<std::uint64_t>(seed));
    fixture->Prepare();
    fixture->UseFaults(kRoughWeather);
    fixture->desk.retries = 5;
    const bool isDone = fixture->Download();
    done += isDone ? 1 : 0;
    EXPECT_EQ(isDone, fixture->outcome.reason.empty());
    if (!isDone) ExpectNamesThePlace(fixture->outcome);
    ExpectIsOnThePage(*fixture, GetParam(), seed % 2 == 0, false);
    EXPECT_TRUE(fixture->DownloadAgain()) << OutcomeText(fixture->outcome);
    ExpectIsNew(*fixture);
  }
  RecordProperty("done", done);
  std::printf("%s: %d of %d downloads got through at once, the others at the second try\n", GetParam().name, done,
              seeds);
}

class FairWeather : public Cuts {};

// Every request gets over what happens to it, so every download gets through, whatever the bytes of the damage are. But
// memory that is written back: its lines go once each, which is settled.
TEST_P(FairWeather, IsAlwaysGotThrough) {
  for (std::uint64_t seed = 1; seed <= 3; ++seed) {
    SCOPED_TRACE(seed);
    const auto fixture = Make(GetParam(), seed);
    fixture->Prepare();
    fixture->UseFaults(kFairWeather);
    EXPECT_TRUE(fixture->Download()) << OutcomeText(fixture->outcome);
    ExpectIsNew(*fixture);
  }
}

// A call that is lost is dialled again; what cannot be gone on with is told as on every other line.
TEST(Downloads, GoOverAModemAlsoWhenACallIsLost) {
  const Download downloads[] = {
      {"AurexProject", Sent::Project, Plc(kAurex), {}},
      {"CompactProject", Sent::Project, Plc(kCompact), {}},
      {"AurexOs", Sent::AurexOs, Plc(kAurex), {}},
      {"Q51", Sent::CompactOs, Plc("Q51"), {}},
  };
  for (const Download& download : downloads) {
    for (int lost = 0; lost < 40; lost += 4) {
      SCOPED_TRACE(std::string(download.name) + " " + std::to_string(lost));
      const auto fixture = Make(download);
      fixture->settings.transport = Transport::Modem;
      fixture->settings.serialPort = "COM3";
      fixture->settings.modem.number = "0,12345";
      fixture->Prepare();
      if (lost > 0) fixture->UseFaults({"lost:at=9,away=1000,nth=" + std::to_string(lost)});
      const bool isDone = fixture->Download();
      EXPECT_TRUE(isDone || lost > 0) << OutcomeText(fixture->outcome);
      EXPECT_THAT(fixture->driver.LinkDescription(), HasSubstr("modem 0,12345"));
      ExpectIsOnThePage(*fixture, download, false, false);
      EXPECT_TRUE(isDone || fixture->DownloadAgain()) << OutcomeText(fixture->outcome);
      ExpectIsNew(*fixture);
    }
  }
}

const std::vector<Cut> kProjectCuts = {
    {"lost:away=60000,nth=", 20, 40}, {"refuse:code=0D,nth=", 20, 40}, {"reset:nth=", 9, 40}, {"lost:nth=", 1, 2},
    {"noreply:nth=", 0, 0},           {"wrongunit:nth=", 0, 0},        {"busy:nth=", 0, 9},   {"lie:nth=", 3, 12},
};
const std::vector<Cut> kAurexOsCuts = {
    {"refuse:code=09,nth=", 30, 40},
    {"busy:nth=", 25, 40},
    {"lie:nth=", 8, 30},
    {"reset:nth=", 20, 40},
    {"noreply:nth=", 0, 0},
    {"late:ms=1500,nth=", 5, 12},
    {"lost:at=9,away=1000,nth=", 8, 12},
    {"lost:away=400000,nth=", 25, 42},
    {"lost:dir=in,away=400000,nth=", 25, 42},
};
const std::vector<Cut> kInBootCuts = {
    {"lie:nth=", 8, 30},
    {"reset:nth=", 12, 40},
    {"lost:away=400000,nth=", 25, 42},
};
const std::vector<Cut> kMemoryCuts = {
    {"refuse:code=09,nth=", 16, 30},
    {"reset:nth=", 4, 30},
    {"lost:away=400000,nth=", 16, 30},
};
const std::vector<Cut> kCompactOsCuts = {
    {"lie:nth=", 5, 30},
    {"busy:nth=", 0, 14},
    {"lost:away=60000,nth=", 30, 42},
    {"reset:nth=", 15, 30},
};
const std::vector<Cut> kReplyCuts = {
    {"lost:at=0,away=60000,nth=", 30, 42},
    {"noreply:max=1,nth=", 0, 0},
    {"cut:after=9,nth=", 0, 0},
};

const std::vector<Cut> kLostAnswers = {{"lost:at=0,away=60000,nth=", 20, 42}};

const std::vector<Download> kDownloads = {
    {"AurexProject", Sent::Project, Plc(kAurex), kProjectCuts},
    {"CompactProject", Sent::Project, Plc(kCompact), kProjectCuts},
    {"AurexOs", Sent::AurexOs, Plc(kAurex), kAurexOsCuts},
    {"AurexOsInBoot", Sent::AurexOs, Plc(kAurex, "", true), kInBootCuts},
    {"Q51Serial", Sent::CompactOs, Plc("Q51"), kCompactOsCuts},
    {"Q51Tcp", Sent::CompactOs, Plc("Q51"), kCompactOsCuts, false},
    {"Q51SerialInBoot", Sent::CompactOs, Plc("Q51", "", true), kCompactOsCuts},
    {"Q50Serial", Sent::CompactOs, Plc("Q50"), kCompactOsCuts},
    {"PR1Serial", Sent::CompactOs, Plc("PR1"), kCompactOsCuts},
    {"PX1Serial", Sent::CompactOs, Plc("PX1"), kCompactOsCuts},
    {"BRIOSerial", Sent::CompactOs, Plc("BRIO"), kCompactOsCuts},
};
const std::vector<Download> kOthers = {
    {"AurexOsWithMemory", Sent::AurexOs, Plc(kAurex, "3.73"), kMemoryCuts, true, 900},
    {"Q51Replies", Sent::CompactOs, Plc("Q51"), kReplyCuts},
    {"BRIOReplies", Sent::CompactOs, Plc("BRIO"), kReplyCuts},
    {"AurexProjectReplies", Sent::Project, Plc(kAurex), kLostAnswers},
    {"CompactProjectReplies", Sent::Project, Plc(kCompact), kLostAnswers},
};

std::string NameOf(const testing::TestParamInfo<Download>& row) {
  return row.param.name;
}
INSTANTIATE_TEST_SUITE_P(OfEach, Cuts, testing::ValuesIn(kDownloads), NameOf);
INSTANTIATE_TEST_SUITE_P(Also, Cuts, testing::ValuesIn(kOthers), NameOf);
INSTANTIATE_TEST_SUITE_P(OfEach, Trips, testing::ValuesIn(kDownloads), NameOf);
INSTANTIATE_TEST_SUITE_P(OfEach, Weather, testing::ValuesIn(kDownloads), NameOf);
INSTANTIATE_TEST_SUITE_P(OfEach, FairWeather, testing::ValuesIn(kDownloads), NameOf);
INSTANTIATE_TEST_SUITE_P(Also, Weather, testing::Values(kOthers.front()), NameOf);

}  // namespace
}  // namespace kv::test
