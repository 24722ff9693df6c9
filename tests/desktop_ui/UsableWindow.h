#pragma once

#include <QLayout>
#include <QPushButton>
#include <set>

#include "desktop/ui/Icons.h"
#include "tests/desktop_ui/QtFixture.h"

namespace kv::test {

// Each command has an icon of its own, a letter, keys of its own, and in grey the reason in a line of its own.
inline void ExpectCommandsCanBeRead(const QObject& window) {
  constexpr int kSize = 32;
  std::set<QString> shortcuts;
  for (const QAction* each : window.findChildren<QAction*>()) {
    const QAction& action = *each;
    const std::string id = action.objectName().toStdString();
    if (id.empty() || id.starts_with("_q_")) continue;  // a line between two commands, or a line edit's own
    EXPECT_NE(action.icon().pixmap(kSize).toImage(), IconOf("app").pixmap(kSize).toImage())
        << id << ": no such drawing";
    EXPECT_TRUE(action.text().contains('&')) << id;
    EXPECT_EQ(action.isEnabled(), !action.toolTip().contains('\n')) << id;
    const QString keys = action.shortcut().toString();
    EXPECT_TRUE(keys.isEmpty() || (shortcuts.insert(keys).second && action.toolTip().contains(keys)))
        << id << " " << keys.toStdString();
  }
}

// No two parts of a page lie on each other: what no layout holds lies in the corner.
inline void ExpectNothingIsCovered(const QWidget& page) {
  if (!page.layout() || !page.isVisible()) return;
  const auto parts = page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  for (const QWidget* part : parts) {
    for (const QWidget* other : parts) {
      const bool isBoth = part < other && part->isVisible() && other->isVisible() && !other->isWindow();
      EXPECT_FALSE(isBoth && !part->isWindow() && part->geometry().intersects(other->geometry()))
          << part->metaObject()->className() << " " << part->objectName().toStdString() << " and "
          << other->objectName().toStdString();
    }
  }
}

// Each control that Tab reaches has a name or reads its text, and a button then says what it does.
inline void ExpectControlsCanBeRead(const QObject& window) {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);  // a window is shown before its parts are placed
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    ExpectNothingIsCovered(*widget);
    if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isVisible()) continue;
    const bool hasText = widget->inherits("QToolButton") || widget->inherits("QCheckBox");
    const auto* button = dynamic_cast<const QPushButton*>(widget);
    const bool isRead = hasText || (button && !button->text().isEmpty());
    EXPECT_TRUE(isRead || !widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    EXPECT_FALSE(hasText && widget->toolTip().isEmpty()) << widget->objectName().toStdString();
  }
}

// Presses Escape as soon as the window offers to cancel what it waits for.
inline void CancelWhenBusy(QWidget& window) {
  const auto isOffered = [&window] {
    const auto* cancel = window.findChild<QPushButton*>("cmdCancelBusy");
    return cancel && cancel->isVisible();
  };
  When(window, isOffered, [&window] { QTest::keyClick(window.windowHandle(), Qt::Key_Escape); });
}

}  // namespace kv::test
