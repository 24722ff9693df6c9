#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"
#include "sessions/SessionManager.h"
#include "tests/host/HostBench.h"

namespace kv {
namespace {

using test::CallLog;
using testing::ElementsAre;
using testing::IsEmpty;

struct ToolsTest : testing::Test, test::HostBench {
  [[nodiscard]] bool HasFile(const char* name) const { return std::filesystem::exists(Session("Default") / name); }
};

TEST_F(ToolsTest, EachRowOfTheTableDoesItsCallsInOrder) {
  const auto window = [](const std::string& name, const std::string& argument) {
    return CallLog{"Enabled off", name + " made for '" + argument + "'", name + " shown", name + " gone", "Enabled on"};
  };
  const auto with = [](CallLog calls, const CallLog& more) {
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
  };
  struct Row {
    const char* id;
    const char* argument;
    CallLog expected;
  };
  const Row rows[] = {
      {"ID_ComParams",
       "Main",
       {"Enabled off", "Driver ComParamsCaller Main", "Driver ShowComParams", "ComDescription COM3, 115200 8N1, unit 1",
        "Enabled on", "Refresh"}},
      {"ID_Modem", "", {"Enabled off", "Driver ShowModemSettings", "Enabled on"}},
      {"ID_OnLine", "", {"Hourglass on", "BeginConnect", "Driver GetChannel", "EndConnect", "Hourglass off"}},
      {"ID_OPLC_Model", "K230", {"Model K230", "Refresh", "Driver ConfigureForSession HOME/Sessions/Default"}},
      {"Escape", "", {}},
      {"ID_Help", "", {"Shell '' HOME/help/KvTeleExe.chm ''"}},
      {"ID_Help", "USER_RBK", window("frmAbout", "USER_RBK")},
      {"ID_About", "", window("frmAbout", "")},
      {"ID_Downloader", "user", window("frmDownloader", "user")},
      {"ID_DataTypes", "", window("frmDataTypesView", "")},
      {"ID_Session", "",
       with(window("frmSession", ""),
            {"ComDescription COM3, 115200 8N1, unit 1", "SessionPath HOME/Sessions/Default", "Refresh"})},
      {"ID_LogIn", "", window("frmLogIn", "")},
      {"ID_PID_Srv", "x", {"Shell 'open' HOME/PID Server.exe ''"}},
      {"ID_DownloadDesigner", "", {"Shell 'open' HOME/KorDownloadDesigner.exe '/t:K230'"}},
      {"ID_DumpPLC", "", with(window("frmDumpPLC", ""), {"StatusMessage"})},
      {"ID_ImportCacheFromPLC", "Main", window("frmRestoreCache", "Main")},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CallsOf(row.id, row.argument), row.expected) << row.id;
    EXPECT_TRUE(host.enabled) << row.id;
  }
}

TEST_F(ToolsTest, TheBracketGivesBackWhatTheHostWasOnEveryPath) {
  host.enabled = false;
  EXPECT_THAT(CallsOf("ID_Modem"), ElementsAre("Enabled off", testing::_, "Enabled off"));

  host.enabled = true;
  onShow = [] { throw std::string("left early"); };
  EXPECT_THAT(CallsOf([&] { EXPECT_THROW(host.OnToolClicked("ID_DataTypes", ""), std::string); }),
              ElementsAre("Enabled off", "frmDataTypesView made for ''", "frmDataTypesView shown",
                          "frmDataTypesView gone", "Enabled on"));
}

TEST_F(ToolsTest, AChangedSessionIsToldToHostAndDriver) {
  onShow = [this] { ASSERT_TRUE(SessionManager(*callerState, prompts).Create("Plant")); };
  const CallLog calls = CallsOf("ID_Session");
  EXPECT_EQ(
      CallLog(calls.begin() + 4, calls.end()),
      (CallLog{"Enabled on", "SessionName Plant", "RecentCaches 0", "Driver ConfigureForSession HOME/Sessions/Plant",
               "ComDescription COM3, 115200 8N1, unit 1", "SessionPath HOME/Sessions/Plant", "Refresh"}));
}

TEST_F(ToolsTest, AModelOfAnotherFamilyDeletesTheGrids) {
  struct Row {
    const char* from;
    const char* to;
    bool kept;
  };
  for (const Row& row : {Row{"K220-22-R1", "K330", true}, Row{"K220-22-R1", "K450-45", true},
                         Row{"K450-45", "K220-22-R1", false}, Row{"K450-45", "K230", false}, Row{"K330", "Q50", false},
                         Row{"Q50", "K330", false}, Row{"Q50", "AurexQ50", true}}) {
    Put("vsfOperands_1.vsf", "grid");
    Put("vsfRegions_1.vsf", "grid");
    CallsOf([&] {
      host.model = row.from;
      host.OnToolClicked("ID_OPLC_Model", row.to);
    });
    EXPECT_EQ(HasFile("vsfOperands_1.vsf"), row.kept) << row.from << " to " << row.to;
    EXPECT_EQ(HasFile("vsfRegions_1.vsf"), row.kept) << row.from << " to " << row.to;
    EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), row.to);
  }
}

TEST_F(ToolsTest, HelpIsQuietUntilEscape) {
  EXPECT_THAT(CallsOf([&] {
                caller->SuppressHelp();
                host.OnToolClicked("ID_Help", "");
                host.OnToolClicked("ID_Help", "user_rbk");
                host.OnToolClicked("Escape", "");
                host.OnToolClicked("ID_Help", "");
              }),
              ElementsAre("Shell '' HOME/help/KvTeleExe.chm ''"));
}

TEST_F(ToolsTest, LogOffAsksFirst) {
  const CallLog asked{"Enabled off", "Box (?) Log Off: Are you sure you want to log off?"};
  const auto logOff = [&](PromptAnswer answer) {
    prompts.Press(answer);
    return CallsOf([&] {
      callerState->UserName = "anna";
      callerState->UserPassword = "secret";
      host.OnToolClicked("ID_LogOff", "");
    });
  };
  EXPECT_EQ(logOff(PromptAnswer::No), (CallLog{asked[0], asked[1], "Enabled on"}));
  EXPECT_EQ(callerState->UserName + callerState->UserPassword, "annasecret");
  EXPECT_EQ(logOff(PromptAnswer::Yes), (CallLog{asked[0], asked[1], "UserName", "Enabled on"}));
  EXPECT_EQ(callerState->UserName + callerState->UserPassword, "");
}

TEST_F(ToolsTest, ProgramsThatAreNotThereAreNamed) {
  shell.failure = "PID Server.exe could not be started: it is not installed.";
  prompts.Press(PromptAnswer::Ok);
  EXPECT_EQ(CallsOf("ID_PID_Srv").back(), "Box (!) Telepanel: " + shell.failure);
  shell.failure.clear();
  EXPECT_THAT(CallsOf([&] {
                host.model = "Q51";
                host.OnToolClicked("ID_DownloadDesigner", "");
              }),
              ElementsAre("Shell 'open' HOME/KorDownloadDesigner.exe ''"));
}

TEST_F(ToolsTest, ThePagesFolderIsRemembered) {
  const std::string file = Utf8FromPath(home.Path() / "pages" / "plant.kta");
  prompts.Choose(file);
  prompts.Choose(std::nullopt);
  EXPECT_THAT(CallsOf([&] {
                host.OnToolClicked("ID_PagesFile", "");
                host.OnToolClicked("ID_PagesFile", "");
              }),
              ElementsAre("OpenFile Telepanel Files (*.kta)|*.kta", "OpenPagesFile HOME/pages/plant.kta",
                          "OpenFile Telepanel Files (*.kta)|*.kta"));
  EXPECT_EQ(prompts.OpenDialogs()[0].folder, "");
  EXPECT_EQ(prompts.OpenDialogs()[1].folder, Utf8FromPath(home.Path() / "pages"));
}

TEST_F(ToolsTest, AChosenCacheIsRecentAndAFailureToOpenItIsTold) {
  prompts.Choose(std::nullopt);
  EXPECT_THAT(CallsOf("ID_ImportFontsAndImages"),
              ElementsAre("Enabled off", testing::StartsWith("OpenFile"), "Enabled on"));
  prompts.Choose("/c/plant.ktc");
  prompts.Press(PromptAnswer::Ok);
  host.opensCaches = false;
  EXPECT_THAT(CallsOf("ID_ImportFontsAndImages"),
              ElementsAre("Enabled off", "OpenFile Telepanel For Color Cache Files (*.ktc)|*.ktc", "RecentCaches 1",
                          "OpenColourCache /c/plant.ktc",
                          "Box ( ) Error: Error Opening Cache File. Please Check for Disk Space", "Enabled on"));
  EXPECT_THAT(ReadRecentCaches(shared), ElementsAre("/c/plant.ktc"));
}

// A designer that hands back the blocks that it got, each with a mark behind it.
class FakeDesigner : public PanelDesigner {
 public:
  FakeDesigner(CallLog& log, std::size_t items) : mLog(log), mItems(items) {}
  void SetDriver(CommDriver&) override { mLog.push_back("Designer SetDriver"); }
  void SetBlocks(const Blocks& blocks) override {
    mLog.push_back("Designer SetBlocks");
    mBlocks = blocks;
  }
  void Run() override { mLog.push_back("Designer Run"); }
  std::size_t ItemCount() const override { return mItems; }
  Blocks GetBlocks() const override {
    Blocks blocks = mBlocks;
    for (Bytes& block : blocks) block.push_back('!');
    return blocks;
  }

 private:
  CallLog& mLog;
  std::size_t mItems;
  Blocks mBlocks;
};

TEST_F(ToolsTest, ThePanelDesignerGetsAndLeavesItsThreeBlocks) {
  std::size_t items = 2;
  HostParts parts = Parts();
  parts.createPanelDesigner = [&] { return std::make_unique<FakeDesigner>(log, items); };
  caller.emplace(std::move(parts));
  Put("DesignBlock.bin", "old");
  EXPECT_THAT(CallsOf("ID_PLC_DB"), ElementsAre("Enabled off", "Designer SetDriver", "Designer Run", "Enabled on"));
  EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "DesignBlock.bin"), "!");  // one of three was none

  EXPECT_THAT(CallsOf("ID_PLC_DB"), testing::Contains("Designer SetBlocks"));
  EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "CellsValues.bin"), "!!");
  items = 0;
  CallsOf("ID_PLC_DB");
  for (const char* name : {"DesignBlock.bin", "CellsValues.bin", "DesignLayoutBlock.bin"}) EXPECT_FALSE(HasFile(name));
}

}  // namespace
}  // namespace kv
