#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>

#include "clone/CloneInfo.h"
#include "tests/download/ProjectFixture.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/FullDisk.h"

namespace kv::test {
namespace {

using testing::IsEmpty;

// A compact project with another last line, or one more behind that.
std::string WithoutLastLine(const std::string& content) {
  return content.substr(0, content.rfind('\n', content.size() - 2) + 1);
}
std::string WithLine(const std::string& content, std::string line) {
  std::ranges::reverse(line);
  for (char& c : line) c = static_cast<char>(c + std::ranges::count(content, '\n') % 3);
  return content + line + "\r\n";
}

// A compact project of these commands.
std::string Commands(const std::vector<std::string>& lines) {
  std::string content = SampleProject(kCompact);
  std::size_t head = 0;
  for (int line = 0; line < 3; ++line) head = content.find('\n', head) + 1;
  content.resize(head);
  for (const std::string& line : lines) content = WithLine(content, line);
  return content;
}

// The order, how it ends, and what is in the controller then, are those of the record: here and below.
TEST(ProjectDownload, TellsAndSendsInTheSettledOrder) {
  for (const bool isCompact : {false, true}) {
    ProjectFixture fixture(isCompact ? kCompact : kAurex);
    fixture.Put(
        isCompact ? SampleProject("Q51", 200)
                  : Good(sim::MakeProject(ModelCalled(kAurex), {.name = "Hall 7", .os = {"4.60", 18}, .size = 5000})));
    (void)fixture.Download();
  }
}

TEST(ProjectDownload, RefusesBeforeAnythingIsChanged) {
  const auto needs = [](const char* version, int build) {
    return Good(sim::MakeProject(ModelCalled(kAurex), {.name = "N", .os = {version, build}, .size = 9}));
  };
  const std::string cut = WithoutLastLine(SampleProject(kCompact));
  const std::string badLine = WithLine(WithoutLastLine(SampleProject(kCompact, 200)), "LD000000");
  const auto with = [](const char* line) { return WithLine(WithoutLastLine(SampleProject(kCompact, 200)), line); };
  const std::string early = Commands({"CCS", "FW00000000AA", "DE", "DI", "CCE"});
  const auto late = [](const char* line) { return Commands({"DE", "DI", "CCE", line}); };
  const std::string large = SampleProject(kCompact, 60000);
  const auto change = [](ProjectFixture& fixture) { fixture.Put(SampleProject(kAurex, 6000)); };
  const auto vanish = [](ProjectFixture& fixture) { std::filesystem::remove(fixture.path); };
  const auto load = [](ProjectFixture& fixture) { fixture.controller->Tell("CCM"); };
  struct Case {
    const char* what;
    const char* model;
    std::string content;   // of the file; empty: one that fits
    const char* before;    // what the controller has been told
    const char* declined;  // the question that is answered with No
    std::function<void(ProjectFixture&)> meanwhile = nullptr;
  };
  const Case rows[] = {
      {"other model", kAurex, SampleProject("K330"), "", ""},
      {"O/S too old", kAurex, needs("4.60", 20), "", ""},
      {"newer version", kAurex, needs("4.61", 0), "", ""},
      {"K230", "K230", needs("9.60", 0), "", ""},
      {"boot loader", kAurex, "", "CCB", ""},
      {"boot loader", kCompact, "", "CCB", ""},
      {"colour", "K450-45", "", "", ""},
      {"no", kAurex, "", "", "Download it?"},
      {"other model", kCompact, SampleProject("Q51"), "", "Do you want to"},
      {"cut", kCompact, cut, "", "does not end with"},
      {"too large", kCompact, large, "", ""},
      {"bad line", kCompact, badLine, "", ""},
      {"takes the O/S away", kCompact, with("CCB"), "", ""},
      {"writes other memory", kCompact, with("WDF0030000004EEEEEEEE"), "", ""},
      {"runs half a project", kCompact, with("CCR"), "", ""},
      {"is not known", kCompact, with("CCSX"), "", ""},
      {"writes too early", kCompact, early, "", ""},
      {"writes too late", kCompact, late("LN41"), "", ""},
      {"a second project", kCompact, late("DE"), "", ""},
      {"stops again", kCompact, late("CCS"), "", ""},
      {"reads past the end", kCompact, with("RX00FFFFFF"), "", ""},
      {"no bytes, but a place", kCompact, with("FW00000010"), "", ""},
      {"loading", kAurex, "", "CCM", "End that load?"},
      {"loading", kCompact, "", "CCM", "End that load?"},
      {"box closed", kCompact, "", "", "about to enter Stop"},
      {"changed", kAurex, "", "", "", change},
      {"vanished", kAurex, "", "", "", vanish},
      {"somebody else", kAurex, "", "", "", load},
      {"dry run", kAurex, "", "", ""},
      {"dry run", kCompact, "", "", ""},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(std::string(row.what) + " " + row.model);
    ProjectFixture fixture(row.model);
    if (!row.content.empty()) fixture.Put(row.content);
    if (*row.before != '\0') fixture.controller->Tell(row.before);
    fixture.desk.declined = row.declined;
    fixture.desk.onBox = [&](const MessageBox& box) {
      if (row.meanwhile && box.buttons == PromptButtons::YesNo) row.meanwhile(fixture);
    };
    fixture.order.isDryRun = row.what == std::string("dry run");
    (void)fixture.Download();
    EXPECT_THAT(fixture.controller->told, IsEmpty());
  }
}

// Whatever the lines are, and their order: what the controller would refuse behind DE, and what can be known of it, is
// refused before. On a good line such a download is begun only when it gets through.
TEST(ProjectDownload, ErasesNoProjectForAFileWithALineThatIsRefused) {
  constexpr std::array kLines = {"CCS",
                                 "DI",
                                 "LN4142",
                                 "LN",
                                 "LN"
                                 "4142434445464748494A4B4C4D4E4F505152535455",
                                 "LD000000",
                                 "LD000000AA",
                                 "LD00002055",
                                 "LD00FFF0BB",
                                 "LD0FFFF0BB",
                                 "FW00000000",
                                 "FW00000040",
                                 "FW00000040CC",
                                 "FWF0000000CC",
                                 "RX00000000",
                                 "RXFFFFFFF0",
                                 "RX0",
                                 "DRS000020",
                                 "DRS00FF02",
                                 "DRS000000",
                                 "ID",
                                 "FI",
                                 "PV000A",
                                 "CCE",
                                 "CCR",
                                 "DE"};
  std::minstd_rand random(1);
  int erased = 0;
  for (int file = 0; file < 600 && !testing::Test::HasFailure(); ++file) {
    std::vector<std::string> lines(random() % 3);
    const auto any = [&] { return std::string(kLines[random() % kLines.size()]); };
    std::ranges::generate(lines, any);
    for (const char* pair : {"DE", "DI"}) lines.emplace_back(pair);
    for (auto more = random() % 4; more > 0; --more) lines.push_back(any());
    if (random() % 4 > 0) lines.emplace_back("CCE");
    std::string all;
    for (const std::string& line : lines) all += line + " ";
    SCOPED_TRACE(all);
    ProjectFixture fixture(kCompact);
    fixture.Put(Commands(lines));
    (void)fixture.Download();
    const bool isErased = std::ranges::count(fixture.controller->told, "DE") > 0;
    EXPECT_EQ(isErased, fixture.outcome.end == DownloadEnd::Done) << OutcomeText(fixture.outcome);
    EXPECT_TRUE(isErased || fixture.controller->told.empty());
    erased += isErased ? 1 : 0;
  }
  EXPECT_GT(erased, 60);
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
    ProjectFixture fixture{std::string(model.name)};
    fixture.desk.declined = "Do you want to continue?";
    for (const bool fits : {false, true}) {
      for (const File& file : files) {
        if (fits != (file.reported == model.reported && !model.HasColour())) continue;
        SCOPED_TRACE(std::string(model.name) + " gets a project of " + file.reported);
        fixture.isCompact = file.isCompact;
        fixture.Put(file.content);
        EXPECT_EQ(fixture.Download(), fits) << fixture.outcome.reason;
        EXPECT_EQ(fixture.controller->told.empty(), !fits);
        EXPECT_EQ(fixture.Found(), fits ? "new project" : "no project");
      }
    }
  }
}

TEST(ProjectDownload, IsNoSuccessWhenTheControllerSaysOtherwise) {
  struct Case {
    const char* model;
    std::function<void(ProjectFixture& fixture)> spoil;
    std::string what = "a fault";
  };
  const auto whileCompared = [](const char* does) {
    return [=](ProjectFixture& fixture) {
      fixture.controller->onText = [&fixture, does](std::string_view sent, sim::TextReply&) {
        if (sent.starts_with("RX")) fixture.controller->Tell(does);
      };
    };
  };
  const auto flashError = [](ProjectFixture& fixture) {
    fixture.controller->onBlock = [&fixture](const sim::BlockRequest& request, sim::BlockReply& reply) {
      if (request.opCode == 7 && std::ranges::count(fixture.desk.log, "69") > 0) reply.payload[1] = 3;
    };
  };
  const auto behindReset = [](const char* does) {
    return [=](ProjectFixture& fixture) {
      fixture.pacer.OnTurn([&fixture, does] {
        const bool isSent = !fixture.desk.log.empty() && fixture.desk.log.back() == "CCE";
        if (isSent) fixture.controller->Tell(does);
      });
    };
  };
  const auto fault = [](const char* rule) { return [=](ProjectFixture& fixture) { fixture.UseFaults({rule}); }; };
  const std::string whole = WithoutLastLine(SampleProject(kCompact));
  const auto withoutReset = [whole, whileCompared](const char* does) {
    return [=](ProjectFixture& fixture) {
      fixture.Put(whole);
      whileCompared(does)(fixture);
    };
  };
  const auto refusesBehindReset = [whole](ProjectFixture& fixture) {
    fixture.Put(WithLine(WithLine(whole, "CCE"), "FI"));
    fixture.UseFaults({"refuse:on=FI,code=0D"});
  };
  std::vector<Case> rows = {
      {kCompact, refusesBehindReset},
      {kCompact, fault("lie:on=LD,nth=2")},
      {kCompact, fault("refuse:on=RX,nth=3,code=0D")},
      {kAurex, fault("lie:on=block,nth=5")},
      {kAurex, flashError},
      {kAurex, fault("lost:on=CC,nth=2,at=30,away=300000")},
  };
  for (const char* does : {"CCS", "CCE", "CCM", "CCB", "LN4E6F"}) {
    rows.push_back({kCompact, behindReset(does), does});
    rows.push_back({kCompact, whileCompared(does), std::string(does) + " while it is compared"});
    rows.push_back({kCompact, withoutReset(does), std::string(does) + " without a reset"});
  }
  std::set<std::string> succeeded;
  for (const Case& row : rows) {
    for (const int before : {0, 1, 2}) {  // no project, another one, and one of the same name
      ProjectFixture fixture(row.model);
      if (before == 1) fixture.Prepare();
      if (before == 2) (void)fixture.Download();
      row.spoil(fixture);
      if (fixture.Download()) succeeded.insert(row.what);
    }
  }
  // What the reset undoes, and what is over before it: with each of the three projects.
  EXPECT_THAT(succeeded, testing::UnorderedElementsAre("CCS while it is compared", "CCS without a reset", "CCE",
                                                       "CCE while it is compared", "LN4E6F"));
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
  };
  const Case rows[] = {
      {kAurex, renamed},
      {kAurex, aurex},
      {kCompact, compact},
      {kCompact, WithLine(WithLine(compact, "CCE"), "DI")},
      {kCompact, WithLine(WithLine(compact, "LN"), "CCE")},
      {kCompact, WithLine(WithLine(compact, "LN48610062"), "CCE")},
  };
  for (const Case& row : rows) {
    ProjectFixture fixture(row.model);
    fixture.Prepare();
    fixture.Put(row.content);
    (void)fixture.Download();
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
    EXPECT_EQ(std::ranges::count(link.calls, "OpenLink 0 0") > 0, row.state == '-') << "where nobody answers";
  }
}

TEST(ProjectDownload, WaitsWithoutALimitUntilItIsStopped) {
  for (const bool stopsAtOnce : {false, true}) {
    ProjectFixture fixture(kAurex);
    fixture.Prepare();
    int polls = 0;
    fixture.controller->onBlock = [&](const sim::BlockRequest& request, sim::BlockReply& reply) {
      if (request.opCode != 7) return;
      ++polls;
      reply.payload[2] = 'P';
    };
    fixture.desk.declined = stopsAtOnce ? "" : "Stop it all the same?";
    fixture.pacer.After(std::chrono::minutes(9), [&] { fixture.pacer.RequestStop(); });
    fixture.pacer.After(std::chrono::minutes(10), [&] {
      fixture.desk.declined.clear();
      fixture.pacer.RequestStop();
    });
    (void)fixture.Download();
    EXPECT_NEAR(polls, (stopsAtOnce ? 9 : 10) * 600, 60);
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
    const std::filesystem::path file = fixture.home.Path() / "before.kdf";
    BackupBefore backup(file, {fixture.desk, fixture.desk, fixture.desk, fixture.pacer, fixture.pacer});
    fixture.order.backup = &backup;
    std::optional<FullDisk> full;
    if (row.fault == std::string("somebody")) {
      fixture.desk.onBox = [&](const MessageBox& box) {
        if (box.text.contains("Created Successfully")) fixture.controller->Tell("WDF00300000020102");
      };
    } else if (row.fault == std::string("full disk")) {
      full.emplace();
    } else if (*row.fault != '\0') {
      fixture.UseFaults({row.fault});
    }
    (void)fixture.Download();
    const DownloadOutcome& outcome = fixture.outcome;
    EXPECT_EQ(outcome.end == DownloadEnd::Done, row.isGood) << outcome.reason;
    EXPECT_EQ(outcome.cause, row.isGood ? DownloadCause::None : DownloadCause::Backup);
    EXPECT_EQ(outcome.left, row.left);
    EXPECT_EQ(std::filesystem::exists(file), row.isGood || row.fault == std::string("somebody"));
    EXPECT_EQ(std::ranges::count(fixture.desk.log, "66"), row.isGood ? 1 : 0);
    if (row.isGood) {
      EXPECT_TRUE(InspectClone(file)->IsSound());
    }
  }
}

}  // namespace
}  // namespace kv::test
