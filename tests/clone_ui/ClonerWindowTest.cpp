#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QProgressBar>
#include <QTableView>

#include "clone/CloneFrame.h"
#include "clone/CloneInfo.h"
#include "clone/CloneVerify.h"
#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLC.h"
#include "tests/desktop_ui/ToolWindowFixture.h"

namespace kv::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Lets a test look at the window each time the user is asked something.
struct WatchedPrompts : LoggedPrompts {
  using LoggedPrompts::LoggedPrompts;
  std::function<void(const std::string& asked)> onAsk = [](const std::string&) {};

  PromptAnswer Show(const MessageBox& box) override {
    EXPECT_TRUE(box.canLose || box.buttons != PromptButtons::YesNo) << "Enter says yes to: " << box.text;
    onAsk(box.text);
    return LoggedPrompts::Show(box);
  }
  std::optional<std::string> OpenFile(const FileDialog& dialog) override {
    onAsk(dialog.filter);
    return LoggedPrompts::OpenFile(dialog);
  }
  std::optional<std::string> SaveFile(const FileDialog& dialog) override {
    onAsk(dialog.filter);
    return LoggedPrompts::SaveFile(dialog);
  }
};

constexpr Duration kRestart = std::chrono::milliseconds(300);  // of a controller, with some to spare

class ClonerWindowTest : public ToolWindowFixture<frmDumpPLC, WatchedPrompts> {
 protected:
  ClonerWindowTest() { PlugIn({}); }

  void Open() {
    Show(std::make_unique<frmDumpPLC>(
        ClonerServices{.shared = fixture.shared, .prompts = prompts, .pacer = pacer, .clock = clock}, nullptr));
  }
  void OnlySmallSegments() const {
    for (const char* box : {"chkOP", "chkDT", "chkAP", "chkOS"}) Find<QCheckBox>(*window, box).setChecked(false);
  }
  void Create(std::initializer_list<PromptAnswer> afterwards = {}) {
    prompts.Choose(Utf8FromPath(file));
    prompts.Enter("1");
    prompts.Press(PromptAnswer::Yes);
    prompts.Press(PromptAnswer::Ok);
    for (const PromptAnswer answer : afterwards) prompts.Press(answer);
    Trigger("ID_CreateGhost");
  }
  // Answers the questions before a restore, the last of which is whether it is wanted, and closes the boxes behind.
  void Restore(int boxes = 2, const std::vector<PromptAnswer>& answers = {PromptAnswer::Yes},
               const std::vector<std::optional<std::string>>& typed = {}) {
    prompts.Choose(Utf8FromPath(file));
    for (const PromptAnswer answer : answers) prompts.Press(answer);
    for (const auto& each : typed) prompts.Enter(each);
    while (boxes-- > 0) prompts.Press(PromptAnswer::Ok);
    Trigger("ID_RestoreGhost");
  }
  void Trigger(const char* id) const { Find<QAction>(*window, id).trigger(); }
  // Does it once the operation is under way.
  void WhenAtWork(std::function<void()> action) const {
    const auto& bar = Find<QProgressBar>(*window, "ProgressBar");
    When(*window, [&bar] { return bar.value() > 0; }, std::move(action));
  }

  [[nodiscard]] QAbstractItemModel& Rows() const { return *Find<QTableView>(*window, "vsSegments").model(); }
  [[nodiscard]] std::string Heading() const {
    return Rows().headerData(0, Qt::Horizontal, Qt::DisplayRole).toString().toStdString();
  }
  [[nodiscard]] std::string Row(int row) const { return Rows().index(row, 0).data().toString().toStdString(); }
  // Caption, pointer and commands as they are while the user is asked.
  [[nodiscard]] std::string Look() const {
    return window->windowTitle().toStdString() + (Pointer() == "arrow" ? ":" : " (hourglass):") + Commands();
  }
  [[nodiscard]] std::string Commands() const {
    return Enabled<QAction>(
        {"ID_CreateGhost", "ID_RestoreGhost", "ID_VerifyClone", "ID_CompareClones", "ID_StopDump", "ID_Exit"});
  }
  static constexpr const char* kIdleLook =
      "Korvantis PLC Cloner: CreateGhost RestoreGhost VerifyClone CompareClones Exit";

  std::filesystem::path file = fixture.home.Path() / "clone.kdf";
};

TEST_F(ClonerWindowTest, CreatesAFileAndShowsTheSegments) {
  Open();
  constexpr int kSmallScreen = 768 / 2;  // at twice the scale
  EXPECT_LE(window->minimumSizeHint().height(), kSmallScreen);
  EXPECT_EQ(Look(), kIdleLook);
  std::vector<int> selected;
  QObject::connect(Find<QTableView>(*window, "vsSegments").selectionModel(), &QItemSelectionModel::currentRowChanged,
                   [&](const QModelIndex& row) { selected.push_back(row.row()); });
  std::vector<std::string> looks;
  std::string progress;
  prompts.onAsk = [&](const std::string&) {
    looks.push_back(Look());
    progress = Text("lblProgress");
  };
  Find<QCheckBox>(*window, "chkDT").setChecked(false);
  Create();
  EXPECT_EQ(prompts.Boxes().front().text, "The PLC is about to STOP, Continue?");
  const char* busy = "Korvantis PLC Cloner: Create Clone File (hourglass): StopDump";
  EXPECT_THAT(looks, ElementsAre("Korvantis PLC Cloner: StopDump", busy, busy));
  EXPECT_THAT(progress, HasSubstr("Reading the clone file: "));
  EXPECT_THAT(Information(), HasSubstr("It was read back and is whole: OP, HW,"));
  EXPECT_THAT(Information(), HasSubstr("which clone files never take: they are not in this one."));
  EXPECT_EQ(prompts.SaveDialogs().front().filter, "Korvantis Dump File|*.kdf");
  EXPECT_EQ(Look(), kIdleLook);
  EXPECT_EQ(Heading(), "Segment Name");
  EXPECT_EQ(Rows().rowCount(), 8);
  EXPECT_EQ(Row(1), "DT");
  EXPECT_THAT(selected, ElementsAre(0, 2, 3, 4, 6, 7)) << "as they are read";
  const auto info = InspectClone(file);
  EXPECT_TRUE(info->IsSound());
  EXPECT_EQ(info->segments.size(), 6U);
}

// A line for an address that no segment has stands in front: nothing is written any more.
TEST_F(ClonerWindowTest, TellsBeforehandWhatSpeaksAgainstAFile) {
  Open();
  OnlySmallSegments();
  Create();
  std::vector<std::string> found;
  prompts.onAsk = [&](const std::string&) { found.push_back(Information()); };
  std::string content = TemporaryFolder::Content(file);
  content.insert(content.find("/01WD"), BuildWriteFrame(1, MemoryKind::Flash, 0, Bytes{1, 2}) + "\r\n");
  fixture.home.Put("clone.kdf", content);
  PlugIn({.model = "K450"});
  Restore(0, {PromptAnswer::No});
  EXPECT_THAT(prompts.Boxes().back().text, ::testing::AllOf(HasSubstr("controller is a K450-45.\r\n"),
                                                            HasSubstr("does not fit the controller's memory"),
                                                            HasSubstr("\r\n\r\nRestore it all the same?")));
  EXPECT_EQ(Rows().rowCount(), 0);
  EXPECT_EQ(Look(), kIdleLook);
  EXPECT_THAT(found.back(), HasSubstr("Warning: The clone file is damaged: line 5"));
}

TEST_F(ClonerWindowTest, OverwritesNothingWithoutAYesToAQuestionThatNamesIt) {
  Open();
  EXPECT_THAT(Text("lblController"), HasSubstr("No controller has been asked yet"));
  OnlySmallSegments();
  Create();
  PlugIn({});
  auto other = driver.GetChannel();
  Restore(0, {PromptAnswer::No});
  for (const char* named : {"clone.kdf", "Controller: AurexQ50, serial number ", "Made from: AurexQ50", "Simulated",
                            "Its program stops", "about to be overwritten"}) {
    EXPECT_THAT(prompts.Boxes().back().text, HasSubstr(named));
  }
  EXPECT_FALSE(VerifyClone(*other, file)->IsSame());
  ASSERT_TRUE(other->SendCommand("CCM"));  // somebody else begins to load
  Restore(0, {PromptAnswer::No});
  EXPECT_THAT(prompts.Boxes().back().text, HasSubstr("somebody else's is under way"));
  EXPECT_THAT(Information(), HasSubstr("was not restored"));
  std::vector<std::string> found;
  prompts.onAsk = [&](const std::string&) { found.push_back(Look() + "\n" + Information()); };
  Restore(2, {PromptAnswer::Yes, PromptAnswer::Yes});
  EXPECT_THAT(found, Contains(::testing::AllOf(HasSubstr("Restore Clone File (hourglass): StopDump\n"),
                                               HasSubstr("byte for byte, as it was made"))));
  EXPECT_THAT(prompts.Boxes(), Contains(::testing::Field(&MessageBox::text, "Clone Restore Successfully.")));
  EXPECT_EQ(Look(), kIdleLook);
  EXPECT_EQ(Heading(), "Write Command");
  EXPECT_EQ(Rows().rowCount(), static_cast<int>(InspectClone(file)->frames));
  EXPECT_EQ(Row(Rows().rowCount() - 1), "/01EDEA");
  pacer.Sleep(kRestart);
  EXPECT_TRUE(VerifyClone(*other, file)->IsSame());
  other.reset();
  driver.CloseDriver();  // off line
  EXPECT_THAT(Text("lblController"), HasSubstr("Memory of AurexQ50, serial number "));
}

TEST_F(ClonerWindowTest, RestoresNothingWithoutThePassword) {
  Open();
  OnlySmallSegments();
  Create();
  PlugIn({.password = "Secret"});
  Restore(0, {PromptAnswer::Yes}, {std::nullopt});
  EXPECT_THAT(Information(), HasSubstr("was not restored"));
  Restore(1, {PromptAnswer::Yes}, {"secret", std::nullopt});
  EXPECT_THAT(Information(), HasSubstr("the password is wrong"));
}

TEST_F(ClonerWindowTest, IsStoppedByItsToolAndClosesOnlyThen) {
  PlugIn({.baud = 115200});
  fixture.home.Put("clone.kdf", "the good clone of last week");
  Open();
  WhenAtWork([&] {
    window->close();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(Commands(), " StopDump");
    EXPECT_THAT(Text("lblProgress"), HasSubstr("; in all "));
    EXPECT_FALSE(Find<QCheckBox>(*window, "chkOP").isEnabled());
    EXPECT_EQ(Information(), "An operation is running; Stop ends it.");
    QTest::keyClick(window.get(), Qt::Key_Escape, Qt::ShiftModifier);
  });
  Create({PromptAnswer::Yes});
  EXPECT_EQ(prompts.Boxes().end()[-2].text, "Operation Failed.");
  EXPECT_THAT(prompts.Boxes().back().text, HasSubstr("was stopped for the clone. Start it again now?"));
  EXPECT_EQ(driver.GetChannel()->GetControllerInfo(1)->state, 'R');
  EXPECT_THAT(Information(), HasSubstr("was stopped"));
  EXPECT_EQ(Text("lblProgress"), "Stopped.");
  EXPECT_EQ(TemporaryFolder::Content(file), "the good clone of last week");
  EXPECT_EQ(Look(), kIdleLook);

  PlugIn({.baud = 115200});
  OnlySmallSegments();
  Create();
  When(*window, [&] { return Commands() == " StopDump"; }, [&] { Trigger("ID_StopDump"); });
  prompts.Choose(Utf8FromPath(file));
  Trigger("ID_VerifyClone");
  EXPECT_EQ(Text("lblProgress"), "Stopped.");

  PlugIn({});
  OnlySmallSegments();
  Create();
  const auto isSending = [&] { return Heading() == "Write Command" && Rows().rowCount() > 0; };
  When(*window, isSending, [&] { Trigger("ID_StopDump"); });
  Restore();
  EXPECT_EQ(prompts.Boxes().back().text, "Operation Failed.");
  EXPECT_LT(Rows().rowCount(), static_cast<int>(InspectClone(file)->frames));
  Trigger("ID_Exit");
  EXPECT_FALSE(window->isVisible());
}

TEST(DumpList, KeepsTheLastLinesOfABigFile) {
  constexpr int kMost = 100;
  DumpList list(nullptr, kMost);
  const QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::Fatal);
  list.BeginCommands();
  for (int i = 1; i <= 3 * kMost; ++i) list.AddCommand("/01WD" + std::to_string(i) + "\r");
  EXPECT_LE(list.rowCount(), kMost);
  EXPECT_GT(list.rowCount(), kMost / 2);
  const int last = list.rowCount() - 1;
  EXPECT_EQ(list.data(list.index(last, 0), Qt::DisplayRole), "/01WD300");
  EXPECT_EQ(list.headerData(last, Qt::Vertical, Qt::DisplayRole), 300);
}

}  // namespace
}  // namespace kv::test
