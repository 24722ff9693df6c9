#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QContextMenuEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>

#include "sessions/SessionIni.h"
#include "sessions/ui/frmSession.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/support/SessionFixture.h"

namespace kv {
namespace {

using namespace kv::test;
using ::testing::ElementsAre;

class SessionWindowTest : public ::testing::Test {
 protected:
  void Open() {
    window = std::make_unique<frmSession>(fixture.shared, fixture.prompts, nullptr);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kPatience));
  }
  void MakeSession(const std::string& name) const { std::filesystem::create_directories(fixture.Session(name)); }

  [[nodiscard]] QTableWidget& List() const { return Find<QTableWidget>(*window, "flgSession"); }
  [[nodiscard]] QLineEdit& Folder() const { return Find<QLineEdit>(*window, "txtFolder"); }
  [[nodiscard]] QPushButton& Save() const { return Find<QPushButton>(*window, "cmdSave"); }
  [[nodiscard]] QPushButton& Close() const { return Find<QPushButton>(*window, "cmdClose"); }

  [[nodiscard]] std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    for (int i = 0; i < List().rowCount(); ++i) rows.push_back(List().item(i, 0)->text().toStdString());
    return rows;
  }
  void AskForMenu(const QPoint& at) const {
    QContextMenuEvent asked(QContextMenuEvent::Mouse, at, List().viewport()->mapToGlobal(at));
    QApplication::sendEvent(List().viewport(), &asked);
  }
  void Select(const QString& name) const { List().setCurrentItem(List().findItems(name, Qt::MatchExactly).front()); }
  // Active session, frame, and closing button as they are read on the screen.
  [[nodiscard]] std::vector<std::string> Captions() const {
    const QString shown[] = {Find<QLabel>(*window, "lblActive").text(),
                             Find<QGroupBox>(*window, "fSaveSession").title(), Close().text()};
    std::vector<std::string> captions;
    for (QString text : shown) captions.push_back(text.replace("&&", "&").toStdString());
    return captions;
  }

  SessionFixture fixture;
  std::unique_ptr<frmSession> window;
};

TEST_F(SessionWindowTest, EnterAndADoubleClickActivateARow) {
  MakeSession("Mill");
  for (const bool byKey : {true, false}) {
    fixture.shared.CurrentSession = "Default";
    Open();
    Select("Mill");
    const QPoint row = List().visualItemRect(List().currentItem()).center();
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, row);
    EXPECT_TRUE(window->isVisible());
    if (byKey) {
      QTest::keyClick(&List(), Qt::Key_Return);
    } else {
      QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, row);
    }
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(fixture.shared.CurrentSession, "Mill");
  }
}

TEST_F(SessionWindowTest, DeletesByKeyAndByMenu) {
  for (const char* name : {"A", "B", "C", "D"}) MakeSession(name);
  Open();
  Select("A");
  for (const PromptAnswer answer : {PromptAnswer::No, PromptAnswer::Yes}) {  // declined, it stays selected
    fixture.prompts.Press(answer);
    QTest::keyClick(&List(), Qt::Key_Delete);
  }
  EXPECT_THAT(Rows(), ElementsAre("B", "C", "D", "Default"));

  Select("Default");
  fixture.prompts.Press(PromptAnswer::Ok);
  QTest::keyClick(&List(), Qt::Key_Delete);
  EXPECT_THAT(Rows(), ElementsAre("B", "C", "D", "Default"));
  ASSERT_EQ(fixture.prompts.Boxes().size(), 3U);
  EXPECT_EQ(fixture.prompts.Boxes().back().text, "'Default' Session cannot be deleted.");

  // Last: without a window manager the menu does not give the focus back each time.
  const std::pair<const char*, std::function<void()>> menus[] = {
      {"B", [this] { AskForMenu(List().visualItemRect(List().currentItem()).center()); }},
      {"C",
       [this] {
         QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
         QApplication::sendEvent(&List(), &key);
       }},
      {"D", [this] { QTest::keyClick(&List(), Qt::Key_F10, Qt::ShiftModifier); }}};
  for (const auto& [name, openMenu] : menus) {
    Select(name);
    When(
        *window, [] { return QApplication::activePopupWidget() != nullptr; },
        [] { QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_D); });
    fixture.prompts.Press(PromptAnswer::Yes);
    openMenu();
  }
  EXPECT_THAT(Rows(), ElementsAre("Default"));
  AskForMenu(List().viewport()->rect().bottomLeft());  // over empty ground: an open menu would not return
}

// The mark of a program that was killed keeps its session for ever, unless somebody is told how to take it away.
TEST_F(SessionWindowTest, AMarkedSessionIsShownWithTheWayOut) {
  for (const char* name : {"Mill", "Other"}) {
    fixture.shared.CurrentSession = name;
    MakeSession(name);
    fixture.home.Put(std::string("Sessions/") + name + "/tmp.txt", "");
    ASSERT_TRUE(SetLastModel(fixture.shared, "Q50"));
    MarkSessionInUse(fixture.shared, true);
  }
  Open();
  const auto hold = [this]() -> QLabel& { return Find<QLabel>(*window, "lblHold"); };
  EXPECT_FALSE(hold().isVisible()) << "the active one is marked because it is active";
  Select("Mill");
  EXPECT_TRUE(hold().text().contains("activate it in the session window and then another one"))
      << hold().text().toStdString();
  EXPECT_EQ(List().item(List().currentRow(), 1)->text(), "Q50");
  EXPECT_EQ(List().item(List().currentRow(), 2)->text(), "Link of Q50");

  Close().click();  // what it says
  Open();
  Select("Other");
  Close().click();
  fixture.shared.CurrentSession = "Default";
  Open();
  Select("Mill");
  EXPECT_FALSE(hold().isVisible());
  fixture.prompts.Press(PromptAnswer::Yes);
  QTest::keyClick(&List(), Qt::Key_Delete);
  EXPECT_THAT(Rows(), ElementsAre("Default", "Other"));
}

TEST_F(SessionWindowTest, WithoutSessionsThereIsNoMenuAndNothingToSave) {
  std::filesystem::remove_all(fixture.home.Path() / "Sessions");
  Open();
  EXPECT_THAT(Rows(), ElementsAre());
  EXPECT_TRUE(Find<QLabel>(*window, "lblFault").text().contains("What to do: put the folder back"));
  EXPECT_FALSE(Save().isEnabled());
  AskForMenu(QPoint(5, 5));  // an open menu would not return
}

}  // namespace
}  // namespace kv
