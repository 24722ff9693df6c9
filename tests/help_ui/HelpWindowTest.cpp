#include <gmock/gmock.h>

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPrinter>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBrowser>
#include <filesystem>

#include "desktop/ScriptedPrompts.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/HelpRequest.h"
#include "desktop/ui/QtPrompts.h"
#include "help/HelpTopics.h"
#include "help/ui/HelpKey.h"
#include "help/ui/HelpWindow.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

std::string Topic(std::int32_t number) {
  const HelpTopic* topic = FindHelpTopic(number);
  return topic ? std::string(topic->page) : "none";
}

std::int32_t NumberOf(std::string_view page) {
  return FindHelpTopic(page)->number;
}

struct HelpWindowTest : testing::Test {
  HelpWindowTest() { home.PutCopy("help", KV_HELP_FOLDER); }

  frmHelp& Open(std::string_view page) {
    help.ShowTopic(NumberOf(page));
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (auto* found = dynamic_cast<frmHelp*>(widget); found && found->isVisible()) return *found;
    }
    throw std::runtime_error("there is no help window");
  }
  static std::string Page(const frmHelp& window) {
    return Find<QTextBrowser>(window, "brwPage").source().path().toStdString();
  }

  TemporaryFolder home;
  ProgramPaths paths{home.Path()};
  ScriptedPrompts prompts{[](const std::string& fault) { ADD_FAILURE() << fault; }};
  HelpWindow help{paths, prompts, home.Path() / "Windows.ini"};
};

TEST_F(HelpWindowTest, ShowsItsPicturesAndIsOneWindowForAllPages) {
  frmHelp& window = Open("cloner");
  const QVariant picture = Find<QTextBrowser>(window, "brwPage")
                               .document()
                               ->resource(QTextDocument::ImageResource, QUrl("help:/images/cloner-create.png"));
  EXPECT_FALSE(picture.value<QImage>().isNull());
  EXPECT_EQ(&Open("sessions"), &window);
  EXPECT_EQ(Page(window), "/sessions.html");
}

TEST_F(HelpWindowTest, FollowsLinksOfTheHelpAndNoOthers) {
  frmHelp& window = Open("start");
  auto& browser = Find<QTextBrowser>(window, "brwPage");
  emit browser.anchorClicked(browser.source().resolved(QUrl("operands.html")));
  for (const char* outside : {"https://example.com/", "file:///etc/passwd", "mailto:a@b.example"}) {
    browser.setSource(QUrl(outside));
    EXPECT_THAT(Page(window), testing::EndsWith(".html")) << outside;
    EXPECT_EQ(browser.source().scheme(), "help") << outside;
  }
}

TEST_F(HelpWindowTest, WhoeverClicksATabTypesNextAndTheIndexFollows) {
  frmHelp& window = Open("start");
  window.activateWindow();
  const auto& question = Find<QLineEdit>(window, "txtSearch");
  QTabBar& tabs = *Find<QTabWidget>(window, "tabHelp").tabBar();
  QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(2).center());
  EXPECT_TRUE(QTest::qWaitFor([&] { return question.hasFocus(); }));
  auto& keyword = Find<QLineEdit>(window, "txtKeyword");
  keyword.setText("coil");
  EXPECT_TRUE(Find<QListWidget>(window, "lstIndex").currentItem()->text().startsWith("coil"));
  QTest::keyClick(&keyword, Qt::Key_Return);
  EXPECT_THAT(Page(window), testing::AnyOf("/operands.html", "/operand-types.html"));
}

#ifdef _WIN32
TEST_F(HelpWindowTest, SaysThatThereIsNoPrinter) {
  if (QPrinter().outputFormat() == QPrinter::NativeFormat) GTEST_SKIP() << "there is one";
  prompts.Press(PromptAnswer::Ok);
  Find<QAction>(Open("start"), "cmdPrint").trigger();
  EXPECT_EQ(prompts.Boxes().size(), 1U);
}
#else
TEST_F(HelpWindowTest, PrintsAfterADialogThatCanBeLeft) {
  frmHelp& window = Open("start");
  bool wasAsked = false;
  WhenOpen<QDialog>(window, [&](QDialog& dialog) {
    wasAsked = dialog.objectName() == "PrintDialog" && Topic(HelpNumberOf(dialog)) == "help-window";
    dialog.reject();
  });
  Find<QAction>(window, "cmdPrint").trigger();
  EXPECT_TRUE(wasAsked);
}
#endif

TEST_F(HelpWindowTest, TellsWhereTheHelpShouldBe) {
  std::filesystem::remove_all(home.Path() / "help");
  prompts.Press(PromptAnswer::Ok);
  help.ShowTopic(100);
  ASSERT_EQ(prompts.Boxes().size(), 1U);
  EXPECT_THAT(prompts.Boxes().front().text, testing::HasSubstr("What to do: "));
}

// A window with a control in it that has a name.
struct NamedWindow {
  NamedWindow(const char* name, const char* control, QWidget* owner = nullptr) : window(owner), inside(&window) {
    window.setObjectName(name);
    inside.setObjectName(control);
  }
  QDialog window;
  QLineEdit inside;
};

TEST(HelpKeyTest, TheNearestTopicCounts) {
  NamedWindow owner("frmDumpPLC", "");
  const std::tuple<QWidget*, const char*, const char*, const char*> rows[] = {
      {nullptr, "frmDumpPLC", "unknown", "cloner"},  {nullptr, "frmUnknown", "unknown", "start"},
      {nullptr, "FileDialog", "", "choosing-files"}, {nullptr, "MessageBox", "", "questions"},
      {&owner.window, "frmUnknown", "", "cloner"},  // of the window that it belongs to
      {&owner.window, "MessageBox", "", "cloner"},
  };
  for (const auto& [parent, window, control, page] : rows) {
    const NamedWindow made(window, control, parent);
    EXPECT_EQ(Topic(HelpNumberOf(made.inside)), page) << window << "/" << control;
  }
}

TEST(HelpKeyTest, KeyButtonAndLinkFindTheSamePage) {
  std::vector<std::string> shown;
  const HelpKey key([&](std::int32_t number) { shown.push_back(Topic(number)); });
  NamedWindow window("frmDumpPLC", "cboVerify");
  window.window.show();
  QTest::keyClick(&window.inside, Qt::Key_F1);
  RequestHelp(window.inside);
  HelpLink link(&window.window);
  EXPECT_TRUE(link.isHidden());
  link.Follow("no reply after 3 tries.\nWhat to do: check cable and power.");
  EXPECT_FALSE(link.isHidden());
  emit link.linkActivated("help");
  WhenOpen<QMessageBox>(window.window, [&](QMessageBox& box) {
    Find<QPushButton>(box, "cmdHelp").click();
    EXPECT_TRUE(box.isVisible()) << "help does not answer the question";
    QTest::keyClick(&box, Qt::Key_F1);
    Find<QPushButton>(box, "cmdOk").click();
  });
  QtPrompts().Show({.text = "The controller refused: it is busy.\r\nWhat to do: wait."});
  EXPECT_THAT(shown,
              testing::ElementsAre("clone-verify", "clone-verify", "error-no-answer", "error-busy", "error-busy"));

  shown.clear();
  NamedWindow main("frmMain", "");
  main.window.show();
  QTest::keyClick(&main.inside, Qt::Key_F1);
  EXPECT_THAT(shown, testing::IsEmpty()) << "the main window's own command";
}

}  // namespace
}  // namespace kv::test
