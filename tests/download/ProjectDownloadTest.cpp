#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clone/CloneInfo.h"
#include "tests/download/ProjectFixture.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/FullDisk.h"
#include "tests/support/MarkdownTables.h"
#include "tests/support/SilentCloner.h"
#include "tests/support/WeatherSeeds.h"

namespace kv::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A compact project with another last line, or one more behind that.
std::string WithoutLastLine(const std::string& content) {
  return content.substr(0, content.rfind('\n', content.size() - 2) + 1);
}
std::string WithLine(const std::string& content, std::string line) {
  std::ranges::reverse(line);
  for (char& c : line) c = static_cast<char>(c + std::ranges::count(content, '\n') % 3);
  return content + line + "\r\n";
}

TEST(ProjectDownload, TellsAndSendsInTheSettledOrder) {
  const std::string aurex =
      "(i) Note: Note that the O/S currently installed in the PLC is higher than the O/S in project being downloaded; "
      "consent; CCS; (!) Downloader: The controller is about to enter Stop mode.; PV000A; "
      "Status Send project password ...; 66; Bar 120; 2; Status Send project topics ...; Bar 3; 65; 65; 65; "
      "Status Programing flash and memory ...; 69; Bar 120; (!) Downloader: The controller is about to Reset.; CCE; "
      "Bar 1; Status ; (i) Downloader: Download was successful.; Bar 1; Status ; ";
  const std::string compact =
      "Bar 12; Status Sending download file ...; (?) Warning: The program you are downloading is intended for "
      "controller model Q51-2-R34.\r\nThe model to which you are downloading the programm is Q50-2-R34.\r\nDo you "
      "want to continue?; consent; (!) Downloader: The controller is about to enter Stop mode.; CCS; DE; DI; DI; DI; "
      "LN; LD; LD; LD; LD; Status Comparing with what was sent ...; Status Sending download file ...; (!) Downloader: "
      "The controller is about to Reset.; CCE; (i) Downloader: Download was "
      "successful. ; Bar 1; Status ; ";
  for (const bool isCompact : {false, true}) {
    ProjectFixture fixture(isCompact ? kCompact : kAurex);
    fixture.Put(
        isCompact ? SampleProject("Q51", 200)
                  : Good(sim::MakeProject(ModelCalled(kAurex), {.name = "Hall 7", .os = {"4.60", 18}, .size = 5000})));
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end, DownloadEnd::Done) << OutcomeText(outcome);
    EXPECT_EQ(outcome.left, ControllerLeft::NewProject);
    EXPECT_EQ(fixture.controller->StateAndProject(), "RHall 7");
    ASSERT_TRUE(fixture.review);
    EXPECT_EQ(fixture.review->after.project, "Hall 7");
    std::string log;
    for (const std::string& entry : fixture.log) {
      log += (entry.contains("is about to be replaced.") ? "consent" : entry) + "; ";
    }
    EXPECT_EQ(log, isCompact ? compact : aurex);
  }
}

TEST(ProjectDownload, RefusesBeforeAnythingIsChanged) {
  using Spoil = std::function<void(ProjectFixture & fixture)>;
  const auto needs = [](const char* version, int build) -> Spoil {
    return [=](ProjectFixture& fixture) {
      fixture.Put(Good(sim::MakeProject(ModelCalled(kAurex), {.name = "N", .os = {version, build}, .size = 9})));
    };
  };
  const auto decline = [](const char* question) -> Spoil {
    return [=](ProjectFixture& fixture) { fixture.answers.declined = question; };
  };
  const auto meanwhile = [](const std::function<void(ProjectFixture&)>& happens) -> Spoil {
    return [=](ProjectFixture& fixture) { fixture.answers.meanwhile = [&fixture, happens] { happens(fixture); }; };
  };
  const auto change = meanwhile([](ProjectFixture& fixture) { fixture.Put(SampleProject(kAurex, 6000)); });
  const auto vanish = meanwhile([](ProjectFixture& fixture) { std::filesystem::remove(fixture.path); });
  const auto load = meanwhile([](ProjectFixture& fixture) { fixture.controller->Tell("CCM"); });
  const auto cut = [](ProjectFixture& fixture) {
    fixture.Put(WithoutLastLine(SampleProject(kCompact)));
    fixture.answers.declined = "does not end with";
  };
  const auto large = [](ProjectFixture& fixture) { fixture.Put(SampleProject(kCompact, 60000)); };
  const auto badLine = [](ProjectFixture& fixture) {
    fixture.Put(WithLine(WithoutLastLine(SampleProject(kCompact, 200)), "LD000000"));
  };
  const auto loading = [](ProjectFixture& fixture) {
    fixture.controller->Tell("CCM");
    fixture.answers.declined = "End that load?";
  };
  const auto boot = [](ProjectFixture& fixture) { fixture.controller->Tell("CCB"); };
  struct Case {
    const char* what;
    const char* model;
    const char* fileModel;  // null: the controller's
    Spoil spoil;
    DownloadEnd end;
    DownloadCause cause;
    const char* told;  // in the boxes or the reason
  };
  using enum DownloadEnd;
  using enum DownloadCause;
  const Case rows[] = {
      {"other model", kAurex, "K330", {}, Refused, NotFit, "(!) Warning: The program you are downloading is intended"},
      {"O/S too old", kAurex, nullptr, needs("4.60", 20), Refused, NotFit, "(i) Download error: This project cannot"},
      {"newer version", kAurex, nullptr, needs("4.61", 0), Refused, NotFit, "is an outdated version."},
      {"K230", "K230", nullptr, needs("9.60", 0), Refused, NotFit, "The program you are downloading"},
      {"boot loader", kAurex, nullptr, boot, Refused, NotFit, "Download an O/S"},
      {"compact boot loader", kCompact, nullptr, boot, Refused, NotFit, "Download an O/S"},
      {"colour", "K450-45", nullptr, {}, Refused, NotFit, "colour screen"},
      {"no", kAurex, nullptr, decline("Download it?"), Declined, User, "not confirmed"},
      {"no, other model", kCompact, "Q51", decline("Do you want to continue?"), Declined, NotFit, "made for a Q51"},
      {"cut", kCompact, nullptr, cut, Declined, DownloadCause::File, "may have been cut"},
      {"too large", kCompact, nullptr, large, Refused, NotFit, "goes up to byte 60000 of the project memory"},
      {"bad line", kCompact, nullptr, badLine, Failed, DownloadCause::File, "Line 12 of the project file: expected an"},
      {"loading", kAurex, nullptr, loading, Declined, User, "was not to be ended"},
      {"loading", kCompact, nullptr, loading, Declined, User, "was not to be ended"},
      {"changed", kAurex, nullptr, change, Failed, DownloadCause::File, "has been changed since"},
      {"vanished", kAurex, nullptr, vanish, Failed, DownloadCause::File, "Hall 7.dai"},
      {"somebody else", kAurex, nullptr, load, Failed, Link, "Somebody else has begun to load"},
      {"dry run", kAurex, nullptr, [](ProjectFixture& f) { f.order.isDryRun = true; }, WouldGoOn, None, "Download it?"},
      {"dry run", kCompact, nullptr, [](ProjectFixture& f) { f.order.isDryRun = true; }, WouldGoOn, None, "Download"},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(std::string(row.what) + " " + row.model);
    ProjectFixture fixture(row.model);
    if (row.fileModel != nullptr) fixture.Put(SampleProject(row.fileModel));
    if (row.spoil) row.spoil(fixture);
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end, row.end) << outcome.reason;
    EXPECT_EQ(outcome.cause, row.cause);
    EXPECT_EQ(outcome.left, ControllerLeft::Untouched);
    std::string told = outcome.reason;
    for (const std::string& entry : fixture.log) told += "\n" + entry;
    EXPECT_THAT(told, HasSubstr(row.told));
    EXPECT_THAT(fixture.Changes(), IsEmpty());
  }
}

TEST(ProjectDownload, NoPairOfControllerAndFileHarms) {
  struct File {
    std::string reported;
    bool isCompact;
    std::string content;
  };
  std::vector<File> files;
  for (const sim::Model& model : sim::AllModels()) {
    const bool isNew = model.versionStyle == sim::VersionStyle::Digits;
    const sim::SampleProject sample{.name = "Hall 7", .os = {isNew ? "4.60" : "1.10", 19}, .size = 100};
    files.push_back(
        {std::string(model.reported), model.family == sim::Family::Compact, Good(sim::MakeProject(model, sample))});
  }
  for (const sim::Model& model : sim::AllModels()) {
    const std::string name(model.name);
    for (const File& file : files) {
      SCOPED_TRACE(name + " gets a project of " + file.reported);
      ProjectFixture fixture(name);
      fixture.isCompact = file.isCompact;
      fixture.Put(file.content);
      fixture.answers.declined = "Do you want to continue?";
      const DownloadOutcome outcome = fixture.Download();
      const bool fits = file.reported == model.reported && !model.HasColour();
      EXPECT_EQ(outcome.end == DownloadEnd::Done, fits) << outcome.reason;
      EXPECT_EQ(fixture.Changes().empty(), !fits);
      EXPECT_EQ(fixture.controller->StateAndProject(), fits ? "RHall 7" : "R");
    }
  }
}

// Names of the page on downloads, and what is said for each.
std::string NameOf(ControllerLeft left) {
  for (const Row& row : RowsBelow({"Left as", "What is said"}, "downloads.md")) {
    if (row[1] == LeftBehindText(left)) return row[0];
  }
  return "(no sentence of the page)";
}

// What the page says is left, by the last command that a controller has taken.
std::map<std::string, std::string> DocumentedFor(const std::string& kind) {
  std::map<std::string, std::string> rows;
  for (const Row& row : RowsBelow({kind + ": the last that the controller has taken", "Left as"}, "downloads.md")) {
    rows[row[0]] = row[1] + ", " + row[2];
  }
  return rows;
}

// Which state and project each word about what is left may stand for.
bool IsAs(ControllerLeft left, const std::string& found) {
  const std::string project = found.substr(1);
  switch (left) {
    case ControllerLeft::Untouched:
      return found == "ROld";
    case ControllerLeft::Stopped:
      return found == "SOld" || found == "ROld";  // whether it was told is not known
    case ControllerLeft::ProjectBegun:
      return found == "LOld" || found == "SOld";
    case ControllerLeft::ProjectErased:
      return project.empty() || project == "Hall 7";
    case ControllerLeft::Programming:
      return found == "LOld";
    case ControllerLeft::ProjectWaits:
      return found == "LOld" || project == "Hall 7";
    case ControllerLeft::ProjectPerhaps:
      return project == "Hall 7" || found == "LOld";
    default:
      return found == "RHall 7";
  }
}

TEST(ProjectDownload, SaysWhatIsLeftWhereverItIsCutAndGetsThroughThen) {
  const char* const faults[] = {"lost:away=60000,nth=", "refuse:code=0D,nth=", "reset:nth=", "noreply:nth=",
                                "wrongunit:nth=",       "lost:nth=",           "busy:nth="};
  for (const char* model : {kAurex, kCompact}) {
    auto documented = DocumentedFor(model == std::string(kAurex) ? "`.dai`" : "`.d50`");
    for (const std::string fault : faults) {
      int cuts = 0;
      for (int n = 1; n < 40; ++n) {
        SCOPED_TRACE(std::string(model) + " " + fault + std::to_string(n));
        ProjectFixture fixture(model);
        fixture.HoldOldProject();
        fixture.UseFault(fault + std::to_string(n));
        const DownloadOutcome cut = fixture.Download();
        fixture.EndFaults();
        const std::string found = fixture.controller->StateAndProject();
        EXPECT_TRUE(IsAs(cut.left, found)) << LeftBehindText(cut.left) << " / " << found << "\n" << cut.reason;
        if (cut.end == DownloadEnd::Done) continue;  // it got over it, or there was no such exchange
        if (fault == "busy:nth=" && cut.left == ControllerLeft::Untouched) continue;
        ++cuts;
        EXPECT_EQ(cut.end, DownloadEnd::Failed);
        EXPECT_NE(cut.reason, "");
        const std::string last = fixture.Changes().empty() ? "-" : fixture.Changes().back();
        EXPECT_THAT(documented[last], HasSubstr(NameOf(cut.left))) << last << "\n" << cut.reason;
        fixture.pacer.Sleep(std::chrono::seconds(70));
        const DownloadOutcome again = fixture.Download();
        EXPECT_EQ(again.end, DownloadEnd::Done) << again.reason;
        EXPECT_EQ(fixture.controller->StateAndProject(), "RHall 7");
      }
      if (fault == "lost:nth=") {  // the link comes back: few exchanges cannot be found out about
        EXPECT_EQ(cuts, model == std::string(kAurex) ? 2 : 1);
      } else if (fault == "busy:nth=") {
        EXPECT_EQ(cuts, 0) << "one that is busy is asked again";
      } else {
        EXPECT_EQ(cuts > 8, fault.contains("away") || fault.starts_with("re")) << fault << cuts;
      }
    }
  }
}

TEST(ProjectDownload, IsRightOrAPlainFailureInAnyWeather) {
  const std::vector<std::string> weather = {
      "damage:rate=0.0005",      "noreply:p=0.02",       "late:p=0.02,ms=700",     "double:p=0.02", "wrongunit:p=0.01",
      "garbage:p=0.01,bytes=60", "lost:p=0.01,away=900", "lost:p=0.004,away=9000", "reset:p=0.003", "busy:p=0.003"};
  int done = 0;
  const int seeds = WeatherSeeds(60);
  for (int seed = 1; seed <= seeds; ++seed) {
    for (const char* model : {kAurex, kCompact}) {
      SCOPED_TRACE(std::string(model) + " seed " + std::to_string(seed));
      sim::SimulatorOptions options;
      options.seed = static_cast<std::uint64_t>(seed);
      ProjectFixture fixture(model, options);
      fixture.HoldOldProject();
      EXPECT_TRUE(fixture.simulated->UseFaults(weather));
      const DownloadOutcome outcome = fixture.Download();
      const std::string found = fixture.controller->StateAndProject();
      EXPECT_TRUE(IsAs(outcome.left, found)) << LeftBehindText(outcome.left) << " / " << found << outcome.reason;
      if (outcome.end == DownloadEnd::Done) ++done;
      EXPECT_EQ(outcome.end == DownloadEnd::Done, outcome.reason.empty());
    }
  }
  EXPECT_GT(done, seeds / 2);
}

TEST(ProjectDownload, IsNoSuccessWhenTheControllerSaysOtherwise) {
  struct Case {
    const char* model;
    std::function<void(ProjectFixture& fixture)> spoil;
    const char* told;
    ControllerLeft left = ControllerLeft::ProjectPerhaps;
    DownloadCause cause = DownloadCause::Unproven;
  };
  const auto atReset = [](const char* does) {
    return [=](ProjectFixture& fixture) {
      fixture.controller->onText = [&fixture, does](std::string_view sent) {
        if (sent == "CCE") fixture.controller->Tell(does);
      };
    };
  };
  const auto flashError = [](ProjectFixture& fixture) {
    fixture.controller->onBlock = [&fixture](const sim::BlockRequest& request, sim::BlockReply& reply) {
      if (request.opCode == 7 && std::ranges::count(fixture.log, "69") > 0) reply.payload[1] = 3;
    };
  };
  const auto stopped = [](ProjectFixture& fixture) {
    fixture.pacer.OnTurn([&fixture] {
      const bool isSent = !fixture.log.empty() && fixture.log.back() == "CCE";
      if (isSent) fixture.controller->Tell("CCS");
    });
  };
  const Case rows[] = {
      {kCompact, atReset("LN4E6F"), "the controller says \"No\", and the file \"Hall 7\""},
      {kCompact, [](ProjectFixture& f) { f.UseFault("lie:on=LD,nth=2"); },
       "at address 000040 of the project memory the controller holds FF instead of ", ControllerLeft::ProjectErased,
       DownloadCause::Differs},
      {kAurex, flashError, "reports a flash error (3)", ControllerLeft::FlashFailed, DownloadCause::Reply},
      {kCompact, stopped, "Its state is S"},
      {kAurex, [](ProjectFixture& f) { f.UseFault("lost:on=CC,nth=2,at=30,away=300000"); }, "not identified after"},
  };
  for (const Case& row : rows) {
    ProjectFixture fixture(row.model);
    row.spoil(fixture);
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end, DownloadEnd::Failed);
    EXPECT_EQ(outcome.cause, row.cause) << outcome.reason;
    EXPECT_EQ(outcome.left, row.left);
    EXPECT_THAT(outcome.reason, HasSubstr(row.told));
    const auto box = Contains(AllOf(HasSubstr("(!) Downloader: All was sent, but"), HasSubstr(row.told)));
    if (row.cause != DownloadCause::Reply) {
      EXPECT_THAT(fixture.log, box);
    }
    EXPECT_THAT(fixture.log, Not(Contains(HasSubstr("successful"))));
  }
}

TEST(ProjectDownload, TakesWhatTheFileGivesTheControllerForTheSuccess) {
  std::string aurex = SampleProject(kAurex);
  std::string renamed = aurex;
  renamed[70] = static_cast<char>(renamed[70] ^ 'H' ^ 'B');  // "Ball 7" in the head, "Hall 7" in its topic
  aurex.resize(150);
  aurex[10] = 10;  // scrambled 0
  const std::string compact = WithoutLastLine(SampleProject(kCompact));
  struct Case {
    const char* model;
    std::string content;
    const char* isThen;
    const char* asked;
    ControllerLeft left = ControllerLeft::NewProject;
  };
  const Case rows[] = {
      {kAurex, renamed, "RHall 7",
       "The file is named \"Ball 7\", but the controller's project will be named \"Hall 7\""},
      {kAurex, aurex, "R", "gives the controller no name"},
      {kCompact, compact, "LHall 7", "does not end with", ControllerLeft::ProjectWaits},
      {kCompact, WithLine(WithLine(compact, "CCE"), "DI"), "RHall 7", "does not end with"},
      {kCompact, WithLine(WithLine(compact, "LN"), "CCE"), "R", "the controller's project will have no name"},
      {kCompact, WithLine(WithLine(compact, "LN48610062"), "CCE"), "RHa", "will be named \"Ha\""},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(row.asked);
    ProjectFixture fixture(row.model);
    fixture.HoldOldProject();
    fixture.Put(row.content);
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end, DownloadEnd::Done) << outcome.reason;
    EXPECT_EQ(outcome.left, row.left);
    EXPECT_EQ(fixture.controller->StateAndProject(), row.isThen);
    EXPECT_THAT(fixture.log, Contains(HasSubstr(row.asked)));
  }
}

TEST(ProjectDownload, TheControllerAfterItsResetIsTheOneThatRunsAgain) {
  struct Case {
    char state;
    std::uint32_t serial;
    int runsAfter;  // seconds; 0: never
    int took;
    LinkErrorCode error = LinkErrorCode::None;
  };
  const Case rows[] = {{'L', 7, 3, 3},   {'L', 7, 0, 8},
                       {'B', 7, 0, 8},   {'R', 8, 0, 0, LinkErrorCode::OtherController},
                       {'-', 7, 12, 12}, {'-', 7, 0, 30, LinkErrorCode::NoReply}};
  for (const Case& row : rows) {
    VirtualPacer pacer;
    FakeChannel link;
    link.version = {kAurex, "10", "4.60", "19"};
    if (row.state != '-') link.info = {.serialNumber = row.serial, .state = row.state, .projectName = "P"};
    const auto run = [&] { link.info = {.serialNumber = row.serial, .state = 'R', .projectName = "P"}; };
    if (row.runsAfter > 0) pacer.After(std::chrono::seconds(row.runsAfter), run);
    const auto found = FindAfterReset(link, pacer, 7);
    EXPECT_EQ(found ? LinkErrorCode::None : found.error().code, row.error);
    EXPECT_EQ(pacer.Now().time_since_epoch(), std::chrono::seconds(row.took)) << row.state << row.runsAfter;
    EXPECT_EQ(found && found->info.state == 'R', row.runsAfter > 0);
  }
}

TEST(ProjectDownload, WaitsWithoutALimitUntilItIsStopped) {
  for (const bool stopsAtOnce : {false, true}) {
    ProjectFixture fixture(kAurex);
    fixture.HoldOldProject();
    int polls = 0;
    fixture.controller->onBlock = [&](const sim::BlockRequest& request, sim::BlockReply& reply) {
      if (request.opCode != 7) return;
      ++polls;
      reply.payload[2] = 'P';
    };
    fixture.answers.declined = stopsAtOnce ? "" : "Stop it all the same?";
    fixture.pacer.After(std::chrono::minutes(9), [&] { fixture.pacer.RequestStop(); });
    fixture.pacer.After(std::chrono::minutes(10), [&] {
      fixture.answers.declined.clear();
      fixture.pacer.RequestStop();
    });
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end, DownloadEnd::Stopped);
    EXPECT_EQ(outcome.left, ControllerLeft::ProjectBegun);
    EXPECT_THAT(outcome.reason, HasSubstr("says that its state is L and its project \"Old\""));
    EXPECT_EQ(std::ranges::count_if(fixture.log, [](const auto& e) { return e.starts_with("Note For a minute"); }), 1);
    EXPECT_NEAR(polls, (stopsAtOnce ? 9 : 10) * 600, 60);
    EXPECT_EQ(std::ranges::count(fixture.log, "Bar 120"), polls / 120 + 1) << "the bar goes round";
    EXPECT_EQ(fixture.controller->StateAndProject(), "LOld");
  }
}

TEST(ProjectDownload, AStopIsMeantOrTheDownloadGoesThrough) {
  for (const char* model : {kAurex, kCompact}) {
    for (const char* answer : {"no", "yes", "nobody"}) {
      int stopped = 0;
      for (int moment = 1; moment <= 60; moment += 6) {
        SCOPED_TRACE(std::string(model) + " " + answer + " " + std::to_string(moment));
        sim::SimulatorOptions options;
        options.baud = 57600;
        ProjectFixture fixture(model, options);
        fixture.HoldOldProject();
        fixture.order.asksBeforeStop = answer != std::string("nobody");
        if (answer == std::string("no")) fixture.answers.declined = "Stop it all the same?";
        int turns = 0;
        const auto stop = [&] {
          if (++turns == moment * moment / 4 + 1) fixture.pacer.RequestStop();
        };
        fixture.pacer.OnTurn(stop);
        fixture.pacer.OnDoEvents(stop);
        const DownloadOutcome outcome = fixture.Download();
        const std::string found = fixture.controller->StateAndProject();
        EXPECT_TRUE(IsAs(outcome.left, found)) << LeftBehindText(outcome.left) << " / " << found << outcome.reason;
        const bool isStopped = outcome.cause == DownloadCause::User || outcome.cause == DownloadCause::Unproven;
        EXPECT_TRUE(isStopped || outcome.end == DownloadEnd::Done) << outcome.reason;
        EXPECT_TRUE(isStopped || fixture.isCompact || std::ranges::count(fixture.log, "65") == 3) << "a topic twice";
        stopped += isStopped ? 1 : 0;
      }
      EXPECT_EQ(stopped > 2, answer != std::string("no")) << model << answer << stopped;
    }
  }
}

TEST(ProjectDownload, TakesABackupFirstAndGoesOnOnlyWhenItIsGood) {
  struct Case {
    const char* fault;
    bool isGood;
    ControllerLeft left = ControllerLeft::NewProject;
    const char* model = "AurexQ50";
  };
  const Case rows[] = {{"", true},
                       {"refuse:on=GI,code=08", false, ControllerLeft::Untouched},
                       {"lost:nth=30,away=60000", false, ControllerLeft::Stopped},
                       {"somebody", false, ControllerLeft::Untouched},
#ifndef _WIN32
                       {"full disk", false, ControllerLeft::Untouched},
#endif
                       {"", false, ControllerLeft::Untouched, kCompact}};
  for (const Case& row : rows) {
    SCOPED_TRACE(row.fault);
    ProjectFixture fixture(row.model);
    SilentCloner cloner;
    const std::filesystem::path file = fixture.folder.Path() / "before.kdf";
    BackupBefore backup(file, {cloner, fixture.answers, fixture.answers, fixture.pacer, fixture.pacer});
    fixture.order.backup = &backup;
    std::optional<FullDisk> full;
    if (row.fault == std::string("somebody")) {
      fixture.answers.onBox = [&](const std::string& text) {
        if (text.contains("Created Successfully")) fixture.controller->Tell("WDF00300000020102");
      };
    } else if (row.fault == std::string("full disk")) {
      full.emplace();
    } else if (*row.fault != '\0') {
      fixture.UseFault(row.fault);
    }
    const DownloadOutcome outcome = fixture.Download();
    EXPECT_EQ(outcome.end == DownloadEnd::Done, row.isGood) << outcome.reason;
    EXPECT_EQ(outcome.cause, row.isGood ? DownloadCause::None : DownloadCause::Backup);
    EXPECT_EQ(outcome.left, row.left);
    EXPECT_EQ(std::filesystem::exists(file), row.isGood || row.fault == std::string("somebody"));
    EXPECT_EQ(std::ranges::count(fixture.log, "66"), row.isGood ? 1 : 0);
    if (row.isGood) {
      EXPECT_TRUE(InspectClone(file)->IsSound());
    }
  }
}

}  // namespace
}  // namespace kv::test
