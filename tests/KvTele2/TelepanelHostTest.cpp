#include "KvTele2/Sign.h"
#include "tests/KvTele2/HostFixture.h"

namespace kv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TEST_F(TelepanelHostTest, AControllerOfAnotherModelThanTheSelectedIsToldWithACure) {
  const struct {
    const char* selected;
    const char* reported;
    const char* told;
  } cases[] = {{"K220-22-R1", "Q50-2-R34", "of the model Q50, but the selected model is K220-22-R1"},
               {"Q50", "K330", "of the model K330, but the selected model is Q50"},
               {"Q50Net", "Q50-2-R34", ""},
               {"AurexQ50", "Q50-2-R34", "of the model Q50, but the selected model is AurexQ50"},
               {"Q50", "AurexQ50", "of the model AurexQ50, but the selected model is Q50"},
               {"PX1-R8", "PX1-R8", ""},
               {"K450-45", "K450-45-BOOT", ""}};
  for (const auto& each : cases) {
    host.SetModel(each.selected);
    channel->version->model = each.reported;
    host.Click(command::kOnLine);
    EXPECT_THAT(view.shown.trouble, HasSubstr(each.told)) << each.reported;
    EXPECT_EQ(view.shown.trouble.empty(), std::string(each.told).empty()) << view.shown.trouble;
    host.Click(command::kOffLine);
  }
}

TEST_F(TelepanelHostTest, AQuietQuestionGivesWayToTheUser) {
  channel->error.code = LinkErrorCode::Stopped;
  view.onWait = [this](HostView::Wait wait) {
    host.NoteQuestion();
    host.NoteSilence();
    EXPECT_EQ(view.shown.isSilent, wait == HostView::Wait::Quiet) << "a wait that was asked for is told by itself";
    if (wait != HostView::Wait::Quiet) return;
    host.Click("ID_DumpPLC");
    host.Click(command::kOnLine);  // cannot be used, and so does not replace it
    EXPECT_TRUE(pacer.StopRequested());
    EXPECT_THAT(clicked, ElementsAre("ID_OnLine")) << "not in the middle of the question";
  };
  host.Click(command::kOnLine);
  LoseController();
  Pass(std::chrono::seconds(1));
  EXPECT_THAT(clicked, ElementsAre("ID_OnLine", "ID_DumpPLC"));
  EXPECT_FALSE(pacer.StopRequested());
  EXPECT_EQ(ConnectionText(view.shown), "On line") << "nothing is known but that the question was stopped";
}

TEST_F(TelepanelHostTest, AToolThatHasReplacedTheOsIsFollowed) {
  host.Click(command::kOnLine);
  channel->version->osVersion = "4.75";
  host.OnToolClicked = [&](const std::string&, const std::string&) {
    host.ControllerTold({"K220-22-R1", "10", "4.74", "1"}, {.projectName = "Mill"});
    EXPECT_EQ(view.shown.controller->os + view.shown.controller->project, "4.74Mill") << "before it is closed";
  };
  host.Click("ID_Downloader");
  Pass(std::chrono::seconds(1));
  EXPECT_EQ(view.shown.controller->os, "4.75");
}

TEST_F(TelepanelHostTest, ToolsThatLookOtherwiseInAnEditionAreToldWhichItIs) {
  ASSERT_TRUE(host.Settings().Write("Edition", "USER_LOMBA"));
  for (const char* id : {"ID_Downloader", "ID_Help", "ID_About", "ID_DumpPLC"}) host.Click(id);
  EXPECT_THAT(clicked,
              ElementsAre("ID_Downloader USER_LOMBA", "ID_Help USER_LOMBA", "ID_About USER_LOMBA", "ID_DumpPLC"));
}

TEST_F(TelepanelHostTest, ClosingTheWindowWhileItConnectsIsCancel) {
  view.onWait = [this](HostView::Wait) { host.Click(command::kExit); };
  host.Click(command::kOnLine);
  EXPECT_THAT(clicked, ElementsAre("ID_OnLine"));
  EXPECT_THAT(view.waits, ElementsAre(HasSubstr("Connecting to COM3"))) << "the controller is not asked any more";
  EXPECT_EQ(view.shown.connection, ConnectionState::Offline);
  EXPECT_FALSE(pacer.StopRequested());
}

TEST_F(TelepanelHostTest, WhatEndsBeingOnLine) {
  const struct {
    const char* what;
    std::function<void()> happens;
    const char* told;
  } cases[] = {
      {"another session", [this] { host.SetSessionName("Plant"); }, "another session is active"},
      {"another session's folder", [this] { host.SetSessionPath("C:\\Other"); }, "another session is active"},
      {"another link", [this] { host.SetComDescription("COM4"); }, "the link was changed"},
      {"other settings of the same link",
       [this] {
         LoseController();
         channel->error.code = LinkErrorCode::Closed;
         Pass(std::chrono::seconds(2));
       },
       "the link was closed, or its settings were changed"},
      {"the controller gets another project",
       [this] {
         host.OpenPagesFile(PutPages("a.kta", {"Bakery", "K220-22-R1"}));
         channel->info->projectName = "Mill";
         Pass(std::chrono::seconds(2));
       },
       "the controller holds Mill"},
  };
  for (const auto& each : cases) {
    channel->info = Channel::ControllerInfo{.serialNumber = 1, .state = 'R', .projectName = "Bakery"};
    host.Click(command::kOnLine);
    ASSERT_TRUE(host.IsOnline()) << each.what;
    releases = 0;
    each.happens();
    EXPECT_EQ(view.shown.connection, ConnectionState::Offline) << each.what;
    EXPECT_GE(releases, 1) << each.what;
    EXPECT_THAT(view.shown.message, HasSubstr(each.told)) << each.what;
  }
}

TEST_F(TelepanelHostTest, AnotherControllerIsToldAndGoesThroughTheWholeSequence) {
  for (const bool wasSilent : {false, true}) {
    for (const bool isRefused : {false, true}) {
      channel->info = Channel::ControllerInfo{.serialNumber = 1, .state = 'R', .projectName = "Bakery"};
      channel->error = {};
      onLine = [this] { Connect(); };
      host.Click(command::kOnLine);
      LoseController();
      if (wasSilent) Pass(std::chrono::seconds(2));
      channel->error = {.code = LinkErrorCode::OtherController,
                        .happened = "another controller answered: K330",
                        .cure = "connect the right controller, or close the link and connect to this one"};
      clicked.clear();
      releases = 0;
      onLine = [&] {
        EXPECT_FALSE(host.IsOnline());
        EXPECT_GE(releases, 1) << "the link is closed before";
        channel->info = Channel::ControllerInfo{.serialNumber = 2, .state = 'S', .projectName = "Mill"};
        if (!isRefused) return Connect();
        host.ConnectionRefused("It is in BOOTSTRAP mode.", {*channel->version, channel->info});
      };
      Pass(std::chrono::seconds(4));
      EXPECT_THAT(clicked, ElementsAre("ID_OnLine"));
      EXPECT_EQ(view.shown.connection, isRefused ? ConnectionState::Offline : ConnectionState::Online);
      EXPECT_THAT(view.shown.trouble, HasSubstr("nother controller answered: K330"));
      EXPECT_THAT(view.shown.trouble, HasSubstr(isRefused ? "BOOTSTRAP" : "gone on line anew"));
      EXPECT_THAT(view.shown.trouble, Not(HasSubstr("close the link"))) << "the program has done that";
      for (const auto& entry : host.Log().Entries()) EXPECT_NE(entry.text, "The controller answers again");
      host.Click(command::kOffLine);
    }
  }
}

TEST_F(TelepanelHostTest, WhatAToolsExchangesShowIsTold) {
  using enum LinkErrorCode;
  const struct {
    LinkErrorCode code;
    const char* heading;
  } exchanges[] = {{None, "Running 1 s ago"},    {Stopped, "Running 2 s ago"},
                   {NoReply, "Connection lost"}, {BadArgument, "Connection lost"},  // nothing was sent
                   {Refused, "Running 5 s ago"}, {OtherController, "Connection lost"},
                   {None, "Running 7 s ago"},    {LinkLost, "Connection lost"}};
  host.Click(command::kOnLine);
  host.OnToolClicked = [&](const std::string&, const std::string&) {
    for (const auto& each : exchanges) {
      channel->error = {.code = each.code, .happened = "of the tool"};
      channel->bits = std::vector<std::uint8_t>{1};
      if (each.code != None) channel->bits.reset();
      (void)channel->ReadMB(0, 1, 1);
      Pass(std::chrono::seconds(1));
      const bool isLost = std::string(each.heading).starts_with("C");
      EXPECT_EQ(HeadingText(view.shown), std::string("Default - K220 - ") + each.heading)
          << static_cast<int>(each.code);
      EXPECT_EQ(MachineSign(view.shown).word, isLost ? "Was running" : each.heading) << "nobody has asked";
    }
  };
  host.Click("ID_DataTypes");
  EXPECT_EQ(ConnectionText(view.shown), "Connection lost");
  Pass(std::chrono::seconds(1));
  EXPECT_EQ(view.shown.connection, ConnectionState::Online);
  EXPECT_EQ(ToldState(view.shown), "Running");
}

TEST_F(TelepanelHostTest, NobodyIsAskedWhileAToolWorksWithTheController) {
  host.Click(command::kOnLine);
  channel->calls.clear();
  host.OnToolClicked = [this](const std::string&, const std::string&) {
    for (const std::string_view id : {std::string_view("ID_DumpPLC"), command::kExit}) host.Click(id);
    EXPECT_FALSE(pacer.StopRequested()) << "a click that comes through while a tool is at work does nothing";
    Pass(std::chrono::seconds(10));
    host.SetEnabled(false);
  };
  host.Click("ID_DataTypes");
  Pass(std::chrono::seconds(10));
  EXPECT_EQ(Questions(), 0);
  host.Click("ID_DumpPLC");
  EXPECT_THAT(clicked, ElementsAre("ID_OnLine"));
  host.SetEnabled(true);
  host.Tick();
  EXPECT_EQ(Questions(), 1) << "what the tool did is seen at once";
}

TEST_F(TelepanelHostTest, ABadPagesFileLeavesTheOpenOne) {
  const std::string good = PutPages("good.kta", {"Bakery", "K220-22-R1"});
  const std::string half = Utf8FromPath(folder.Put("half.kta", "TELEPANEL-PAGES 1\r\nproject Mi"));
  EXPECT_TRUE(host.OpenPagesFile(good));
  prompts.Press(PromptAnswer::Ok);
  EXPECT_FALSE(host.OpenPagesFile(half));
  ASSERT_EQ(prompts.Boxes().size(), 1u);
  EXPECT_THAT(prompts.Boxes()[0].text, HasSubstr("half.kta, line 2: expected the line \"project ...\", whole"));
  EXPECT_EQ(view.shown.pages->content.project, "Bakery");
}

TEST_F(TelepanelHostTest, TheTenPagesFilesThatWereOpenedLastAreKeptWithTheSession) {
  std::vector<std::string> files;
  for (int i = 0; i < 11; ++i) files.push_back(PutPages(std::to_string(i) + ".kta", {"Bakery", "Q50"}));
  for (const std::string& file : files) host.OpenPagesFile(file);
  host.OpenPagesFile(files[5]);
  ASSERT_TRUE(host.Settings().Write("RecentPages10", "of a program that keeps more"));
  const auto kept = host.Settings().ReadRecentPages();
  EXPECT_EQ(kept.size(), 10u);
  EXPECT_EQ(kept.front() + kept.back(), files[5] + files[1]);
  host.SetSessionPath(Utf8FromPath(folder.Path() / "Other"));
  EXPECT_TRUE(view.shown.recentPages.empty());
  EXPECT_FALSE(view.shown.pages.has_value());
  EXPECT_TRUE(host.OpenPagesFile(files[5]));
  EXPECT_THAT(host.Log().Entries()[host.Log().Entries().size() - 2].text, HasSubstr("files was not kept. "))
      << "the session's folder is not there";
}

TEST_F(TelepanelHostTest, APagesFileIsMadeForTheControllerOnLineAndThenAsked) {
  EXPECT_THAT(host.WhyDisabled(command::kSavePages), HasSubstr("go on line first"));
  channel->info->projectName = "A/B";
  host.Click(command::kOnLine);
  const std::string file = Utf8FromPath(folder.Path() / "saved.kta");
  prompts.Choose(file);
  host.Click(command::kSavePages);
  ASSERT_EQ(prompts.SaveDialogs().size(), 1u);
  EXPECT_EQ(prompts.SaveDialogs()[0].initial, "A-B.kta");
  EXPECT_EQ(view.shown.pages->content, (PagesFile{"A/B", "K220-22-R1"}));

  host.Click(command::kOffLine);
  channel->info->projectName = "Other";
  host.Click(command::kOnLine);
  EXPECT_EQ(view.shown.connection, ConnectionState::Offline) << "the tool refuses it";
  EXPECT_FALSE(view.isWaiting) << "behind the box";
  EXPECT_EQ(channel.use_count(), 1) << "a refused controller is let go of";
  const auto without = std::exchange(
      onLine, [this] { host.ConnectionRefused("The O/S is too old.", {*channel->version, channel->info}); });
  host.Click(command::kOnLine);
  EXPECT_THAT(view.shown.trouble, Not(HasSubstr("for the project"))) << "which nobody has compared this time";
  onLine = without;
  host.Click(command::kClosePages);
  host.Click(command::kOnLine);
  EXPECT_EQ(view.shown.connection, ConnectionState::Online);
}

TEST_F(TelepanelHostTest, UnknownModelsAndMissingToolsSayWhatToDo) {
  host.SetModel("K9000");
  EXPECT_THAT(view.shown.message, HasSubstr("\"K9000\" is not one that this program knows. Choose one"));
  host.SetModel("PX1-R8");
  EXPECT_THAT(view.shown.message, HasSubstr("K9000")) << "a controller's own text for a model of the list";
  host.SetToolMissing("ID_DataTypes", "This build does not have this tool.");
  host.Click("ID_DataTypes");
  EXPECT_TRUE(clicked.empty());
}

TEST_F(TelepanelHostTest, TheLogTellsWhoComesAndGoesAndIsBounded) {
  for (const char* user : {"anna", "hans", ""}) host.SetUserName(user);
  for (int i = 0; i < 1100; ++i) host.StatusMessage("message " + std::to_string(i));
  EXPECT_EQ(host.Log().Entries().size(), Journal::kMostEntries);
  EXPECT_EQ(EntryText({"14:05:09", "one\r\ntwo"}), "14:05:09  one\n          two");
  host.Click(command::kClearLog);
  EXPECT_EQ(view.entries, 0u);
}

}  // namespace
}  // namespace kv
