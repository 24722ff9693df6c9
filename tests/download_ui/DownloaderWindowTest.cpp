#include <gmock/gmock.h>

#include <QCheckBox>
#include <QDropEvent>
#include <QGroupBox>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QUrl>
#include <deque>

#include "clone/CloneInfo.h"
#include "download/ui/frmDownloader.h"
#include "download/ui/frmIncompatibleBios.h"
#include "tests/desktop_ui/ToolWindowFixture.h"
#include "tests/download/Samples.h"

namespace kv::test {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// Answers Yes to every question but those that hold `no`, and notes all of them.
struct YesUser : Prompts {
  explicit YesUser(CallLog&) {}
  std::string no = "nothing asks this";
  std::optional<std::string> file;                   // that is chosen, to open or to save
  std::deque<std::optional<std::string>> passwords;  // "1" when there is none left
  std::vector<MessageBox> boxes;
  std::vector<InputBox> inputs;
  std::vector<FileDialog> dialogs;
  std::function<void(const std::string& asked)> onAsk = [](const std::string&) {};

  PromptAnswer Show(const MessageBox& box) override {
    boxes.push_back(box);
    onAsk(box.text);
    return box.text.contains(no) ? LeastCommitting(box.buttons) : Consent(box.buttons);
  }
  std::optional<std::string> Ask(const InputBox& box) override {
    inputs.push_back(box);
    if (passwords.empty()) return "1";
    auto next = passwords.front();
    passwords.pop_front();
    return next;
  }
  std::optional<std::string> OpenFile(const FileDialog& dialog) override {
    dialogs.push_back(dialog);
    return file;
  }
  std::optional<std::string> SaveFile(const FileDialog& dialog) override { return OpenFile(dialog); }
  [[nodiscard]] std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    std::ranges::transform(boxes, std::back_inserter(texts), &MessageBox::text);
    return texts;
  }
};

class DownloaderWindowTest : public ToolWindowFixture<frmDownloader, YesUser> {
 protected:
  void PlugIn(const Plc& plc) {
    ToolWindowFixture::PlugIn(plc);
    fixture.host.model = plc.model;
  }
  void Open(const std::string& user = "") {
    Show(std::make_unique<frmDownloader>(
        DownloaderServices{.shared = fixture.shared, .prompts = prompts, .pacer = pacer, .clock = clock}, user,
        nullptr));
    ASSERT_TRUE(WaitUntil([this] { return !Text("lblController").contains("No controller has been asked"); }));
  }
  void Press(const char* button) const { Find<QPushButton>(*window, button).click(); }
  void Drop(const fs::path& file) const {
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(QString::fromStdString(Utf8FromPath(file)))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
  }
  void Select(const fs::path& file) {
    prompts.file = Utf8FromPath(file);
    Press("cmdGetFile");
  }
  [[nodiscard]] std::string OsFrame() const {
    return Find<QGroupBox>(*window, "fraOSDownloader").title().toStdString();
  }
  // Project and file as the window shows them: name of the file, of the project, model, whether it can be sent.
  [[nodiscard]] std::string Shown() const {
    const bool isReady = Find<QPushButton>(*window, "cmdDownload").isEnabled();
    return Text("lblFileName") + "|" + Text("lblProjectName") + "|" + Text("lblPLCModel") + (isReady ? "|ready" : "");
  }
  // A row of the table of both sides: "4.60 (B19) > 4.75 (B03) > ".
  [[nodiscard]] std::string Row(const QString& label) const {
    const auto& table = Find<QTableWidget>(*window, "tblSides");
    for (int row = 0; row < table.rowCount(); ++row) {
      if (table.verticalHeaderItem(row)->text() != label) continue;
      QStringList texts;
      for (int column = 0; column < table.columnCount(); ++column) texts << table.item(row, column)->text();
      return texts.join(" > ").toStdString();
    }
    return "no row";
  }
  [[nodiscard]] std::string FirstHead() const {
    return Find<QTableWidget>(*window, "tblSides").horizontalHeaderItem(0)->text().toStdString();
  }
  // Pointer and commands while the user is asked something.
  [[nodiscard]] std::string Look() const {
    return Pointer() +
           Enabled<QPushButton>({"cmdGetFile", "cmdDownload", "cmdDownloadOS", "cmdStop", "cmdClose", "cmdIdentify"});
  }
  static constexpr const char* kReadyLook = "arrow GetFile Download DownloadOS Close Identify";
};

TEST_F(DownloaderWindowTest, KnowsWhichDownloadsTheControllerTakesAndInWhatStateItIsFound) {
  struct Case {
    const char* model;
    bool isInBoot;
    const char* frame;
    const char* filter;
  };
  const Case cases[] = {
      {"K220-22-R1", false, "PLC System Ugrade", "*.dai|*.dai"},
      {"AurexQ50", false, "PLC System Ugrade", "*.dai|*.dai"},
      {"AurexQ50", true, "PLC System Ugrade", "*.dai|*.dai"},
      {"K220-22-R1", true, "PLC System Ugrade", "*.dai|*.dai"},
      {"Q50", false, "OS Downloader", "*.d50|*.d50"},
      {"PR1", true, "OS Downloader", "*.d50|*.d50"},
      {"BRIO", false, "OS Downloader", "*.d50|*.d50"},
      {"K450-45", false, "OS Downloader", "*.dai|*.dai"},
  };
  for (const Case& each : cases) {
    PlugIn({.model = each.model, .isInBoot = each.isInBoot});
    Open();
    Press("cmdGetFile");  // and chooses none
    EXPECT_EQ(OsFrame(), each.frame) << each.model;
    EXPECT_EQ(prompts.dialogs.back().filter, each.filter) << each.model;
    EXPECT_EQ(Text("lblAdvice").contains("boot loader"), each.isInBoot) << each.model << Text("lblAdvice");
    const std::string model = each.model == std::string("K220-22-R1") ? "K220-22" : "PR1";
    EXPECT_EQ(Text("lblController").contains("boot loader of a " + model), each.isInBoot && each.model[0] != 'A')
        << Text("lblController");
    EXPECT_EQ(Shown(), "||");
  }
  EXPECT_THAT(Text("lblController"), HasSubstr("K450-45, serial number "));
  Press("cmdDownloadOS");
  EXPECT_THAT(prompts.Texts(),
              ElementsAre("There is a mismatch between PLC Type defined in Telepanel and connected PLC."));

  isSerial = true;
  PlugIn({.model = "Q51", .isInBoot = true, .baud = 57600});  // which a download that was cut has left there
  Open();
  EXPECT_THAT(Text("lblAdvice"), HasSubstr("boot loader"));
  isSerial = false;

  PlugIn({});
  Open();
  EXPECT_EQ(Text("lblAdvice"), "");
  ASSERT_TRUE(driver.GetChannel()->SendCommand("CCM"));  // somebody begins to load, and leaves
  Press("cmdIdentify");
  EXPECT_NE(Text("lblAdvice"), "");
  PlugOut();
  Press("cmdIdentify");
  EXPECT_THAT(Text("lblController"), HasSubstr("did not tell who it is"));
  EXPECT_THAT(Text("lblAdvice"), HasSubstr("What to do"));
  Press("cmdDownloadOS");
  EXPECT_THAT(Information(), HasSubstr("was not begun"));
  // What is plugged in while the window is open decides, not the selected model.
  for (const auto& [model, box] :
       {std::pair("K450-45", "There is a mismatch"), std::pair("Q50", "O/S file(s) missing")}) {
    PlugIn({.model = model});
    fixture.host.model = "K220-22-R1";
    Press("cmdDownloadOS");
    EXPECT_THAT(prompts.boxes.back().text, HasSubstr(box));
    EXPECT_THAT(Text("lblAdvice"), HasSubstr("but the selected model is K220-22-R1"));
  }
}

TEST_F(DownloaderWindowTest, SelectsAFileAndShowsWhatItIs) {
  const std::string project = SampleProject("K390");
  const fs::path aurex = fixture.home.Put("hall.dai", project);
  const fs::path compact = fixture.home.Put("hall.d50", SampleProject("Q51"));
  const fs::path damaged = fixture.home.Put("damaged.dai", project.substr(0, 149));
  const char* notLegal = "This file cannot be downloaded. It is not a legal Cadenza file.";
  struct Case {
    const char* model;
    const char* user;
    fs::path file;
    const char* shown;
    const char* box;
  };
  const Case cases[] = {
      {"K390", "", aurex, "hall.dai|Hall 7|K390|ready", ""},
      {"K390", "USER_LOMBA", aurex, "hall.dai|Hall 7|TS|ready", ""},
      {"K220-22-R1", "", damaged, "||", notLegal},
      {"K220-22-R1", "", compact, "||", notLegal},
      {"K220-22-R1", "", fixture.home.Path() / "none.dai", "||", "none.dai"},
      {"Q51", "", compact, "hall.d50|Hall 7|Q51-2-R34|ready", ""},
      {"Q51", "USER_LOMBA", compact, "hall.d50|Hall 7|45K|ready", ""},
      {"Q51", "", aurex, "||", "This file cannot be downloaded. It is not a legal T50/BRIO Ladder file."},
      {"K450-45", "", aurex, "hall.dai|Hall 7|K390", ""},
  };
  for (const Case& each : cases) {
    PlugIn({.model = each.model});
    Open(each.user);
    prompts.boxes.clear();
    Select(each.file);
    EXPECT_EQ(Shown(), each.shown) << each.model;
    EXPECT_EQ(prompts.boxes.size(), *each.box ? 1U : 0U) << each.model;
    for (const MessageBox& box : prompts.boxes) EXPECT_THAT(box.title + box.text, HasSubstr(each.box));
    EXPECT_EQ(Text("lblController").starts_with(each.model), *each.user == 0) << "the real model is not shown";
  }

  PlugIn({.model = "Q50"});
  Open();
  Select(aurex);
  EXPECT_THAT(Information(), HasSubstr("hall.dai is a project for a K390, which is of another family"));
  Select(compact);
  EXPECT_THAT(Text("lblPreview"), HasSubstr("made for a Q51-2-R34, and the controller is a Q50"));
  PlugIn({.model = "K390"});
  Open();
  Select(aurex);
  EXPECT_THAT(Text("lblPreview"), HasSubstr("on this link")) << "known before anything is decided";
  Select(damaged);
  EXPECT_EQ(Shown(), "hall.dai|Hall 7|K390|ready") << "nothing else changes";
  EXPECT_THAT(Row("Project"), HasSubstr(" > Hall 7 > "));
  Drop(fixture.home.Put("x.dai", project));
  EXPECT_TRUE(WaitUntil([this] { return Text("lblFileName") == "x.dai"; }));
  PlugIn({.model = "K330"});
  Press("cmdIdentify");
  EXPECT_THAT(Information(), HasSubstr("would be refused"));
}

TEST_F(DownloaderWindowTest, SendsAProjectOfEachFamilyAndShowsTheControllerBeforeAndAfter) {
  for (const char* model : {"K220-22-R1", "Q50"}) {
    PlugIn({.model = model});
    Open();
    const bool isCompact = model == std::string("Q50");
    const fs::path backup = fixture.home.Path() / "before.kdf";
    fs::remove(backup);
    std::vector<std::string> looks;
    std::string rowAtSuccess;
    prompts.onAsk = [&](const std::string& asked) {
      looks.push_back(Look());
      window->close();
      if (asked.contains("successful")) rowAtSuccess = Row("Project");
    };
    prompts.boxes.clear();
    Select(fixture.home.Put(isCompact ? "hall.d50" : "hall.dai", SampleProject(model)));
    EXPECT_EQ(Look(), kReadyLook);
    auto& first = Find<QCheckBox>(*window, "chkBackup");
    first.click();
    EXPECT_EQ(first.isChecked(), !isCompact) << first.toolTip().toStdString();  // clones are for the other family
    prompts.file = Utf8FromPath(backup);
    Press("cmdDownload");
    EXPECT_TRUE(window->isVisible()) << "closing is refused";
    EXPECT_THAT(looks, AllOf(Not(IsEmpty()), Each("hourglass Stop")));
    EXPECT_EQ(Look(), kReadyLook);
    EXPECT_EQ(Row("Project").substr(Row("Project").find(" > ")), " > Hall 7 > Hall 7") << model;
    EXPECT_EQ(FirstHead(), "Controller before");
    EXPECT_EQ(rowAtSuccess, Row("Project")) << "before the box is answered";
    if (!isCompact) {
      EXPECT_THAT(prompts.dialogs.back().initial, ::testing::ContainsRegex("-....-..-..-......\\.kdf"));
    }
    EXPECT_THAT(Information(), HasSubstr("has ended well"));
    EXPECT_THAT(Text("lblPreview"), HasSubstr("on this link"));
    EXPECT_EQ(Text("lblAdvice"), "");
    EXPECT_EQ(driver.GetChannel()->GetControllerInfo(1)->projectName, "Hall 7");
    EXPECT_EQ(!isCompact, fs::exists(backup)) << "the tick box takes a clone first";
    EXPECT_EQ(Information().contains("Clone File Created Successfully."), !isCompact);
    for (const MessageBox& box : prompts.boxes) {
      EXPECT_FALSE(box.text.starts_with("Clone File")) << "nobody's OK is waited for";
      EXPECT_TRUE(box.canLose || box.buttons != PromptButtons::YesNo || box.title != "Downloader") << box.text;
    }
  }
}

// The files are chosen in a window of their own; the one that was dropped before is offered first.
TEST_F(DownloaderWindowTest, SendsAnOsOfEachFamilyAndShowsTheControllerBeforeAndAfter) {
  struct Case {
    const char* model;
    bool isInBoot;
    const char* folder;
    const char* takes;  // the button that takes the files
  };
  const Case cases[] = {
      {"K220-22-R1", false, "Os Aurex/K220/", "cmdClose"},
      {"PX1", true, "OS/OSPX/", "cmdOK"},
  };
  for (const Case& each : cases) {
    const sim::Model& model = ModelCalled(each.model);
    std::vector<fs::path> files;
    for (const sim::OsVersion& os : {sim::OsVersion{"4.75", 3}, sim::OsVersion{"4.80", 1}}) {
      files.push_back(
          PutFile(fixture.home.Path() / each.folder / sim::OsFileName(model, os), SampleOs(each.model, os, 3000)));
    }
    const sim::OsVersion fonts{"1.30", 0};
    fixture.home.Put(each.folder + sim::FontsFileName(fonts), SampleFonts("K220-22-R1", fonts));
    PlugIn({.model = each.model, .isInBoot = each.isInBoot});
    Open();
    std::vector<std::string> looks;
    prompts.onAsk = [&](const std::string&) { looks.push_back(Look()); };
    WhenOpen<frmIncompatibleBios>(*window, [](frmIncompatibleBios& warning) {
      Find<QAbstractButton>(warning, "chkDelete").click();
      Find<QAbstractButton>(warning, "cmdContinue").click();
    });
    Drop(files.front());
    EXPECT_TRUE(WaitUntil([this] { return !Information().empty(); }));
    WhenOpen<QDialog>(*window, [&](QDialog& chooser) {
      EXPECT_NE(chooser.windowTitle(), window->windowTitle());
      window->close();
      Find<QPushButton>(chooser, each.takes).click();
    });
    std::vector<int> bar;
    QObject::connect(&Find<QProgressBar>(*window, "ProgressBar1"), &QProgressBar::valueChanged, window.get(),
                     [&bar](int value) { bar.push_back(value); });
    Press("cmdDownloadOS");
    EXPECT_EQ(*(std::is_sorted_until(bar.begin(), bar.end()) - 1), 10'000) << "it is that of the whole, up to its end";
    window->Programmed(89);
    EXPECT_EQ(Text("lblPresent"), "89%") << "and then that of the programming";
    EXPECT_TRUE(window->isVisible()) << "closing is refused";
    EXPECT_THAT(looks, AllOf(Not(IsEmpty()), Each("hourglass Stop")));
    EXPECT_THAT(Row("O/S"), ::testing::EndsWith(" > 4.75 (B03) > 4.75 (B03)")) << Information();
    EXPECT_THAT(Information(), HasSubstr("has ended well"));
    EXPECT_TRUE(Text("lblController").starts_with(each.model)) << Text("lblController");
    EXPECT_EQ(Text("lblAdvice"), "");
  }
}

TEST_F(DownloaderWindowTest, StopsWhenToldToAndSaysWhatTheControllerIsLeftAs) {
  PlugIn({.baud = 57600});
  Open();
  Select(fixture.home.Put("hall.dai", SampleProject("AurexQ50", 60'000)));
  const auto& amount = Find<QLabel>(*window, "lblAmount");
  std::string shown;
  When(
      *window, [&] { return amount.text().contains("left"); },
      [&] {
        shown = amount.text().toStdString();
        QTest::keyClick(window.get(), Qt::Key_Escape);
        EXPECT_EQ(Look(), "hourglass Stop");
        QTest::keyClick(window.get(), Qt::Key_Escape, Qt::ShiftModifier);
      });
  Press("cmdDownload");
  EXPECT_THAT(shown, ::testing::MatchesRegex(".* of .* KiB, .* KiB/s, about .* s left"));
  EXPECT_THAT(Information(), HasSubstr("was stopped"));
  EXPECT_THAT(Information(), HasSubstr(LeftBehindText(ControllerLeft::ProjectBegun)));
  EXPECT_EQ(Text("lblAdvice"), LeftBehindText(ControllerLeft::ProjectBegun));
  EXPECT_EQ(Look(), kReadyLook);
  EXPECT_EQ(Text("lblStatus"), "");

  prompts.no = "Start it now?";
  Press("cmdStart");
  EXPECT_THAT(prompts.boxes.back().text, HasSubstr("what was sent of it is given up"));
  prompts.no = "nothing asks this";
  Press("cmdIdentify");
  ASSERT_TRUE(driver.GetChannel()->SendCommand("CCR") && driver.GetChannel()->StopController(1));
  Press("cmdIdentify");
  EXPECT_TRUE(Find<QPushButton>(*window, "cmdStart").isVisible()) << "whoever has stopped it";
  Press("cmdStart");
  EXPECT_EQ(driver.GetChannel()->GetControllerInfo(1)->state, 'R') << Information();
  EXPECT_FALSE(Find<QPushButton>(*window, "cmdStart").isVisible());

  prompts.no = "about to be replaced";
  Press("cmdDownload");
  EXPECT_THAT(Information(), HasSubstr("was not begun"));
  window->close();
  EXPECT_FALSE(window->isVisible());
}

// A memory that is saved wants the password, and is named as long as it is there.
TEST_F(DownloaderWindowTest, SavesTheMemoryWithASecondTryForThePassword) {
  const std::string folder = "Os Aurex/K220/";
  fs::create_directories(fixture.home.Path() / folder);
  const sim::Model& model = ModelCalled("K220-22-R1");
  fixture.home.Put(folder + sim::OsFileName(model, {"3.74", 3}), SampleOs("K220-22-R1", {"3.74", 3}, 3000));
  fixture.home.Put(folder + sim::FontsFileName({"1.30", 0}), SampleFonts("K220-22-R1", {"1.30", 0}));
  const fs::path project = fixture.home.Put("hall.dai", SampleProject("K220-22-R1"));
  struct Case {
    std::deque<std::optional<std::string>> passwords;  // the first one gives access
    const char* no;                                    // is answered to this
    std::vector<const char*> told;
  };
  const char* untouched = "Nothing was changed in the controller.";
  const Case cases[] = {
      {{"77", std::nullopt}, "?!", {"was not begun", "its box was cancelled", untouched}},
      {{std::nullopt}, "?!", {"was not begun", "password was not given", untouched}},
      {{"77", "78"}, "Enter the password again?", {"has failed", "did not accept the password", untouched}},
      {{"77", "78", "77"}, "?!", {"has ended well", "Memory of ", "was deleted", "and system fonts 1.30"}},
  };
  for (const Case& each : cases) {
    PlugIn({.model = "K220-22-R1", .password = "77", .os = "3.73"});
    Open();
    Select(project);
    prompts.passwords = each.passwords;
    prompts.no = each.no;
    prompts.inputs.clear();
    prompts.boxes.clear();
    prompts.onAsk = [&](const std::string&) { EXPECT_EQ(Shown(), "||") << "no project is sent"; };
    WhenOpen<frmIncompatibleBios>(*window, [](frmIncompatibleBios& warning) {
      Find<QAbstractButton>(warning, "chkDelete").click();
      Find<QAbstractButton>(warning, "cmdContinue").click();
    });
    WhenOpen<QDialog>(*window, [](QDialog& chooser) {
      EXPECT_THAT(Find<QLabel>(chooser, "lblController").text().toStdString(), HasSubstr("K220-22-R1, serial number"));
      Find<QPushButton>(chooser, "cmdClose").click();
    });
    Press("cmdDownloadOS");
    for (const char* told : each.told) EXPECT_THAT(Information() + Row("System fonts"), HasSubstr(told));
    EXPECT_EQ(Find<QLabel>(*window, "lnkHelp").isVisible(), Information().contains("What to do: "));
    EXPECT_EQ(Shown(), "hall.dai|Hall 7|K220-22-R1|ready");
    const bool isDone = Information().contains("has ended well");
    EXPECT_EQ(FirstHead() + Row("Project").substr(Row("Project").find(" > ")),
              isDone ? "Controller before > - > (none)" : "Controller now > Hall 7 > ");
    for (const MessageBox& box : prompts.boxes) {
      EXPECT_TRUE(!box.text.contains("about to STOP, Continue?") || box.text.starts_with("For the clone")) << box.text;
    }
    EXPECT_TRUE(prompts.passwords.empty());
    for (const InputBox& box : prompts.inputs) EXPECT_THAT(box.text + box.hint, HasSubstr("K220-22-R1, serial number"));
  }
  EXPECT_THAT(Row("System fonts"), ::testing::EndsWith(" > 1.30 (B0), as sent"));
}

TEST_F(DownloaderWindowTest, CanBeReadAndReachedByKeys) {
  PlugIn({});
  Open();
  ExpectControlsCanBeRead(*window);
  EXPECT_EQ(window->focusWidget()->objectName(), "cmdGetFile") << "which was disabled while the controller was asked";
  window->resize(window->minimumSizeHint());
  QScrollBar& bar = *window->findChild<QScrollArea*>()->verticalScrollBar();
  bar.setValue(bar.maximum());
  EXPECT_GT(bar.value(), 0);
  Press("cmdIdentify");
  EXPECT_TRUE(WaitUntil([&] { return bar.value() == 0; })) << "what is said of the controller is seen";

  PlugIn({.faults = {"noreply"}});
  When(*window, [this] { return Look().contains("Stop"); }, [this] { window->close(); });
  Press("cmdIdentify");
  EXPECT_FALSE(window->isVisible()) << "what only asks is given up for it";
}

}  // namespace
}  // namespace kv::test
