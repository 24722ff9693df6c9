#include "desktop/ui/QtPacer.h"

#include <gtest/gtest.h>

#include <QCursor>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>
#include <optional>

#include "desktop/StopScope.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/QtPrompts.h"
#include "tests/desktop_ui/QtFixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using namespace kv::test;

// A window with a field, a button and a command with a shortcut, and what the user achieves with them.
class QtPacerTest : public ::testing::Test {
 protected:
  QtPacerTest() {
    auto* page = new QVBoxLayout(&window);
    page->addWidget(&field);
    page->addWidget(&button);
    action.setShortcut(Qt::Key_F5);
    window.addAction(&action);
    QObject::connect(&button, &QPushButton::clicked, &window, [this] { ++clicks; });
    QObject::connect(&action, &QAction::triggered, &window, [this] { ++shortcuts; });
    window.resize(400, 200);
    window.show();
    field.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, kPatience));
  }

  void Type(int key, const QString& text = {}) {
    qt_handleKeyEvent(window.windowHandle(), QEvent::KeyPress, key, Qt::NoModifier, text);
    qt_handleKeyEvent(window.windowHandle(), QEvent::KeyRelease, key, Qt::NoModifier, text);
  }
  // Presses what is seen at the place of the widget.
  void ClickOn(const QWidget& widget) {
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, widget.mapTo(&window, widget.rect().center()));
  }
  [[nodiscard]] QWidget* Overlay() const { return window.findChild<QWidget*>("busyOverlay"); }
  [[nodiscard]] bool IsOverlayShown() const { return Overlay() && Overlay()->isVisible(); }

  // What the user does in the next turn of the event loop.
  void Meanwhile(std::function<void()> act) { QTimer::singleShot(0, &window, std::move(act)); }

  // Waits as an engine does until `done`, and gives up after a time that no test needs.
  bool Wait(const std::function<bool()>& done) {
    const Instant end = pacer.Now() + std::chrono::milliseconds(kPatience);
    while (!done() && pacer.Now() < end) pacer.Sleep(2ms);
    return done();
  }

  QtPacer pacer;
  QWidget window;
  QLineEdit field;
  QPushButton button{"Go"};
  QAction action{"Command"};
  int clicks = 0;
  int shortcuts = 0;
};

TEST_F(QtPacerTest, TheEventLoopBeatsWhileAnEngineSleeps) {
  const Instant before = pacer.Now();
  EXPECT_LT(LongestGap(pacer, [&] { pacer.Sleep(400ms); }), kLongestAllowedGap);
  EXPECT_GE(pacer.Now() - before, 400ms);
}

TEST_F(QtPacerTest, InputDuringAWaitIsKeptAndThenDelivered) {
  struct Watcher final : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      moves += event->type() == QEvent::MouseMove;
      return false;
    }
    int moves = 0;
  } watcher;
  window.windowHandle()->installEventFilter(&watcher);
  QCursor::setPos(window.mapToGlobal(QPoint(30, 30)));  // without a screen only the pointer goes through the queue
  pacer.Turn();
  pacer.Sleep(20ms);
  EXPECT_EQ(watcher.moves, 0);
  pacer.DoEvents();
#ifdef _WIN32  // which may hand it on in a later turn
  for (int turn = 0; turn < 500 && watcher.moves == 0; ++turn) {
    pacer.Sleep(2ms);
    pacer.DoEvents();
  }
#endif
  EXPECT_EQ(watcher.moves, 1);
}

TEST_F(QtPacerTest, AQuestionInTheMiddleOfAnOperationStandsBeforeNoOverlay) {
  QtPrompts prompts;
  BusyState busy(pacer, window, "Writing");
  auto inner = std::make_optional<BusyState>(pacer, window, "Writing more");
  ASSERT_TRUE(Wait([this] { return IsOverlayShown(); }));
  WhenOpen<QDialog>(window, [this](QDialog& box) {
    for (const QWidget* overlay : window.findChildren<QWidget*>("busyOverlay")) EXPECT_FALSE(overlay->isVisible());
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
    pacer.Sleep(1ms);  // a timer that waits for something must not hold up the box
    QTest::keyClicks(&Find<QLineEdit>(box, "txtInput"), "1234");
    Find<QPushButton>(box, "cmdOk").click();
  });
  EXPECT_EQ(prompts.Ask({.text = "Password", .secret = true}), "1234");
  EXPECT_TRUE(IsOverlayShown());
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
  bool isAnswered = false;
  Meanwhile([&] {  // a box that a timer opens
    QDialog box(&window);
    WhenOpen<QDialog>(window, [&](QDialog& open) {
      QTest::keyClick(&open, Qt::Key_Escape);
      isAnswered = !open.isVisible();
      open.close();
    });
    box.exec();
  });
  EXPECT_TRUE(Wait([&] { return isAnswered; })) << "Escape is the box's";
  EXPECT_FALSE(pacer.StopRequested());
  inner.reset();
  Meanwhile([this] { Type(Qt::Key_Escape); });
  EXPECT_TRUE(Wait([this] { return pacer.StopRequested(); })) << "the outer one is given back";
}

TEST_F(QtPacerTest, ABusyWindowHearsOnlyItsCancel) {
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"Escape", [this] { Type(Qt::Key_Escape); }},
      {"button", [this] { ClickOn(Find<QPushButton>(window, "cmdCancelBusy")); }},
      {"blank on the button", [this] { Type(Qt::Key_Space, " "); }},
      {"Enter", [this] { QTest::keyClick(Overlay(), Qt::Key_Enter); }},
      {"close", [this] { window.windowHandle()->close(); }},
  };
  for (const auto& [name, act] : cases) {
    SCOPED_TRACE(name);
    {
      const StopScope operation(pacer);
      BusyState busy(pacer, window, "Waiting");
      ASSERT_TRUE(Wait([this] { return IsOverlayShown(); }));
      busy.SetText("Waiting longer");
      EXPECT_EQ(Find<QLabel>(window, "lblBusy").text(), "Waiting longer");
      window.resize(window.width() + 10, 200);
      EXPECT_TRUE(Wait([this] { return Overlay()->size() == window.size(); })) << "no part of the window is open";
      bool isIgnored = false;
      Meanwhile([&] {
        Type(Qt::Key_A, "a");
        Type(Qt::Key_F5);
        Type(Qt::Key_Tab);
        ClickOn(button);
        QTest::keyClick(&field, Qt::Key_B);  // as one that has taken the keyboard
        isIgnored = !pacer.StopRequested();
      });
      EXPECT_TRUE(Wait([&] { return isIgnored; }));
      Meanwhile(act);
      EXPECT_TRUE(Wait([this] { return pacer.StopRequested(); }));
      EXPECT_EQ(Find<QPushButton>(window, "cmdCancelBusy").text(), "Stopping...");
    }
    pacer.DoEvents();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(Overlay(), nullptr);
    EXPECT_EQ(field.text(), "");
    EXPECT_EQ(clicks + shortcuts, 0);
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  }
  Type(Qt::Key_F5);
  ClickOn(button);
  EXPECT_EQ(clicks + shortcuts, 2);
}

}  // namespace
}  // namespace kv
