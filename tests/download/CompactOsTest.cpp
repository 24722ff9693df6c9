// The O/S of a compact controller: what is asked, what is sent, at which speed, and what is left when it is cut.

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "CompactOsFixture.h"
#include "tests/support/FakeChannel.h"

namespace kv::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

// What each shows and is told, how long it waits for what, and how it ends, stands in its record: here and below.
TEST(CompactOs, EveryModelGetsItsOwnOnEveryKindOfLine) {
  for (const char* model : {"Q50", "Q50Net", "Q51", "Q58", "PX1", "PR1", "BRIO"}) {
    for (const bool isSerial : {true, false}) {
      for (const bool boot : {false, true}) {
        SCOPED_TRACE(std::string(model) + (isSerial ? " serial" : "") + (boot ? " in boot" : ""));
        CompactOsFixture fixture(Plc(model, "", boot), isSerial);
        EXPECT_TRUE(fixture.Download()) << OutcomeText(fixture.outcome);
        EXPECT_EQ(fixture.Link()->GetComParams().baudRate, isSerial ? kUsualBaud : 0) << "as it was before";
      }
    }
  }
}

TEST(CompactOs, WhatDoesNotFitIsRefusedAndNothingIsSent) {
  const std::tuple<const char*, const char*, bool> builds[] = {
      {"1.60", "1.61", false}, {"1.61", "1.60", false}, {"1.61", "1.61", true}, {"0.00", "1.61", true}};
  for (const auto& [installed, chosen, isTaken] : builds) {
    SCOPED_TRACE(std::string(installed) + " to " + chosen);
    CompactOsFixture fixture(Plc("Q50", installed));
    fixture.file = fixture.Put("", "Q50", {chosen, 2});
    EXPECT_EQ(fixture.Download(), isTaken);
  }
  CompactOsFixture none(Plc("PR1"));
  for (const bool isEmpty : {true, false}) {
    std::filesystem::remove_all(none.home.Path() / "OS" / "OSPR");
    if (isEmpty) std::filesystem::create_directories(none.home.Path() / "OS" / "OSPR");
    EXPECT_FALSE(none.Download());
  }
  CompactOsFixture older(Plc("Q51", "4.90"));
  older.desk.declined = "is older than the one in the controller";
  EXPECT_FALSE(older.Download());
  older.file = "gone.OSI";
  EXPECT_FALSE(older.Download());
  EXPECT_THAT(older.desk.said, ElementsAre(testing::StartsWith("O/S Downloader: gone.OSI"))) << "not: it does not fit";
  CompactOsFixture inBoot(Plc("Q51", "", true));
  inBoot.desk.declined = "Whatever O/S its flash still holds is erased";
  inBoot.order.onPreview = [](const DownloadPreview& preview) {
    EXPECT_THAT(preview.losses.front(), testing::Not(HasSubstr("program stops"))) << "it does not run";
  };
  EXPECT_FALSE(inBoot.Download());
  FoundController found{{"Q51", "51", "4.60", "19"}, {.serialNumber = 7, .state = 'R', .projectName = ""}};
  EXPECT_EQ(found.ReplacedText(), " in place of 4.60");
  found.info.state = 'B';
  EXPECT_EQ(found.ReplacedText(), "") << "a boot loader tells of no O/S";
  CompactOsFixture other(Plc("K330"));
  EXPECT_FALSE(other.Download());
}

TEST(CompactOs, AFileThatChangesMeanwhileIsNotSentAndADryRunSendsNothing) {
  CompactOsFixture fixture(Plc("Q51"));
  fixture.order.isDryRun = true;
  EXPECT_FALSE(fixture.Download());
  fixture.order.isDryRun = false;
  const std::string other = SampleOs("Q51", {"4.71", 2}, 999);
  for (const auto& content :
       {std::optional(other), std::optional(other.substr(0, 500)), std::optional<std::string>()}) {
    const auto file = fixture.Put("OS51", "Q51", {"4.71", 2});
    fixture.desk.onBox = [&](const MessageBox& box) {
      if (box.buttons != PromptButtons::YesNo) return;
      std::filesystem::remove(file);
      if (content) PutFile(file, *content);
    };
    EXPECT_FALSE(fixture.Download());
  }

  fixture.desk.onBox = nullptr;
  for (const std::string when : {"CCB", "FS05", "OSP0"}) {  // and one that vanishes when this has been sent
    SCOPED_TRACE(when);
    const auto file = fixture.Put("OS51", "Q51", {"4.71", 2});
    fixture.controller->onText = [&](std::string_view text, sim::TextReply&) {
      if (text.starts_with(when)) std::filesystem::remove(file);
    };
    const bool isBeforeErase = when == "CCB";
    EXPECT_EQ(fixture.Download(), !isBeforeErase) << OutcomeText(fixture.outcome);
    if (!isBeforeErase) continue;
    fixture.controller->Restart();
    fixture.driver.CloseDriver();
  }
}

// What would make it tell a success that is none, and polls that never end: how many there are stands in the record.
TEST(CompactOs, OnlyAControllerThatReportsTheNewOsIsASuccess) {
  struct Row {
    const char* command;
    const char* reply;
  };
  // clang-format off: one row a line
  const Row rows[] = {
      {"FI", "FI50"},
      {"FI", "FI10"},
      {"OSS", "OS20"},
      {"OSS", "OS11"},
      {"OSP00080", "OSNO"},
      {"OSP00080", "OSERROR0A"},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.command) + " " + row.reply);
    CompactOsFixture fixture(Plc("Q51"));
    fixture.AnswerTo(row.command, row.reply);
    EXPECT_FALSE(fixture.Download());
    EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
  }

  CompactOsFixture damaged(Plc("Q51"));
  damaged.controller->onText = [&damaged](std::string_view text, sim::TextReply& told) {
    if (text.starts_with("OSP00000")) damaged.controller->Tell("OSP00040" + std::string(128, 'A'));
    if (text.starts_with("OSP00040")) told.text = "OSOK";
  };
  EXPECT_FALSE(damaged.Download());
}

// Whoever sends an erase again that may have been executed takes "busy" for a yes, and nothing else.
TEST(CompactOs, AnEraseThatIsToldAgainHasFailedUnlessItIsUnderWay) {
  for (const bool isBusy : {true, false}) {
    CompactOsFixture fixture(Plc("Q51"));
    fixture.desk.declined = "Stop it all the same?";
    fixture.controller->onText = [&, erases = 0](std::string_view text, sim::TextReply& told) mutable {
      if (!text.starts_with("OSE") || ++erases > 2) return;
      if (erases == 1) return fixture.pacer.RequestStop();
      told.text = isBusy ? "OSERROR0A" : "OSERROR0F";
    };
    EXPECT_EQ(fixture.Download(), isBusy) << OutcomeText(fixture.outcome);
  }
}

// What another box than the one of success is told about, and what is left then.
TEST(CompactOs, WhatTheControllerSaysAfterItsRestartIsHeldAgainstTheFile) {
  struct Row {
    const char* model;
    const char* os;
    char state;
  };
  const Row rows[] = {{"Q51-2-R34|51", "4.60|19", 'R'},
                      {"Q51-2-R34|51", "4.71|03", 'R'},
                      {"Q58-2-R34|58", "4.71|02", 'R'},
                      {"Q51-2-R34|51", "4.71|02", 'S'}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.model) + row.os + row.state);
    CompactOsFixture fixture(Plc("Q51"));
    fixture.controller->onText = [&, isReset = false](std::string_view text, sim::TextReply& told) mutable {
      isReset = isReset || text == "CCE";
      if (isReset && text.starts_with("ID")) told.text = "ID" + std::string(row.model) + "|" + row.os;
      if (isReset && text.starts_with("IN")) told.text[14] = row.state;
    };
    EXPECT_EQ(fixture.Download(), row.state == 'S');
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
  fixture.desk.declined = "Stop it all the same?";
  EXPECT_TRUE(fixture.Download()) << OutcomeText(fixture.outcome);
  EXPECT_EQ(tries, 4);
}

TEST(CompactOs, ABlockWhoseReplyIsLostGoesAgain) {
  CompactOsFixture fixture(Plc("Q51"));
  fixture.UseFaults({"lost:on=OS,nth=3,max=1"});
  EXPECT_TRUE(fixture.Download()) << OutcomeText(fixture.outcome);
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
    fixture.order.usualBaudRate = isFoundBefore ? 38400 : 0;
    EXPECT_TRUE(fixture.DownloadAgain()) << OutcomeText(fixture.outcome);
    EXPECT_EQ(fixture.driver.GetChannel()->GetComParams().baudRate, 38400);
  }
}

// The same O/S again, and the power fails before the old one is erased.
TEST(CompactOs, AnOsOfTheSameNumberIsNoNewOne) {
  sim::SimulatorOptions options = Plc("Q51", "4.71");
  options.osBuild = 2;
  CompactOsFixture fixture(options);
  fixture.UseFaults({"reset:on=OS,nth=1"});
  EXPECT_FALSE(fixture.Download());
}

// A link whose parameters cannot be set is opened anew, at the speed that the boot loader is told.
TEST(CompactOs, ALinkThatCannotBeSetIsOpenedAgain) {
  Desk desk;
  VirtualPacer pacer;
  const DownloadOrder order;
  FakeChannel link;
  link.succeeds = true;
  link.reply = CommandReply{"CPOK00"};
  link.onCall = [&link](const std::string& call) {
    return !call.starts_with("SetComParams") || std::ranges::count(link.calls, call) > 0;
  };
  DownloadWork work(link, desk, desk, pacer, order);
  EXPECT_TRUE(CompactBootLoader(work, CompactKind::PX1, 0).AgreeOnSpeed());
  EXPECT_THAT(link.calls, ElementsAre("SetComParams fake", "SetComParams fake", "OpenLink 0 115200",
                                      "SendCommand CPSR0007", "SetComParams fake", "OpenLink 0 9600"));
  EXPECT_EQ(link.params.mode + link.params.baudRate, 9600);
  link.calls.clear();
  EXPECT_TRUE(CompactBootLoader(work, CompactKind::PR1, 0).Enter());
  EXPECT_EQ(link.calls.back(), "OpenLink 0 9600");
}

// A boot loader at once, whose test and erase are answered with something else twice.
struct BootChannel final : FakeChannel {
  int tests = 2;
  int erases = 2;

  std::optional<CommandReply> SendCommand(std::string_view command) override {
    if (command == "FI") return CommandReply{tests-- > 0 ? "FI1000" : "FI2000"};
    if (command == "OSS") return CommandReply{erases-- > 0 ? "OS1000" : "OS0000"};
    return CommandReply{"XXOK00"};
  }
};

TEST(CompactOs, AsksAgainAfterExactPausesWhileTheFlashIsNotReady) {
  Desk desk;
  VirtualPacer pacer;
  const DownloadOrder order;
  BootChannel link;
  link.succeeds = true;
  DownloadWork work(link, desk, desk, pacer, order);
  CompactBootLoader boot(work, CompactKind::PR1, 0);
  EXPECT_TRUE(boot.EraseFlash());
  EXPECT_EQ(pacer.Now() - Instant(), 5s + 2 * 500ms + 2 * 1s);
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

}  // namespace
}  // namespace kv::test
