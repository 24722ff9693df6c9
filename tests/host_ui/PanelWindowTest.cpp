#include <gmock/gmock.h>

#include <QAccessible>
#include <QClipboard>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QPointingDevice>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>
#include <memory>

#include "KvTele2/ui/PanelKeyMap.h"
#include "KvTele2/ui/PanelView.h"
#include "desktop/ui/Theme.h"
#include "tests/desktop_ui/UsableWindow.h"
#include "tests/host_ui/WindowFixture.h"

namespace kv::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PanelWindowTest : public WindowFixture {
 protected:
  // Goes on line with a served controller of this model, and waits for its screen.
  void RunOnLine(std::vector<std::string> model, const std::function<void(QMainWindow& window)>& user) {
    model.insert(model.begin(), "--model");
    PutTcp(mPort = ServedBy(std::move(model)), "TimeOut=2000\r\nTries=1\r\n");
    RunHere(user);
  }
  void RunHere(const std::function<void(QMainWindow& window)>& user) {
    Run([&](QMainWindow& window) {
      Trigger(window, "ID_OnLine");
      ASSERT_TRUE(WaitUntil([&] { return !View(window).Texts().empty(); })) << Text(window, "lblMessage");
      Return(window);
      user(window);
    });
  }
  // From another window; what is pressed elsewhere counts for nothing.
  static void Return(QMainWindow& window) {
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, kPatience));
    View(window).setFocus();
  }
  static PanelView& View(QMainWindow& window) { return Find<PanelView>(window, "panPanel"); }
  static std::string Mode(QMainWindow& window) { return Text(window, "lblPanelMode"); }
  static const panel::ScreenText* Touch(QMainWindow& window, const std::string& name) {
    const auto& texts = View(window).Texts();
    const auto found = std::ranges::find_if(texts, [&](const auto& text) { return text.touch && text.text == name; });
    return found == texts.end() ? nullptr : &*found;
  }
  static QPoint PointOf(QMainWindow& window, const std::string& name) {
    const auto* touch = Touch(window, name);
    if (!touch) throw std::runtime_error("nothing to press is called " + name);
    return View(window).PlaceOf(touch->place).center();
  }
  // Answers the question whether to operate.
  static void Operate(QMainWindow& window, const char* button = "cmdYes") {
    std::string asked;
    WhenOpen<QMessageBox>(window, [&](QMessageBox& box) {
      asked = box.text().toStdString();
      EXPECT_EQ(box.defaultButton(), &Find<QPushButton>(box, "cmdNo"));
      Find<QPushButton>(box, button).click();
    });
    Trigger(window, "HOST_Operate");
    EXPECT_THAT(asked, AllOf(HasSubstr("serial number 4711"), HasSubstr("127.0.0.1"))) << "which machine";
    if (std::string_view(button) == "cmdNo") return;
    EXPECT_TRUE(WaitUntil([&] { return Mode(window) == "Operate"; })) << Text(window, "lblPanelNote");
    Return(window);
  }
  // What another program reads at this moment; nothing runs in this one meanwhile.
  [[nodiscard]] std::string Bit(int number) const {
    QProcess kvtele;
    kvtele.start(KVTELE_PROGRAM,
                 {"--link", "tcp:127.0.0.1:" + QString::number(mPort), "read", "MB", QString::number(number)});
    if (!kvtele.waitForFinished(kPatience)) return "no answer";
    return kvtele.readAllStandardOutput().trimmed().split('\t').back().toStdString();
  }
  // The meanings of all frames that went out since the trace was opened.
  static std::vector<std::string> Meanings() {
    std::vector<std::string> meanings;
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (each->objectName() != "frmTrace") continue;
      const auto& model = *Find<QTableView>(*each, "flgTrace").model();
      for (int row = 0; row < model.rowCount(); ++row)
        meanings.push_back(model.index(row, model.columnCount() - 1).data().toString().toStdString());
    }
    return meanings;
  }

  int mPort = 0;
};

const std::vector<std::string> kColour{"K670-67-T40", "--serial-number", "4711"};
const std::vector<std::string> kText{"K220-22-R1", "--serial-number", "4711"};

TEST_F(PanelWindowTest, InViewNotOneByteOfInputLeavesHoweverItIsReached) {
  for (const auto& model : {kColour, kText}) {
    RunOnLine(model, [&](QMainWindow& window) {
      Trigger(window, "HOST_Trace");
      PanelView& view = View(window);
      EXPECT_EQ(Mode(window), "View");
      Operate(window, "cmdNo");
      EXPECT_EQ(Mode(window), "View");
      Return(window);
      const bool hasTouch = Touch(window, "Start") && !Touch(window, "Start")->place.IsEmpty();
      if (hasTouch) {
        QTest::mouseClick(&view, Qt::LeftButton, {}, PointOf(window, "Start"));
        EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains("Switch to Operate"); }));
      }
      for (int key : {Qt::Key_F2, Qt::Key_1, Qt::Key_Return, Qt::Key_Right, Qt::Key_Space}) {
        QTest::keyClick(&view, static_cast<Qt::Key>(key));
      }
      for (auto* button : window.findChildren<QPushButton*>()) {
        if (button->objectName().startsWith("cmdKey ")) QTest::mouseClick(button, Qt::LeftButton);
      }
      QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&view);
      for (int i = 0; i < access->childCount(); ++i) {
        if (auto* action = access->child(i)->actionInterface())
          action->doAction(QAccessibleActionInterface::pressAction());
      }
      Trigger(window, "HOST_ViewOnly");
      const std::size_t before = Meanings().size();
      ASSERT_TRUE(WaitUntil([&] { return Meanings().size() > before + 4; })) << "the screen is asked for";
      for (const char* input : {"press", "panel event", "operate", "hold", "let go"}) {
        EXPECT_THAT(Meanings(), Not(Contains(HasSubstr(input))));
      }
    });
  }
}

TEST_F(PanelWindowTest, InOperateAPressMovesTheMachineAndIsRecorded) {
  RunOnLine(kColour, [&](QMainWindow& window) {
    Operate(window);
    EXPECT_EQ(Bit(200), "0");
    QTest::mouseClick(&View(window), Qt::LeftButton, {}, PointOf(window, "Start"));
    EXPECT_TRUE(WaitUntil([&] { return Touch(window, "Start") && Touch(window, "Start")->touch->isOn; }));
    EXPECT_EQ(Bit(200), "1");
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&View(window));
    for (int i = 0; i < access->childCount(); ++i) {
      if (access->child(i)->text(QAccessible::Name) != "Stop" || !access->child(i)->actionInterface()) continue;
      EXPECT_EQ(access->child(i)->role(), QAccessible::PushButton);
      access->child(i)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    EXPECT_TRUE(WaitUntil([&] { return !Touch(window, "Start")->touch->isOn; })) << "as a screen reader presses";
    Return(window);
    QTest::qWait(300);  // the button has just changed
    for (const auto& text : View(window).Texts()) {
      if (text.touch) QTest::keyClick(&View(window), Qt::Key_Right);
      if (text.touch && text.text == "Start") break;
    }
    QTest::keyClick(&View(window), Qt::Key_Space);
    EXPECT_TRUE(WaitUntil([&] { return Touch(window, "Start")->touch->isOn; })) << "without a mouse";
    const auto& field = *Find<QFrame>(window, "fraPanel").findChild<QScrollArea*>();
    for (const Theme theme : {Theme::Dark, Theme::Light}) {
      QApplication::setPalette(PaletteOf(theme));
      QCoreApplication::processEvents();
      EXPECT_EQ(field.palette().color(QPalette::Window), PaletteOf(theme).color(QPalette::Window));
    }
    Trigger(window, "HOST_ViewOnly");
    EXPECT_TRUE(WaitUntil([&] { return Mode(window) == "View"; }));
  });
  QApplication::setPalette(QPalette());
  std::string records;
  for (const auto& file : std::filesystem::recursive_directory_iterator(home.Path() / "Sessions/Default")) {
    if (file.is_regular_file()) records += TemporaryFolder::Content(file.path());
  }
  EXPECT_THAT(records, AllOf(HasSubstr("operate the panel"), HasSubstr("\\\"Start\\\"")));
}

TEST_F(PanelWindowTest, WhatIsHeldIsLetGoWhateverHappensToTheWindow) {
  RunOnLine(kColour, [&](QMainWindow& window) {
    Operate(window);
    PanelView& view = View(window);
    QTest::mouseClick(&view, Qt::LeftButton, {}, PointOf(window, "Manual"));
    ASSERT_TRUE(WaitUntil([&] { return Touch(window, "Conveyor") != nullptr; }));
    QTest::qWait(300);
    const auto isHeld = [&] { return Touch(window, "Conveyor")->touch->isPressed; };
    const QPoint at = PointOf(window, "Conveyor");
    const struct {
      const char* what;
      std::function<void()> happens;
    } cases[] = {
        {"the button is let go", [&] { QTest::mouseRelease(&view, Qt::LeftButton, {}, at); }},
        {"the focus goes", [&] { window.findChild<QWidget*>("tblLog")->setFocus(); }},
        {"the pointer slides off", [&] { QTest::mouseMove(&view, at + QPoint(0, -120)); }},
        {"the mouse is taken away",
         [&] {
           QEvent ungrab(QEvent::UngrabMouse);
           QApplication::sendEvent(&view, &ungrab);
         }},
        {"another program comes to the front", [] { emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive); }},
    };
    for (const auto& each : cases) {
      view.setFocus();
      QTest::mousePress(&view, Qt::LeftButton, {}, at);
      EXPECT_TRUE(WaitUntil(isHeld)) << each.what;
      QTest::qWait(700);
      EXPECT_TRUE(isHeld()) << "held on to: " << each.what;
      each.happens();
      EXPECT_TRUE(WaitUntil([&] { return !isHeld(); })) << each.what;
      QTest::mouseMove(&view, at);
      QTest::qWait(100);
      EXPECT_FALSE(isHeld()) << "never again by itself: " << each.what;
      QTest::mouseRelease(&view, Qt::LeftButton, {}, at);
    }
    // The whole program hangs.
    view.setFocus();
    QTest::mousePress(&view, Qt::LeftButton, {}, at);
    EXPECT_TRUE(WaitUntil(isHeld));
    EXPECT_EQ(Bit(201), "1");
    QTest::qSleep(600);
    EXPECT_EQ(Bit(201), "0");
    QTest::mouseRelease(&view, Qt::LeftButton, {}, at);
  });
}

TEST_F(PanelWindowTest, AFingerPressesHoldsAndSlidesOffAsTheMouseDoesAndNothingTwice) {
  const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
  RunOnLine(kColour, [&](QMainWindow& window) {
    Trigger(window, "HOST_Trace");
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (each->objectName() == "frmTrace")
        each->move(window.geometry().bottomRight());  // a finger meets what is above
    }
    Operate(window);
    PanelView& view = View(window);
    const QPoint manual = PointOf(window, "Manual");
    QTest::touchEvent(&view, screen.get()).press(0, manual, &view);
    QTest::touchEvent(&view, screen.get()).release(0, manual, &view);
    ASSERT_TRUE(WaitUntil([&] { return Touch(window, "Conveyor") != nullptr; }));
    QTest::qWait(300);
    const auto isHeld = [&] { return Touch(window, "Conveyor")->touch->isPressed; };
    const QPoint at = PointOf(window, "Conveyor");
    for (const QPoint& end : {at, at - QPoint(0, 120)}) {
      QTest::touchEvent(&view, screen.get()).press(0, at, &view);
      EXPECT_TRUE(WaitUntil(isHeld)) << Text(window, "lblPanelNote");
      QTest::qWait(700);
      EXPECT_TRUE(isHeld()) << "held on to";
      if (end != at) QTest::touchEvent(&view, screen.get()).move(0, end, &view);
      if (end == at) QTest::touchEvent(&view, screen.get()).release(0, at, &view);
      EXPECT_TRUE(WaitUntil([&] { return !isHeld(); }));
      if (end != at) QTest::touchEvent(&view, screen.get()).move(0, at, &view);
      QTest::qWait(100);
      EXPECT_FALSE(isHeld()) << "never again by itself";
      if (end != at) QTest::touchEvent(&view, screen.get()).release(0, at, &view);
    }
    const auto sent = Meanings();
    EXPECT_EQ(std::ranges::count_if(sent, [](const auto& each) { return each.contains("press "); }), 3);
  });
}

TEST_F(PanelWindowTest, ALostLinkLeavesTheLastScreenPaleWithItsAgeAndTakesNoInput) {
  RunOnLine(kColour, [&](QMainWindow& window) {
    Operate(window);
    const QImage before = View(window).grab().toImage();
    kvsim->Signal(SIGSTOP);
    ASSERT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains("s old"); }));
    EXPECT_TRUE(WaitUntil([&] { return Mode(window) == "View"; })) << "Operate ends with the link";
    EXPECT_EQ(View(window).Picture().size(), QSize(800, 480));
    EXPECT_NE(View(window).grab().toImage(), before) << "pale";
    QTest::mouseClick(&View(window), Qt::LeftButton, {}, PointOf(window, "Start"));
    EXPECT_FALSE(Find<QAction>(window, "HOST_Operate").isEnabled());
    kvsim->Signal(SIGCONT);
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains(" old.") == false; }));
    EXPECT_EQ(Mode(window), "View");
    EXPECT_EQ(Bit(200), "0");
    WhenOpen<QDialog>(window, [&](QDialog& journal) {
      EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").starts_with("Paused"); }));
      journal.reject();
    });
    Trigger(window, "ID_Journal");
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains(" old.") == false; }));
    WhenOpen<QMessageBox>(window, [&](QMessageBox& box) {
      kvsim->Signal(SIGSTOP);
      EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains("s old"); })) << "under a question, too";
      kvsim->Signal(SIGCONT);
      Find<QPushButton>(box, "cmdNo").click();
    });
    Trigger(window, "HOST_Operate");
  });
}

TEST_F(PanelWindowTest, AQuestionInTheMiddleOfAnExchangeIsNoSilenceAndARefusalHasItsCure) {
  std::filesystem::create_directories(home.Path() / "Sessions/Default/Changes.lock");  // nothing can be recorded
  RunOnLine(kColour, [&](QMainWindow& window) {
    WhenOpen<QMessageBox>(window, [&](QMessageBox& box) {
      WhenOpen<QMessageBox>(window, [&](QMessageBox& unrecorded) {
        EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblMessage").starts_with("A question waits"); }));
        EXPECT_TRUE(window.windowTitle().contains("Running")) << window.windowTitle().toStdString();
        Find<QPushButton>(unrecorded, "cmdNo").click();
      });
      Find<QPushButton>(box, "cmdYes").click();
    });
    Trigger(window, "HOST_Operate");
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblPanelNote").contains("Asking to operate the panel"); }));
    EXPECT_THAT(Text(window, "lblPanelCure"), AllOf(HasSubstr("Likely cause: "), HasSubstr("What to do: ")));
  });
}

TEST_F(PanelWindowTest, TheKeysOfATextDisplayAreOnTheKeyboardAndBesideIt) {
  RunOnLine(kText, [&](QMainWindow& window) {
    auto& start = Find<QPushButton>(window, "cmdKey F1");
    EXPECT_TRUE(WaitUntil([&] { return start.toolTip().contains("Start") && start.toolTip().contains("(F1)"); }));
    Operate(window);
    QTest::mouseClick(&start, Qt::LeftButton);
    EXPECT_TRUE(WaitUntil([&] { return start.accessibleName().contains("lamp on"); }))
        << start.accessibleName().toStdString();
    View(window).setFocus();
    QTest::keyClick(&View(window), Qt::Key_F2);
    EXPECT_TRUE(WaitUntil([&] { return start.accessibleName().contains("lamp off"); }));
    QTest::qWait(300);  // the conveyor could not be moved before
    QTest::keyPress(&View(window), Qt::Key_F4);
    const auto isPressed = [&] {
      const auto& texts = View(window).Texts();
      return std::ranges::any_of(texts, [](const auto& text) { return text.text == "F4" && text.touch->isPressed; });
    };
    EXPECT_TRUE(WaitUntil(isPressed)) << "the conveyor, as long as it is held: " << Text(window, "lblPanelNote");
    for (int i = 0; i < 4; ++i) {
      QKeyEvent repeat(QEvent::KeyRelease, Qt::Key_F4, {}, "", true);
      QApplication::sendEvent(&View(window), &repeat);
      QTest::qWait(200);
    }
    EXPECT_TRUE(isPressed()) << "the repetition of a key lets nothing go";
    // As a desktop tells it whose two halves came apart: let go and pressed in the same moment, and no word of
    // repeating.
    for (quint64 moment = 1000; moment < 1400; moment += 100) {
      for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent half(type, Qt::Key_F4, {});
        half.setTimestamp(moment);
        QApplication::sendEvent(&View(window), &half);
        EXPECT_TRUE(View(window).PressedNow()) << moment;
        QTest::qWait(10);
      }
    }
    QTest::keyRelease(&View(window), Qt::Key_F4);
    EXPECT_TRUE(WaitUntil([&] { return !isPressed(); }));
    auto& conveyor = Find<QPushButton>(window, "cmdKey F4");
    QTest::keyPress(&conveyor, Qt::Key_Space);
    EXPECT_TRUE(WaitUntil(isPressed));
    QEvent isActive(QEvent::ActivationChange);
    QApplication::sendEvent(&conveyor, &isActive);
    EXPECT_TRUE(conveyor.isDown()) << "the window in front lets nothing go";
    QTest::keyRelease(&conveyor, Qt::Key_Space);
    EXPECT_TRUE(WaitUntil([&] { return !isPressed(); }));
  });
}

TEST_F(PanelWindowTest, TheScreenIsScaledCopiedSavedAndSearched) {
  RunOnLine(kColour, [&](QMainWindow& window) {
    ExpectCommandsCanBeRead(window);
    ExpectControlsCanBeRead(window);
    PanelView& view = View(window);
    Trigger(window, "HOST_CopyPicture");
    EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(800, 480));
    for (const auto& [name, isSaved] : {std::pair("screen.png", true), {"no folder/screen.png", false}}) {
      const QString path = QString::fromStdString((home.Path() / name).string());
      WhenOpen<QFileDialog>(window, [&](QFileDialog& dialog) {
        Find<QLineEdit>(dialog, "fileNameEdit").setText(path);
        static_cast<QDialog&>(dialog).accept();
      });
      const Boxes boxes;
      Trigger(window, "HOST_SavePicture");
      EXPECT_EQ(QImage(path).convertToFormat(QImage::Format_RGB32), isSaved ? view.Picture() : QImage());
      EXPECT_EQ(boxes.texts.empty(), isSaved);
    }
    Return(window);
    Trigger(window, "HOST_CopyTexts");
    EXPECT_TRUE(QApplication::clipboard()->text().contains('\n'));
    const std::string word = std::ranges::find_if(view.Texts(), [](const auto& text) { return !text.touch; })->text;
    Trigger(window, "HOST_FindText");
    auto& find = Find<QLineEdit>(window, "txtFind");
    find.setText(QString::fromStdString(word).toUpper());
    EXPECT_THAT(Text(window, "lblFound"), testing::StartsWith("1 of "));
    find.setText("Conveyor");
    EXPECT_EQ(Text(window, "lblFound"), "Not on this page");
    Operate(window);
    QTest::mouseClick(&view, Qt::LeftButton, {}, PointOf(window, "Manual"));
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblFound").starts_with("1 of "); })) << "on the next page";
    find.setFocus();
    QTest::keyClick(&find, Qt::Key_Escape);
    EXPECT_FALSE(find.isVisible());
    const QSize before = window.size() - QSize(40, 60);
    window.resize(before);
    Trigger(window, "HOST_FullScreen");
    EXPECT_TRUE(WaitUntil([&] { return !Find<QTableView>(window, "tblLog").isVisible(); }));
    EXPECT_TRUE(window.isFullScreen());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(WaitUntil([&] { return Find<QTableView>(window, "tblLog").isVisible(); }));
    EXPECT_FALSE(window.isFullScreen());
    EXPECT_EQ(window.size(), before);
    const QScrollBar& bar = *Find<QTableView>(window, "tblLog").verticalScrollBar();
    EXPECT_TRUE(WaitUntil([&] { return bar.value() == bar.maximum(); })) << "of " << bar.maximum();
  });
}

TEST(PanelScaleTest, DotsAreWholeOrTheScreenFits) {
  const struct {
    PanelScale scale;
    QSizeF room;
    double ratio;
    double factor;
  } cases[] = {{PanelScale(1), {100, 100}, 1, 1},     {PanelScale(2), {100, 100}, 1.25, 2},
               {PanelScale(1), {1, 1}, 3, 3},         {PanelScale(), {820, 500}, 1, 1},
               {PanelScale(), {1500, 900}, 1, 1.875}, {PanelScale(), {820, 500}, 2, 2},
               {PanelScale(), {400, 2000}, 1, 0.5},   {PanelScale(), {}, 1, 1}};
  for (const auto& each : cases) {
    EXPECT_DOUBLE_EQ(each.scale.Factor({800, 480}, each.room, each.ratio), each.factor) << each.room.width();
    EXPECT_EQ(PanelScale::Named(each.scale.Name()).Name(), each.scale.Name());
  }
}

#ifndef _WIN32  // the simulator has no pseudo terminal there
TEST_F(PanelWindowTest, TakesWhatIsTypedWhileASlowLineIsAskedForTheScreen) {
  const auto port = home.Path() / "line";
  kvsim = std::make_unique<kvtest::KvsimProcess>(
      std::vector<std::string>{"--model", kColour[0], "--pty", port.string(), "--baud", "9600"});
  ASSERT_NE(kvsim->ReadyLine(), "");
  PutLink("Transport=serial\r\nSerialPort=" + port.string() + "\r\nBaudRate=9600\r\n");
  RunHere([&](QMainWindow& window) {
    int moves = 0;
    QTimer input;  // what is typed arrives while the screen is asked for
    QObject::connect(&input, &QTimer::timeout, [&] {
      QTest::keyClick(&View(window), Qt::Key_Right);
      ++moves;
    });
    input.start(20);
    EXPECT_TRUE(WaitUntil([&] { return moves > 20; }));
    EXPECT_THAT(Text(window, "lblMissing"), HasSubstr("missing")) << "a slow line is for the screen";
    EXPECT_TRUE(Find<QPushButton>(window, "cmdImportFonts").isVisible());
  });
}
#endif

}  // namespace
}  // namespace kv::test
