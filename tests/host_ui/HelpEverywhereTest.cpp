// The help key in every control of every window of the program: the page that opens names the window.

#include <gmock/gmock.h>

#include <QTextBrowser>
#include <filesystem>

#include "apps/KvTeleExe/ToolWindowTable.h"
#include "desktop/ui/QtPrompts.h"
#include "download/ui/frmBrioQ50OsInfo.h"
#include "download/ui/frmIncompatibleBios.h"
#include "download/ui/frmOsInfo.h"
#include "editors/ui/frmHexSelector.h"
#include "help/HelpTopics.h"
#include "help/ui/HelpKey.h"
#include "tests/host_ui/WindowFixture.h"

namespace kv::test {
namespace {

class HelpEverywhereTest : public WindowFixture {
 protected:
  // Without the compiled file, which Windows shows in a viewer of its own.
  HelpEverywhereTest() { home.PutCopy("help/pages", KV_HELP_FOLDER "/pages"); }
};

QWidget* TopLevel(const char* name) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == name && widget->isVisible()) return widget;
  }
  return nullptr;
}

// The text of the page that the help shows now.
std::string ShownPage() {
  const QWidget* help = TopLevel("frmHelp");
  return help ? Find<QTextBrowser>(*help, "brwPage").toPlainText().toStdString() : "no help is shown";
}

// As the window's command reads in the menu: "Operand View".
std::string NameOf(const QAction& command) {
  return command.text().remove('&').remove("...").toStdString();
}

void PressInEachControl(QWidget& window, const std::string& name) {
  int pressed = 0;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    if (control->focusPolicy() == Qt::NoFocus || !control->isVisible() || !control->isEnabled()) continue;
    if (control->window() != &window) continue;
    if (QWidget* help = TopLevel("frmHelp")) help->hide();
    QTest::keyClick(control, Qt::Key_F1);
    EXPECT_THAT(ShownPage(), testing::HasSubstr(name)) << control->objectName().toStdString();
    ++pressed;
  }
  EXPECT_GT(pressed, 0) << name;
}

TEST_F(HelpEverywhereTest, TheKeyOpensAPageThatNamesTheWindow) {
  std::vector<std::string> commands{"ID_ComParams", "ID_Modem"};
  for (const ToolWindowRow& row : ToolWindowTable()) commands.emplace_back(row.id);
  Run([&](QMainWindow& window) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window, kPatience));
    PressInEachControl(window, "main window");
    Trigger(window, "HOST_Trace");
    PressInEachControl(*TopLevel("frmTrace"), "Trace of the Link");
    for (const std::string& id : commands) {
      const std::string name = NameOf(Find<QAction>(window, id.c_str()));
      WhenOpen<QDialog>(window, [&](QDialog& dialog) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog, kPatience));
        PressInEachControl(dialog, name);
        dialog.close();
      });
      Trigger(window, id.c_str());
    }
    if (QWidget* help = TopLevel("frmHelp")) PressInEachControl(*help, "help window");
  });
}

// Those that open from within another window, and the boxes that any of them shows.
TEST_F(HelpEverywhereTest, SoItDoesInWindowsOfWindowsAndInBoxes) {
  QtPrompts prompts;
  Run([&](QMainWindow& window) {
    struct Row {
      const char* words;
      std::function<void()> open;
    };
    const Row rows[] = {
        {"Operating System List", [&] { frmOsInfo({}, "", &window).exec(); }},
        {"Operating System List", [&] { frmBrioQ50OsInfo({}, "", &window).exec(); }},
        {"another boot loader", [&] { frmIncompatibleBios(&window).exec(); }},
        {"Choose CSV Separator", [&] { frmHexSelector(home.Path() / "Windows.ini", &window).exec(); }},
        {"Questions and messages", [&] { prompts.Show({.text = "Continue?"}); }},
        {"Questions and messages", [&] { (void)prompts.Ask({.text = "Name:"}); }},
        {"Passwords", [&] { (void)prompts.Ask({.text = "Password:", .secret = true}); }},
        {"Choosing files", [&] { (void)prompts.OpenFile({.filter = "Clones|*.kdf"}); }},
    };
    for (const Row& row : rows) {
      if (QWidget* help = TopLevel("frmHelp")) help->hide();
      window.activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&window, kPatience));
      WhenOpen<QDialog>(window, [&](QDialog& dialog) {
        PressInEachControl(dialog, row.words);
        dialog.close();
      });
      row.open();
    }
  });
}

TEST_F(HelpEverywhereTest, AnErrorLeadsToItsPage) {
  PutTcp(9);  // nobody listens there
  Run([&](QMainWindow& window) {
    const Boxes boxes;
    Trigger(window, "ID_OnLine");
    auto& link = Find<QLabel>(window, "lnkHelp");
    ASSERT_TRUE(WaitUntil([&] { return link.isVisible(); }));
    emit link.linkActivated("help");
    EXPECT_THAT(ShownPage(), testing::StartsWith("The port cannot be opened"));
    Trigger(window, "ID_Help");
    EXPECT_THAT(ShownPage(), testing::StartsWith("Telepanel: the main window")) << "no viewer without a desktop";
  });
}

}  // namespace
}  // namespace kv::test
