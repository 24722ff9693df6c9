#include <gmock/gmock.h>

#include "KvCmDrv1/ports/SimulatedPort.h"
#include "download/DownloadOutcome.h"
#include "tests/download/Samples.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

struct DownloadVerbs : ::testing::Test {
  CommandFixture fixture;

  DownloadVerbs() {
    fixture.home.Put("hall.dai", SampleProject("K220-22-R1"));
    fixture.home.Put("hall.d50", SampleProject("Q50", 200));
    fixture.home.Put("cut.dai", SampleProject("K220-22-R1").substr(0, 2000));
    fixture.home.Put("q50.dai", SampleProject("AurexQ50"));
    fixture.home.Put("no.dai", std::string(200, 'x'));
    const auto aurex = fixture.home.Path() / "Os Aurex";
    PutFile(aurex / "K220/AurexK220v47503.kos", SampleOs("K220-22-R1", {"4.75", 3}));
    PutFile(aurex / "K220/AurexK220v37310.kos", SampleOs("K220-22-R1", {"3.73", 10}));
    PutFile(aurex / "K220/AurexFontv1300.kft", SampleFonts("K220-22-R1", {"1.30", 0}));
    PutFile(aurex / "K330/AurexK330v47503.kos", SampleOs("K330", {"4.75", 3}));
    PutFile(aurex / "K222/AurexK220v47503.kos", SampleOs("K220-22-R1", {"4.75", 3}));
    PutFile(fixture.home.Path() / "OS/OS51/Q51v4712.OSI", SampleOs("Q51", {"4.71", 2}));
    fixture.home.Put("AurexFontv1300.kft", SampleFonts("K220-22-R1", {"1.30", 0}));
    fixture.home.Put("AurexK220v47503.kos", SampleOs("K220-22-R1", {"4.75", 3}));
    PutFile(fixture.home.Path() / "cut/AurexK220v47503.kos", SampleOs("K220-22-R1", {"4.75", 3}).substr(0, 300));
  }
};

TEST_F(DownloadVerbs, InfoTellsWhatEachKindOfFileIs) {
  fixture.home.Put("AurexK222v46019.kos", SampleOs("K220-32", {"4.60", 19}));
  fixture.home.Put("AurexFontv1312.kft", SampleFonts("K330", {"1.31", 2}));
  fixture.home.Put("Q51v4712.OSI", SampleOs("Q51", {"4.71", 2}));
  const std::pair<const char*, const char*> rows[] = {
      {"@hall.dai",
       "kind              project, Aurex family\nmodel             K220-22-R1\nproject           Hall 7\n"
       "neededOsVersion   460\nneededOsBuild     19\ntopics            3\nbytes             5020\n"},
      {"@hall.d50",
       "kind              project, compact family\nmodel             Q50-2-R34\nproject           Hall 7\n"
       "commands          9\nendsWithReset     true\n"},
      {"@AurexK222v46019.kos",
       "kind              O/S, Aurex family\nmodel             K222\nversion           4.60\nbuild             19\n"
       "remark            beta\nbytes             200\n"
       "topic             1  00080000  120 bytes, compressed on its way\n"
       "topic             2  00080078  60 bytes, compressed on its way\n"
       "topic             3  000800B4  20 bytes\n"},
      {"@AurexFontv1312.kft",
       "kind              system fonts, Aurex family\nmodel             K330\nversion           1.31\n"
       "build             2\nbytes             200\n"},
      {"@Q51v4712.OSI",
       "kind              O/S, compact family\nmodel             Q51\nversion           4.71\nbuild             2\n"
       "remark            beta\nbytes             256\n"},
  };
  for (const auto& [file, told] : rows) {
    const Result result = fixture.Run(std::string("download info ") + file);
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, ::testing::EndsWith(told));
    EXPECT_THAT(fixture.Run(std::string("--json download info ") + file).out, HasSubstr("\"model\": "));
  }
}

TEST_F(DownloadVerbs, WhatGoesInIsAskedAboutAndReportedAfterwards) {
  struct Row {
    const char* model;
    const char* what;
    const char* asked;
    const char* begins;  // the first command, which a dry run does not send
    const char* after;
  };
  const Row rows[] = {
      {"K220-22-R1", "project @hall.dai", "Download it? [y/N] yes (--dry-run)", "/01CCS", "\"project\": \"Hall 7\""},
      {"Q50", "project @hall.d50", "Download it? [y/N] yes (--dry-run)", "/01CCS", "\"project\": \"Hall 7\""},
      {"K220-22-R1", "os", "Continue ? [y/N] yes (--dry-run)", "/01CCB", "4.75 (B03)"},
      {"Q51", "os", "Continue ? [y/N] yes (--dry-run)", "/01CCB", "4.71 (B02)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.model) + " " + row.what);
    const std::string download = std::string("download ") + row.what;
    const Result dry = fixture.On(row.model, download + " --dry-run");
    EXPECT_EQ(dry.exit, 0);
    EXPECT_THAT(dry.out, ::testing::StartsWith("The download would go on now."));
    EXPECT_THAT(dry.err, AllOf(HasSubstr("To send: "), HasSubstr(row.asked)));
    EXPECT_THAT(dry.trace, Not(HasSubstr(row.begins)));
    const Result done = fixture.On(row.model, "--yes --json " + download);
    EXPECT_EQ(done.exit, 0) << done.err;
    EXPECT_THAT(done.out, AllOf(HasSubstr("\"after\": {"), HasSubstr(row.after), HasSubstr("\"file\": ")));
  }
  fixture.ReplaceController("K220-22-R1");
  EXPECT_THAT(fixture.On("K220-22-R1", "--yes download project @hall.dai").out,
              HasSubstr("Project       (none)                      Hall 7\n"));
  EXPECT_THAT(fixture.On("K220-22-R1", "identify").out, HasSubstr("Hall 7"));
  EXPECT_THAT(fixture.On("Q51", "download os --list").out, HasSubstr("  * O"));
  // The family whose last box does not tell what is in the controller now is told it here.
  EXPECT_THAT(fixture.On("K220-22-R1", "--yes download os").out, HasSubstr(LeftBehindText(ControllerLeft::NewOs)));
  EXPECT_THAT(fixture.On("Q51", "--yes --json download os").out, Not(HasSubstr(LeftBehindText(ControllerLeft::NewOs))));
}

// Whether commands or block messages went out that change something, in either family.
bool HasChanges(const std::string& trace) {
  constexpr const char* kCommands[] = {"CCB", "CCS",  "CCE",  "CCM", "CCR", "FS05", "OSE", "OSC", "OSP",
                                       "FW",  "CB0A", "CPSR", "WD",  "WO",  "DE",   "LN",  "LD",  "PV"};
  constexpr const char* kMessages[] = {"project", "program", "download data", "transfer"};
  const auto block = trace.substr(std::min(trace.find(": block "), trace.size()));
  return std::ranges::any_of(kCommands, [&](const std::string& each) { return trace.contains("/01" + each); }) ||
         std::ranges::any_of(kMessages, [&](const char* each) { return block.contains(each); });
}

// Neither into one that runs its boot loader, nor when everything is consented to beforehand.
TEST_F(DownloadVerbs, AnOsGoesIntoNoControllerButItsOwn) {
  std::vector<std::string> files = {"hall.dai", "hall.d50"};
  for (const char* name : {"K220-22-R1", "K220-32", "K330", "Q50", "Q51", "Q58", "PX1", "PR1"}) {
    const sim::OsVersion os{name[0] == 'K' ? "4.75" : "4.71", 2};
    files.push_back(sim::OsFileName(ModelCalled(name), os));
    fixture.home.Put(files.back(), SampleOs(name, os));
  }
  for (const sim::Model& model : sim::AllModels()) {
    const std::string name(model.name);
    const bool isAurex = model.UnderstandsBlocks() && !model.HasColour();
    fixture.home.Put("AurexFontv1300.kft", SampleFonts(isAurex ? name : "K330", {"1.30", 0}));
    for (const bool boot : {false, true}) {
      fixture.options.boot = boot;
      fixture.ReplaceController(name);
      int done = 0;
      for (const std::string& file : files) {
        SCOPED_TRACE(name + " " + file + (boot ? " in boot" : ""));
        const bool hasFonts = isAurex || file.ends_with(".kos");
        const std::string given = " --file @" + file + (hasFonts ? " --fonts @AurexFontv1300.kft" : "");
        const std::string yes = "--yes --password 1 download ";
        const Result result = fixture.On("'" + name + "'", yes + "os --lose-project --lose-values" + given);
        if (result.exit == 0) {
          ++done;
          fixture.ReplaceController(name);
          EXPECT_THAT(file, HasSubstr(isAurex ? "Aurex" + std::string(model.osModel) : std::string(model.osModel)));
          continue;
        }
        EXPECT_EQ(result.exit, 4) << result.err;
        EXPECT_FALSE(HasChanges(result.trace)) << result.trace;
      }
      EXPECT_EQ(done, model.HasColour() ? 0 : 1) << name;
    }
  }
}

// Each consent is given for itself; what is saved before is written back.
TEST_F(DownloadVerbs, AnOsThatLaysOutTheMemoryAnewWantsTwoConsentsMore) {
  fixture.options.osVersion = "3.73";
  const std::string download = "--yes --password 1 download os";
  EXPECT_THAT(fixture.On("K220-22-R1", download + " --dry-run").err,
              AllOf(HasSubstr("The next questions are about the clone."),
                    HasSubstr("about to STOP, Continue? [y/N] yes (--dry-run)")));
  EXPECT_EQ(fixture.On("K220-22-R1", "--yes download os --dry-run").exit, 4) << "the clone wants a password";
  EXPECT_THAT(fixture.On("K220-22-R1", download).err, HasSubstr("--lose-project consents"));
  EXPECT_THAT(fixture.On("K220-22-R1", download + " --lose-project").err, HasSubstr("--lose-values consents"));
  const Result done = fixture.On("K220-22-R1", download + " --lose-project --lose-values");
  EXPECT_EQ(done.exit, 0) << done.err;
  EXPECT_THAT(done.err, HasSubstr("Clone Restore Successfully."));

  fixture.options.osVersion = "4.90";  // newer than all that there is
  EXPECT_THAT(fixture.On("Q51", "--yes download os").err, HasSubstr("--older-os consents"));
  EXPECT_EQ(fixture.On("Q51", "--yes download os --older-os").exit, 0);
  fixture.home.Put("Sessions/Default/KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K330\r\n");
  fixture.home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nModel=Q51\r\n");
  EXPECT_THAT(fixture.Run("download os --dry-run").err,
              HasSubstr("is of the model Q51, but the selected model is K330"));
}

TEST_F(DownloadVerbs, ABootLoaderIsFoundAtItsSpeed) {
  sim::SimulatorOptions options;
  options.model = "Q51";
  options.boot = true;
  options.baud = 57600;
  const auto controller = sim::SimulatedController::Create(options).value();
  fixture.makePort = [&](const LinkSettings& link, Pacer&, ListeningSocket*) {
    auto port = std::make_unique<SimulatedPort>(controller->NewLine(), "", fixture.pacer);
    EXPECT_TRUE(port->SetBaudRate(link.baudRate));
    return port;
  };
  const Result refused = fixture.Run("--link serial:COM3,19200 download project @hall.d50 --dry-run");
  EXPECT_EQ(fixture.Run("--link serial:COM3,19200 read MI 0").exit, 3) << "whoever does not download is not surprised";
  EXPECT_EQ(refused.exit, 4);
  EXPECT_THAT(refused.err, AllOf(HasSubstr("found at 57600 baud"), HasSubstr("if there is still one in it")));
}

TEST_F(DownloadVerbs, ABackupIsTakenFirst) {
  const std::string download = "--yes --password 1 download project @q50.dai --backup @before.kdf ";
  EXPECT_EQ(fixture.On("AurexQ50", download).exit, 2) << "nobody can be asked whether the program may be stopped";
  EXPECT_EQ(fixture.On("AurexQ50", download + "--dry-run").exit, 0) << "which only shows the question";
  const Result done = fixture.On("AurexQ50", download + "--stop");
  EXPECT_EQ(done.exit, 0) << done.err;
  EXPECT_EQ(fixture.Run("clone info @before.kdf").exit, 0);
  EXPECT_EQ(fixture.On("AurexQ50", download + "--stop").exit, 1) << "it would be replaced";
}

TEST_F(DownloadVerbs, FailWithACodeForScriptsAndSayWhatIsLeft) {
  const FailingCommand rows[] = {
      {"--link sim:Q50 download project @hall.txt", 2, "usage", "is no project"},
      {"--link sim:Q50 download info @hall.d50 --dry-run", 2, "usage", "--dry-run"},
      {"download info @missing.dai", 6, "badFile", "missing.dai"},
      {"--link sim:K220-22-R1 download project @cut.dai", 6, "badFile", "the file was cut"},
      {"--link sim:K220-22-R1 download project @no.dai", 6, "badFile", "It is not a legal Cadenza file."},
      {"--link sim:Q50 download project @hall.dai --dry-run", 4, "notFit", "Nothing was changed in the controller."},
      {"--link sim:K330 download project @hall.d50 --yes", 4, "notFit", "does not know its commands"},
      {"--link sim:Q51 download project @hall.d50 --yes", 1, "notConfirmed", "nobody to ask; --other-model consents"},
      {"--link sim:Q50 download project @hall.d50 --yes --password 1 --backup @b.kdf --stop", 4, "backup", "cannot be"},
      {"--link sim:Q50 download project @hall.d50 --yes", 5, "differs", "at address 000040 of the project memory",
       "lie:on=LD,nth=2"},
      {"--link sim:K220-22-R1 download project @hall.dai --yes", 7, "unsure", "what it held before is still there",
       "lost:on=block,nth=3,away=60000"},
      {"--link sim:Q50 download project @hall.d50 --yes", 4, "refused", "old project is erased",
       "refuse:on=LD,code=0D"},
      {"download os --fonts @hall.dai", 2, "usage", "--fonts belong to a --file"},
      {"download os --list --dry-run", 2, "usage", "--list only shows"},
      {"download project @hall.dai --lose-values", 2, "usage", "mean nothing with project"},
      {"--link sim:K670-T40 download os", 4, "notFit", "There is a mismatch between PLC Type"},
      {"--link sim:K330 download os", 6, "badFile", "--fonts FILE.kft"},
      {"--link sim:K330 download os --file @q50.OSI", 4, "notFit", "name a .kos file"},
      {"--link sim:K220-32 download os --file @q50.dai", 6, "badFile", "There is no file of system fonts"},
      {"--link sim:K220-32 download os", 4, "notFit", "No O/S file was chosen, and none fits"},
      {"--link sim:K220-22-R1 download os --dry-run --file @cut/AurexK220v47503.kos", 6, "badFile", "was cut"},
      {"--link sim:K220-22-R1 download os --dry-run --file @gone.kos", 6, "badFile", "gone.kos"},
      {"--link sim:K220-22-R1 download os --file @AurexFontv1300.kft", 4, "notFit", "does not match OS Type"},
      {"--link sim:K220-22-R1 download os --yes --file @AurexK220v47503.kos --fonts @AurexK220v47503.kos", 6, "badFile",
       "AurexK220v47503.kos"},
      {"--link sim:K220-22-R1 download os --file @q50.dai", 4, "notFit", "does not match OS Type"},
      {"--link sim:K220-22-R1 download os --yes", 4, "refused", "wants --lose-project and --lose-values",
       "refuse:on=block,nth=4,code=0F"},
      {"--link sim:K220-22-R1 download os --yes", 7, "linkLost", "still be programming the new O/S",
       "lost:dir=in,on=block,nth=13,away=600000"},
      {"--link sim:K220-22-R1 download project @hall.dai --yes", 5, "differs", "counts 2 topics instead of 3",
       "lie:on=block,nth=5"},
      {"--link sim:K220-22-R1 download project @hall.dai --yes", 7, "unsure", "wants --end-load, too",
       "lost:on=block,nth=5,away=60000"},
  };
  for (const FailingCommand& row : rows) {
    fixture.ReplaceController("Q50");
    fixture.ReplaceController("K220-22-R1");
    fixture.ReplaceController("K330");
    fixture.options.faults.clear();
    fixture.ExpectFailure(row);
  }
  // Each of the four downloads, its reset the n-th command that begins with "CC": it never comes back, or as another.
  const std::pair<const char*, int> downloads[] = {
      {"--link sim:K220-22-R1 --yes download project @hall.dai", 2},
      {"--link sim:Q50 --yes download project @hall.d50", 2},
      {"--link sim:K220-22-R1 --yes download os", 2},
      {"--link sim:Q51 --yes download os", 4},
  };
  for (const auto& [line, reset] : downloads) {
    const std::string model = std::string(line).substr(11, line[11] == 'K' ? 10 : 3);
    for (const bool isExchanged : {false, true}) {
      fixture.options.faults.clear();
      fixture.options.serialNumber = 1;
      fixture.ReplaceController(model);
      fixture.pacer.OnTurn([&, told = std::make_shared<bool>(false)] {
        const std::string trace = TemporaryFolder::Content(fixture.home.Path() / "trace.txt");
        if (!isExchanged || *told || !trace.contains("/01CCE")) return;
        *told = true;
        fixture.options.serialNumber = 2;
        fixture.ReplaceController(model);
      });
      const std::string fault =
          "lost:on=CC,nth=" + std::to_string(reset) + ",away=" + (isExchanged ? "3000" : "600000");
      fixture.ExpectFailure({line, 7, isExchanged ? "otherController" : "linkLost", "Likely cause", fault.c_str()});
      fixture.pacer.OnTurn(nullptr);
    }
  }
  CommandFixture locked;
  locked.options.password = "1";
  locked.home.Put("hall.dai", SampleProject("K220-22-R1"));
  const Result refused = locked.ExpectFailure(
      {"--link sim:K220-22-R1 download project @hall.dai --dry-run", 4, "passwordNeeded", "password"});
  EXPECT_THAT(refused.trace, Not(HasSubstr("/01CCS")));
}

}  // namespace
}  // namespace kv::test
