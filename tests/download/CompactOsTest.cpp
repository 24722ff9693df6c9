// The O/S of a compact controller: what is asked, what is sent, at which speed, and what is left when it is cut.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "download/clsBrioQ50OSDownloader.h"
#include "tests/support/MarkdownTables.h"
#include "tests/support/WeatherSeeds.h"

namespace kv::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kAsked = "O/S Downloader: Note that the download O/S process will cause:";
const std::string kSucceeded = "O/S Downloader: O/S Download Succeded!";
const std::string kEraseFailed = "O/S Downloader: Error during FLASH erase! Operation failed.";
constexpr int kUsualBaud = 115200;

// A compact controller on a serial line that garbles what is sent at the wrong speed, or on one without a speed.
struct CompactOsFixture {
  explicit CompactOsFixture(sim::SimulatorOptions options, bool isSerial = true) {
    options.memorySeed = 1;
    if (options.baud == 0) options.baud = kUsualBaud;
    auto watched = std::make_unique<WatchedController>(sim::Controller::Create(options).value());
    controller = watched.get();
    simulated = sim::SimulatedController::CreateAround(std::move(watched), options).value();
    settings.transport = isSerial ? Transport::Serial : Transport::Simulated;
    settings.serialPort = "COM3";
    settings.baudRate = options.baud;
    settings.timeOut = 300ms;
    const std::pair<const char*, const char*> samples[] = {
        {"OS50", "Q50"}, {"OS51", "Q51"}, {"OS51", "Q58"}, {"OSPX", "PX1"}, {"OSPR", "PR1"}};
    for (const auto& [name, model] : samples) Put(name, model, {"4.71", 2});
  }

  std::filesystem::path Put(const std::string& name, const std::string& model, const sim::OsVersion& os) {
    const auto to = home.Path() / "OS" / name;
    std::filesystem::create_directories(to);
    const auto file = to / sim::OsFileName(ModelCalled(model), os);
    AurexOsFixture::PutFile(file, SampleOs(model, os));
    return file;
  }
  std::shared_ptr<Channel> Link() {
    driver.UseSettings(settings, false);
    return driver.GetChannel();
  }
  bool Download(const DownloadOrder& order = {}, const std::filesystem::path& file = {}) {
    desk.said.clear();
    controller->told.clear();
    const auto link = Link();
    if (!link) return false;
    clsBrioQ50OSDownloader engine(desk, desk, pacer, paths);
    if (!file.empty()) engine.UseFile(file);
    const bool isDone = engine.DownloadOS(*link, order);
    outcome = engine.Outcome();
    EXPECT_EQ(isDone, outcome.end == DownloadEnd::Done);
    EXPECT_EQ(isDone, std::ranges::count(desk.said, kSucceeded) == 1);
    return isDone;
  }
  // As a user does it later, from a program that knows the usual speed alone.
  bool DownloadAgain(const DownloadOrder& order = {}) {
    EXPECT_TRUE(simulated->UseFaults({}));
    controller->onText = nullptr;
    driver.CloseDriver();
    pacer.Sleep(70s);
    return Download(order);
  }
  // What the controller was told, the blocks of the image as one.
  std::string Told() const {
    std::string all;
    for (const std::string& text : controller->told) {
      const bool isBlock = text.size() > 100;
      const std::string word = isBlock ? text.substr(0, text.starts_with("FW") ? 2 : 4) : text;
      if (!isBlock || !all.ends_with(" " + word)) all += " " + word;
    }
    return all.substr(std::min<std::size_t>(1, all.size()));
  }
  void AnswerTo(const std::string& command, const std::string& reply) {
    controller->onText = [=, this](std::string_view text, sim::TextReply& told) {
      if (!text.starts_with(command)) return;
      told.text = reply;
      ++answers;
    };
  }

  TemporaryFolder home;
  ProgramPaths paths{home.Path()};
  VirtualPacer pacer;
  Desk desk;
  WatchedController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  LinkSettings settings;
  Driver driver{pacer, [this](const std::string&) { return simulated->NewLine(); },
                [this](const LinkSettings& link, Pacer&, ListeningSocket*) {
                  auto port = std::make_unique<SimulatedPort>(simulated->NewLine(), "", pacer);
                  EXPECT_TRUE(port->SetBaudRate(link.baudRate));
                  return port;
                }};
  DownloadOutcome outcome;
  int answers = 0;  // of AnswerTo
};

sim::SimulatorOptions Plc(const std::string& model, const std::string& os = "", bool boot = false) {
  sim::SimulatorOptions options;
  options.model = model;
  options.osVersion = os;
  options.boot = boot;
  return options;
}

TEST(CompactOs, EveryModelGetsItsOwnOnEveryKindOfLine) {
  struct Row {
    const char* model;
    const char* told;
    Duration waits;
  };
  const Row rows[] = {
      {"Q50", "CCS CCS CCB CB0A FS05 OSE0 FW FW00000000 CCE", 1s},
      {"Q50Net", "CCS CCS CCB CB0A FS05 OSE0 FW FW00000000 CCE", 1s},
      {"Q51", "CCS CCS CCB CPSR010A FS05 OSE0 OSP0 CCE", 1s},
      {"Q58", "CCS CCS CCB CPSR010A FS05 OSE0 OSP0 CCE", 1s},
      {"PX1", "CCS CCS CCB FS05 OSC7F OSP0 CCE", 1s},
      {"PR1", "CCS CCS CCB FS05 OSC7F OSP0 CCE", 1s + 2 * 4000ms + 5000ms},
      {"BRIO", "CCS CCS CCB FS05 OSC7F OSP0 CCE", 1s},
  };
  for (const Row& row : rows) {
    for (const bool isSerial : {true, false}) {
      for (const bool boot : {false, true}) {
        SCOPED_TRACE(std::string(row.model) + (isSerial ? " serial" : "") + (boot ? " in boot" : ""));
        CompactOsFixture fixture(Plc(row.model, "", boot), isSerial);
        const Instant start = fixture.pacer.Now();
        EXPECT_TRUE(fixture.Download()) << OutcomeText(fixture.outcome);
        const std::string enter = "CCS CCS CCB ";
        EXPECT_EQ(fixture.Told(), boot ? row.told + enter.size() : row.told);
        EXPECT_THAT(fixture.controller->Truth(), HasSubstr("|4.71|02|R"));
        EXPECT_EQ(fixture.desk.said.size(), boot ? 1U : 2U);
        EXPECT_GE(fixture.pacer.Now() - start, boot ? 0s : row.waits);
        EXPECT_EQ(fixture.Link()->GetComParams().baudRate, isSerial ? kUsualBaud : 0) << "as it was before";
      }
    }
  }
}

TEST(CompactOs, WhatDoesNotFitIsRefusedAndNothingIsSent) {
  for (const char* model : {"Q50", "Q51", "Q58", "PX1", "PR1", "BRIO"}) {
    for (const char* os : {"Q50", "Q51", "Q58", "PX1", "PR1"}) {
      if (ModelCalled(model).osModel == os) continue;
      for (const bool boot : {false, true}) {
        SCOPED_TRACE(std::string(model) + " is given the O/S of a " + os);
        CompactOsFixture fixture(Plc(model, "", boot));
        EXPECT_FALSE(fixture.Download({}, fixture.Put("", os, {"4.71", 2})));
        EXPECT_EQ(fixture.outcome.end, DownloadEnd::Refused);
        EXPECT_THAT(fixture.desk.said,
                    ElementsAre("O/S Downloader: Selected O/S file does not suite the PLC you communicate with."));
        EXPECT_EQ(fixture.Told(), "");
      }
    }
  }
  const std::tuple<const char*, const char*, bool> builds[] = {
      {"1.60", "1.61", false}, {"1.61", "1.60", false}, {"1.61", "1.61", true}, {"0.00", "1.61", true}};
  for (const auto& [installed, chosen, isTaken] : builds) {
    SCOPED_TRACE(std::string(installed) + " to " + chosen);
    CompactOsFixture fixture(Plc("Q50", installed));
    EXPECT_EQ(fixture.Download({}, fixture.Put("", "Q50", {chosen, 2})), isTaken);
    if (!isTaken) {
      EXPECT_THAT(fixture.desk.said,
                  ElementsAre("O/S Downloader: Operation supported only for O/S version higher then Build 1.60"));
      EXPECT_EQ(fixture.Told(), "");
    }
  }
  CompactOsFixture none(Plc("PR1"));
  std::filesystem::remove_all(none.home.Path() / "OS" / "OSPR");
  EXPECT_FALSE(none.Download());
  EXPECT_THAT(none.desk.said, ElementsAre(testing::StartsWith("O/S Downloader: O/S file(s) missing in ")));
  CompactOsFixture other(Plc("K330"));
  EXPECT_FALSE(other.Download());
  EXPECT_EQ(other.outcome.end, DownloadEnd::Refused);
  EXPECT_THAT(other.controller->told, IsEmpty());
}

TEST(CompactOs, AFileThatChangesMeanwhileIsNotSentAndADryRunSendsNothing) {
  CompactOsFixture fixture(Plc("Q51"));
  EXPECT_FALSE(fixture.Download({.isDryRun = true}));
  EXPECT_EQ(fixture.outcome.end, DownloadEnd::WouldGoOn);
  EXPECT_THAT(fixture.desk.said, ElementsAre(kAsked));
  EXPECT_EQ(fixture.Told(), "");

  const auto file = fixture.home.Path() / "OS" / "OS51" / "Q51v4712.OSI";
  const std::string other = SampleOs("Q51", {"4.71", 2}, 999);
  for (const std::string& content : {other, other.substr(0, 500), std::string()}) {
    fixture.Put("OS51", "Q51", {"4.71", 2});
    fixture.desk.answer = [&](const MessageBox& box) {
      if (box.buttons == PromptButtons::YesNo) AurexOsFixture::PutFile(file, content);
      return Consent(box.buttons);
    };
    EXPECT_FALSE(fixture.Download());
    EXPECT_THAT(fixture.desk.said, ElementsAre(kAsked, "O/S Downloader: Invalid O/S File!"));
    EXPECT_EQ(fixture.Told(), "");
  }
}

// What would make it tell a success that is none, and polls that never end.
TEST(CompactOs, OnlyAControllerThatReportsTheNewOsIsASuccess) {
  struct Row {
    const char* command;
    const char* reply;
    const char* box;
    ControllerLeft left;
    int questions;
    Duration atLeast;
  };
  const Row rows[] = {
      {"FI", "FI50", "Error during FLASH erase! Operation failed.", ControllerLeft::BootLoader, 1, 0s},
      {"FI", "FI10", "Error during FLASH erase! Operation failed.", ControllerLeft::BootLoader, 31, 15500ms},
      {"OSS", "OS20", "Error during FLASH erase! Operation failed.", ControllerLeft::BootLoaderErased, 1, 0s},
      {"OSS", "OS11", "Error during FLASH erase! Operation failed.", ControllerLeft::BootLoaderErased, 31, 31s},
      {"OSP00080", "OSNO", "O/S Download Failed!", ControllerLeft::BootLoaderErased, 1, 0s},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.command) + " " + row.reply);
    CompactOsFixture fixture(Plc("Q51"));
    fixture.AnswerTo(row.command, row.reply);
    const Instant start = fixture.pacer.Now();
    EXPECT_FALSE(fixture.Download());
    EXPECT_THAT(fixture.desk.said, ElementsAre(kAsked, "O/S Downloader: " + std::string(row.box)));
    EXPECT_EQ(fixture.outcome.left, row.left);
    EXPECT_EQ(fixture.answers, row.questions);
    EXPECT_GE(fixture.pacer.Now() - start, row.atLeast);
    EXPECT_LE(fixture.pacer.Now() - start, row.atLeast + 8s);
    EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
  }

  CompactOsFixture damaged(Plc("Q51"));
  damaged.controller->onText = [&damaged](std::string_view text, sim::TextReply& told) {
    if (text.starts_with("OSP00000")) damaged.controller->Tell("OSP00040" + std::string(128, 'A'));
    if (text.starts_with("OSP00040")) told.text = "OSOK";
  };
  EXPECT_FALSE(damaged.Download());
  EXPECT_EQ(damaged.outcome.left, ControllerLeft::BootLoaderErased);
  EXPECT_THAT(damaged.desk.said.back(),
              HasSubstr("The O/S was sent, but the controller is not what it was to be then."));
}

// What another box than the one of success is told about, and what is left then.
TEST(CompactOs, WhatTheControllerSaysAfterItsRestartIsHeldAgainstTheFile) {
  struct Row {
    const char* model;
    const char* os;
    char state;
    ControllerLeft left;
    const char* box;
  };
  const Row rows[] = {
      {"Q51-2-R34|51", "4.60|19", 'R', ControllerLeft::OldOs, "is not what it was to be then."},
      {"Q51-2-R34|51", "4.71|03", 'R', ControllerLeft::SomeOs, "is not what it was to be then."},
      {"Q58-2-R34|58", "4.71|02", 'R', ControllerLeft::NewOs, "is not what it was to be then."},
      {"Q51-2-R34|51", "4.71|02", 'S', ControllerLeft::NewOs, "but the controller's program does not (state S)"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.model) + row.os + row.state);
    CompactOsFixture fixture(Plc("Q51"));
    fixture.controller->onText = [&, isReset = false](std::string_view text, sim::TextReply& told) mutable {
      isReset = isReset || text == "CCE";
      if (isReset && text.starts_with("ID")) told.text = "ID" + std::string(row.model) + "|" + row.os;
      if (isReset && text.starts_with("IN")) told.text[14] = row.state;
    };
    EXPECT_EQ(fixture.Download(), row.state == 'S');
    EXPECT_EQ(fixture.outcome.left, row.left);
    EXPECT_THAT(fixture.desk.said.back(), HasSubstr(row.box));
    EXPECT_THAT(fixture.outcome.reason, testing::Not(HasSubstr("\r")));
  }
}

TEST(CompactOs, AStopInTheMiddleIsAskedAbout) {
  for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
    CompactOsFixture fixture(Plc("Q51"));
    fixture.desk.onProgress = [&](std::int64_t current, std::int64_t) {
      if (current == 2) fixture.pacer.RequestStop();
    };
    fixture.desk.answer = [&](const MessageBox& box) {
      return box.text.starts_with("Stop ") ? answer : Consent(box.buttons);
    };
    EXPECT_EQ(fixture.Download(), answer == PromptAnswer::No);
    EXPECT_EQ(fixture.outcome.end, answer == PromptAnswer::No ? DownloadEnd::Done : DownloadEnd::Stopped);
    if (answer == PromptAnswer::No) continue;
    EXPECT_EQ(fixture.outcome.left, ControllerLeft::BootLoaderErased);
    fixture.desk.onProgress = nullptr;
    EXPECT_TRUE(fixture.DownloadAgain());
  }
}

TEST(CompactOs, ABusyControllerIsToldAgainUntilItHasTakenIt) {
  CompactOsFixture fixture(Plc("Q51"));
  int tries = 0;
  fixture.controller->onText = [&](std::string_view text, sim::TextReply& told) {
    if (text == "CCS" || text == "CCB") told.text = "CCGO";  // as good as an OK
    if (!text.starts_with("OSP00040") || ++tries > 3) return;
    told.text = "OSERROR0A";
    if (tries == 1) fixture.pacer.RequestStop();
  };
  fixture.desk.answer = [](const MessageBox& box) {
    return box.text.starts_with("Stop ") ? PromptAnswer::No : Consent(box.buttons);
  };
  EXPECT_TRUE(fixture.Download()) << OutcomeText(fixture.outcome);
  EXPECT_EQ(tries, 4);
}

// A boot loader is found at a speed of its own, which is not the one that the user has set.
TEST(CompactOs, GoesBackToTheSpeedThatTheUserHasSet) {
  for (const bool isFoundBefore : {false, true}) {
    sim::SimulatorOptions options = Plc("Q51");
    options.baud = 38400;
    CompactOsFixture fixture(options);
    fixture.AnswerTo("OSS", "OS20");
    EXPECT_FALSE(fixture.Download());
    EXPECT_EQ(fixture.Link()->GetVersionInfo(1), std::nullopt) << "it is deaf at its usual speed";
    if (isFoundBefore) fixture.settings.baudRate = 57600;
    EXPECT_TRUE(fixture.DownloadAgain({.usualBaudRate = isFoundBefore ? 38400 : 0})) << OutcomeText(fixture.outcome);
    EXPECT_EQ(fixture.driver.GetChannel()->GetComParams().baudRate, 38400);
  }
}

// The same O/S again, and the power fails before the old one is erased.
TEST(CompactOs, AnOsOfTheSameNumberIsNoNewOne) {
  sim::SimulatorOptions options = Plc("Q51", "4.71");
  options.osBuild = 2;
  CompactOsFixture fixture(options);
  EXPECT_TRUE(fixture.simulated->UseFaults({"reset:on=OS,nth=1"}));
  EXPECT_FALSE(fixture.Download());
  EXPECT_EQ(fixture.outcome.left, ControllerLeft::OldOs);
}

TEST(CompactOs, AnApplicationGoesFromOneControllerIntoAnother) {
  CompactOsFixture from(Plc("Q51"), false);
  CompactOsFixture to(Plc("Q51"), false);
  to.controller->Tell("DE");
  clsBrioQ50OSDownloader engine(from.desk, from.desk, from.pacer, from.paths);
  const auto application = engine.ReadPlcApp(*from.Link());
  ASSERT_TRUE(application);
  EXPECT_GT(application->size(), 20000U);
  to.pacer.Sleep(5s);
  EXPECT_NE(engine.ReadPlcApp(*to.Link()), application);
  EXPECT_TRUE(engine.prvWritePlcAppToFlash(*to.Link(), *application));
  EXPECT_EQ(engine.ReadPlcApp(*to.Link()), application);
  EXPECT_FALSE(engine.prvWritePlcAppToFlash(*from.Link(), *application)) << "its program runs";
  from.AnswerTo("RX", "RX00000000F");
  EXPECT_FALSE(engine.ReadPlcApp(*from.Link()));
  EXPECT_THAT(from.desk.said,
              ElementsAre("O/S Downloader: Failed to restore PLC memory", "O/S Downloader: Failed to read PLC memory"));
}

// 'r' runs the old O/S, 'n' the new one, 'S' is stopped, 'B' in the boot loader.
char StateOf(const CompactOsFixture& fixture) {
  const std::string truth = fixture.controller->Truth();
  return !truth.ends_with('R') ? truth.back() : truth.contains("|4.71|02|") ? 'n' : 'r';
}

// What the controller is after a failure must be what is said, and switching it off and on must lead out where it is
// said to.
void CheckLeft(CompactOsFixture& fixture) {
  struct Row {
    ControllerLeft left;
    std::string_view now;
    std::string_view then;  // when it has been switched off and on; empty: that is no way out
  };
  using enum ControllerLeft;
  const Row rows[] = {{Untouched, "rB", ""},
                      {OldOs, "r", ""},
                      {Stopped, "Sr", ""},
                      {BootLoader, "Br", "r"},
                      {BootLoaderAsFound, "Br", "r"},
                      {NewOs, "n", ""},
                      {BootLoaderPerhaps, "SBr", "r"},
                      {OsWaits, "B", "n"},
                      {OsPerhaps, "Bn", "n"},
                      {BootLoaderErased, "B", ""}};
  const auto row = std::ranges::find(rows, fixture.outcome.left, &Row::left);
  ASSERT_NE(row, std::end(rows));
  EXPECT_TRUE(row->now.contains(StateOf(fixture))) << fixture.controller->Truth();
  if (row->then.empty()) return;
  fixture.controller->Restart();
  EXPECT_TRUE(row->then.contains(StateOf(fixture))) << fixture.controller->Truth();
}

// The row of the page for a cut behind the last command that the controller got. What a power failure leads to is no
// row.
bool IsOnThePage(const CompactOsFixture& fixture, bool hasLostPower) {
  using enum ControllerLeft;
  const ControllerLeft left = fixture.outcome.left;
  const bool isOfPower = left == Untouched || left == OldOs || left == NewOs || left == BootLoaderPerhaps;
  if (hasLostPower && isOfPower) return true;
  const std::string told = fixture.Told();
  const std::string last = told.empty() ? "nothing" : "`" + told.substr(told.rfind(' ') + 1) + "`";
  return std::ranges::any_of(
      RowsBelow({"Last command of an O/S that a compact controller got"}, "downloads.md"),
      [&](const Row& row) { return row.front().contains(last) && row.at(1) == LeftBehindText(left); });
}

constexpr int kExchanges = 45;  // more than a download of five blocks has

class CompactOsCut : public testing::TestWithParam<std::tuple<const char*, bool, bool>> {};

// The link, the power, or all replies go at each exchange in turn, until the download gets through.
TEST_P(CompactOsCut, LeavesWhatItSaysAtEachExchangeAndGetsThroughAgain) {
  const auto& [model, isSerial, boot] = GetParam();
  for (const std::string fault :
       {"lost:away=60000,", "lost:at=0,away=60000,", "reset:", "noreply:max=1,", "cut:after=9,"}) {
    int failures = 0;
    for (int nth = 1; nth < 200; ++nth) {
      SCOPED_TRACE(fault + " " + std::to_string(nth));
      CompactOsFixture fixture(Plc(model, "", boot), isSerial);
      EXPECT_TRUE(fixture.simulated->UseFaults({fault + "nth=" + std::to_string(nth)}));
      if (fixture.Download()) {
        EXPECT_THAT(fixture.controller->Truth(), HasSubstr("|4.71|02|R"));
        if (nth > kExchanges) break;
        continue;
      }
      ++failures;
      EXPECT_NE(fixture.outcome.reason, "");
      CheckLeft(fixture);
      EXPECT_TRUE(IsOnThePage(fixture, fault.starts_with("reset"))) << fixture.Told() << OutcomeText(fixture.outcome);
      EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
      EXPECT_THAT(fixture.controller->Truth(), HasSubstr("|4.71|02|R"));
    }
    const bool isMended = fault.starts_with("noreply") || fault.starts_with("cut");
    EXPECT_EQ(failures == 0, isMended) << fault;
  }
}

TEST(CompactOs, IsRightOrAPlainFailureInAnyWeather) {
  const std::vector<std::string> weather = {"noreply:p=0.02",
                                            "late:ms=400,p=0.01",
                                            "double:p=0.02",
                                            "cut:after=11,p=0.02",
                                            "damage:p=0.02",
                                            "damage:dir=in,p=0.02",
                                            "garbage:bytes=200,p=0.01",
                                            "echo:p=0.01",
                                            "wrongunit:p=0.01",
                                            "busy:p=0.002",
                                            "reset:p=0.004",
                                            "lost:p=0.004",
                                            "lost:at=9,p=0.004"};
  int done = 0;
  const int seeds = WeatherSeeds(40);
  for (int seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE(seed);
    sim::SimulatorOptions options = Plc(seed % 3 == 0 ? "Q50" : seed % 3 == 1 ? "Q58" : "PR1");
    options.seed = static_cast<std::uint64_t>(seed);
    CompactOsFixture fixture(options, seed % 2 == 0);
    EXPECT_TRUE(fixture.simulated->UseFaults(weather));
    if (fixture.Download()) {
      ++done;
      EXPECT_THAT(fixture.controller->Truth(), HasSubstr("|4.71|02|R"));
      continue;
    }
    EXPECT_NE(fixture.outcome.reason, "");
    CheckLeft(fixture);
    EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
  }
  EXPECT_GT(done, seeds / 2);
}

std::string NameOf(const testing::TestParamInfo<CompactOsCut::ParamType>& row) {
  const auto& [model, isSerial, boot] = row.param;
  return std::string(model) + (isSerial ? "Serial" : "Tcp") + (boot ? "InBoot" : "");
}
INSTANTIATE_TEST_SUITE_P(Lines, CompactOsCut,
                         testing::Values(std::tuple("Q51", true, false), std::tuple("Q50", true, false),
                                         std::tuple("PR1", true, false), std::tuple("Q51", false, false),
                                         std::tuple("Q51", true, true)),
                         NameOf);

}  // namespace
}  // namespace kv::test
