#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/PathText.h"
#include "host/clsHelpHandler.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"
#include "tests/host/HostFixture.h"

namespace kv {
namespace {

using test::CallLog;
using testing::ElementsAre;

struct ToolsTest : testing::Test, test::HostFixture {
  ToolsTest() { windows.emplace_back("ID_Session"); }
  [[nodiscard]] bool HasFile(const char* name) const { return std::filesystem::exists(Session("Default") / name); }
};

// What a tool does that only shows its window.
CallLog Shown(const std::string& id, const std::string& argument = "", const CallLog& after = {}) {
  CallLog calls{"Enabled off",       id + " made for '" + argument + "'", id + " shown", id + " gone", "Enabled on",
                "Driver CloseDriver"};
  calls.insert(calls.end(), after.begin(), after.end());
  return calls;
}

TEST_F(ToolsTest, EachRowOfTheTableDoesItsCallsInOrder) {
  struct Row {
    const char* id;
    const char* argument;
    CallLog expected;
  };
  const std::string link = "ComDescription COM3, 115200 8N1, unit 1";
  const Row rows[] = {
      {"ID_ComParams",
       "Main",
       {"Enabled off", "Driver ComParamsCaller Main", "Driver ShowComParams", link, "Enabled on", "Refresh"}},
      {"ID_Modem", "", {"Enabled off", "Driver ShowModemSettings", "Enabled on"}},
      {"ID_OnLine", "", {"Hourglass on", "BeginConnect", "Driver GetChannel", "EndConnect", "Hourglass off"}},
      {"ID_OPLC_Model", "K230", {"Model K230", "Refresh", "Driver ConfigureForSession HOME/Sessions/Default"}},
      {"Escape", "", {}},
      {"ID_Help", "", {"Shell '' HOME/help/KvTeleExe.chm ''"}},
      {"ID_Help", "USER_RBK", Shown("ID_About", "USER_RBK")},
      {"ID_DataTypes", "user", Shown("ID_DataTypes", "user")},
      {"ID_Session", "", Shown("ID_Session", "", {link, "SessionPath HOME/Sessions/Default", "Refresh"})},
      {"ID_PID_Srv", "x", {"Shell 'open' HOME/PID Server.exe ''"}},
      {"ID_DownloadDesigner", "", {"Shell 'open' HOME/KorDownloadDesigner.exe '/t:K230'"}},
      {"ID_DumpPLC", "", Shown("ID_DumpPLC", "", {"StatusMessage"})},
  };
  for (const Row& row : rows) EXPECT_EQ(CallsOf(row.id, row.argument), row.expected) << row.id;
}

TEST_F(ToolsTest, TheHostIsToldOfALinkThatIsDescribedOtherwise) {
  for (const char* id : {"ID_Modem", "ID_OPLC_Model"}) {
    const CallLog calls = CallsOf([&](clsCallerExe&) {
      static_cast<test::FakeDriver&>(*shared.ComDriver).nextDescription = "COM4, modem 123";
      host.OnToolClicked(id, "K230");
    });
    EXPECT_THAT(calls, testing::Contains("ComDescription COM4, modem 123")) << id;
  }
}

TEST_F(ToolsTest, AToolGivesBackWhatTheHostWasAndTheLinkUnlessTheHostWorksWithIt) {
  host.holdsLink = true;
  EXPECT_EQ(CallsOf("ID_DataTypes").back(), "Enabled on");
  host.holdsLink = false;
  host.enabled = false;
  EXPECT_THAT(CallsOf("ID_Modem"), ElementsAre("Enabled off", testing::_, "Enabled off"));
}

// The model of the session before would be shown, and the next going on line would write it into this session.
TEST_F(ToolsTest, AnActivatedSessionBeginsWithItsOwnModel) {
  std::filesystem::create_directory(Session("Plant2"));
  for (const auto& [name, model] : {std::pair("Plant2", "Q50"), std::pair("Default", "K670-67-T40 / K390-29-T40")}) {
    shared.CurrentSession = name;
    ASSERT_TRUE(SetLastModel(shared, model));
  }
  onShow = [this] { callerState->CurrentSession = "Plant2"; };
  const CallLog calls = CallsOf("ID_Session");
  EXPECT_THAT(calls, testing::IsSupersetOf({"SessionName Plant2", "Model Q50"}));
  const CallLog chosen = CallsOf([&](clsCallerExe&) { EXPECT_TRUE(host.sessions->ActivateSession("Plant2")); });
  EXPECT_THAT(chosen, testing::IsSupersetOf({"SessionName Plant2", "Model Q50", "SessionPath HOME/Sessions/Plant2"}));
  EXPECT_EQ(host.sessions, nullptr) << "a host that lives on has nothing to ask";
  EXPECT_EQ(host.model, "Q50");
  shared.CurrentSession = "Plant2";
  EXPECT_EQ(LastModel(shared), "Q50");
}

TEST_F(ToolsTest, AModelOfAnotherFamilyDeletesTheGrids) {
  struct Row {
    const char* from;
    const char* to;
    bool kept;
  };
  for (const Row& row : {Row{"K220-22-R1", "K450-45", true}, Row{"K450-45", "K220-22-R1", false},
                         Row{"K330", "Q50", false}, Row{"Q50", "AurexQ50", true}}) {
    Put("vsfOperands_1.vsf", "grid");
    Put("vsfRegions_1.vsf", "grid");
    EXPECT_TRUE(SetLastModel(shared, row.from));
    CallsOf("ID_OPLC_Model", row.to);
    EXPECT_EQ(HasFile("vsfOperands_1.vsf"), row.kept) << row.from << " to " << row.to;
    EXPECT_EQ(HasFile("vsfRegions_1.vsf"), row.kept) << row.from << " to " << row.to;
    EXPECT_EQ(LastModel(shared), row.to);
  }
}

struct FakeHelp final : HelpViewer {
  std::vector<std::int32_t> shown;
  void ShowTopic(std::int32_t mapNumber) override { shown.push_back(mapNumber); }
};

TEST_F(ToolsTest, HelpOpensInItsOwnWindowWhereTheShellHasNoViewer) {
  FakeHelp viewer;
  parts.help = &viewer;
  shell.result = std::unexpected("no program on this computer is set up to open it");
  EXPECT_THAT(CallsOf("ID_Help"), ElementsAre(testing::StartsWith("Shell"))) << "and no complaint";
  EXPECT_THAT(viewer.shown, ElementsAre(100));

  clsHelpHandler handler(shared.paths, viewer);
  EXPECT_EQ(handler.CadinzaHelpFileName(), "KvTeleExe.chm");
  EXPECT_EQ(PathFromUtf8(handler.TPHelpFilePath()), shared.paths.Home() / "help" / "");
  EXPECT_EQ(handler.TPHelpFilePathAndName(), handler.TPHelpFilePath() + "KvTeleExe.chm");
  handler.ShowHTMLHelpByMapNumber(400);
  EXPECT_EQ(viewer.shown.back(), 400);
}

TEST_F(ToolsTest, HelpIsQuietUntilEscape) {
  EXPECT_THAT(CallsOf([&](clsCallerExe& caller) {
                caller.HelpSuppressed = true;
                for (const char* id : {"ID_Help", "Escape", "ID_Help"}) host.OnToolClicked(id, "user_rbk");
              }),
              ElementsAre("Shell '' HOME/help/KvTeleExe.chm ''"));
}

TEST_F(ToolsTest, LogOffAsksFirst) {
  for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {
    CallLog expected{"Enabled off", "Box (?) Log Off: Are you sure you want to log off?", "Enabled on"};
    if (answer == PromptAnswer::Yes) expected.insert(expected.end() - 1, {"Driver ForgetPasswords", "UserName"});
    prompts.Press(answer);
    EXPECT_EQ(CallsOf([&](clsCallerExe&) {
                callerState->UserName = "anna";
                callerState->UserPassword = Secret("1234");
                host.OnToolClicked("ID_LogOff", "");
                const std::string left = callerState->UserName + std::string(callerState->UserPassword.View());
                EXPECT_EQ(left, answer == PromptAnswer::Yes ? "" : "anna1234");
              }),
              expected);
  }
}

TEST_F(ToolsTest, ProgramsThatAreNotThereAreNamedAndModelsWithoutADesignerCodeGetNoParameters) {
  EXPECT_TRUE(SetLastModel(shared, "Q51"));
  shell.result = std::unexpected("It is not installed.");
  prompts.Press(PromptAnswer::Ok);
  EXPECT_THAT(CallsOf("ID_DownloadDesigner"),
              ElementsAre("Shell 'open' HOME/KorDownloadDesigner.exe ''", "Box (!) Telepanel: It is not installed."));
}

TEST_F(ToolsTest, ThePagesFolderIsRemembered) {
  const auto folder = home.Path() / "pages";
  prompts.Choose(Utf8FromPath(folder / "plant.kta"));
  EXPECT_THAT(CallsOf("ID_PagesFile"),
              ElementsAre("OpenFile Telepanel Files (*.kta)|*.kta", "OpenPagesFile HOME/pages/plant.kta"));
  prompts.Choose(std::nullopt);
  EXPECT_EQ(CallsOf("ID_PagesFile").size(), 1u);
  EXPECT_EQ(prompts.OpenDialogs().back().folder, Utf8FromPath(folder));
  prompts.Choose("/\xD0\x9C/plant.kta");  // letters that the settings cannot hold
  EXPECT_THAT(CallsOf("ID_PagesFile"),
              ElementsAre(testing::_, testing::HasSubstr("The folder of the Telepanel files was not kept. "),
                          "OpenPagesFile /\xD0\x9C/plant.kta"));
}

TEST_F(ToolsTest, ACacheIsRecentOnceItIsUsedAndAFailureToOpenItIsToldWithItsCause) {
  prompts.Choose(std::nullopt);
  EXPECT_THAT(CallsOf("ID_ImportFontsAndImages"), ElementsAre("Enabled off", testing::_, "Enabled on"));
  prompts.Choose("/c/plant.ktc");
  prompts.Press(PromptAnswer::Ok);
  host.opensCaches = std::unexpected("Its end is missing.");
  EXPECT_THAT(
      CallsOf("ID_ImportFontsAndImages"),
      ElementsAre("Enabled off", "OpenFile Telepanel For Color Cache Files (*.ktc)|*.ktc",
                  "OpenColourCache /c/plant.ktc",
                  "Box ( ) Error: Error Opening Cache File. Please Check for Disk Space\r\n\r\nIts end is missing.",
                  "Enabled on"));
  host.opensCaches = false;  // of another model
  CallsOf("ID_ImportFontsAndImages", "/c/other.ktc");
  EXPECT_THAT(ReadRecentCaches(shared), testing::IsEmpty()) << "the next time on line begins with the first";
  host.opensCaches = true;
  EXPECT_THAT(CallsOf("ID_ImportFontsAndImages", "/c/old.ktc"),
              ElementsAre("Enabled off", "OpenColourCache /c/old.ktc", "RecentCaches 1", "Enabled on"));
}

// A designer that hands back the blocks that it got, each with a mark behind it.
class FakeDesigner : public PanelDesigner {
 public:
  explicit FakeDesigner(std::size_t items) : mItems(items) {}
  void SetDriver(CommDriver& driver) override { driver.ComParamsCaller("designer"); }
  void SetBlocks(const Blocks& blocks) override { mBlocks = blocks; }
  void Run() override {
    for (Bytes& block : mBlocks) block.push_back('!');
  }
  std::size_t ItemCount() const override { return mItems; }
  Blocks GetBlocks() const override { return mBlocks; }

 private:
  std::size_t mItems;
  Blocks mBlocks;
};

TEST_F(ToolsTest, ThePanelDesignerGetsAndLeavesItsThreeBlocks) {
  std::size_t items = 2;
  parts.createPanelDesigner = [&] { return std::make_unique<FakeDesigner>(items); };
  const auto file = Put("DesignBlock.bin", "old");
  EXPECT_THAT(CallsOf("ID_PLC_DB"),
              ElementsAre("Enabled off", "Driver ComParamsCaller designer", "Enabled on", "Driver CloseDriver"));
  EXPECT_EQ(TemporaryFolder::Content(file), "!");  // one block of three was none
  CallsOf("ID_PLC_DB");
  EXPECT_EQ(TemporaryFolder::Content(file), "!!");
  items = 0;
  CallsOf("ID_PLC_DB");
  for (const char* name : {"DesignBlock.bin", "CellsValues.bin", "DesignLayoutBlock.bin"}) EXPECT_FALSE(HasFile(name));
}

}  // namespace
}  // namespace kv
