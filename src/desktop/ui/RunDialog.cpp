#include "desktop/ui/RunDialog.h"

#include <QApplication>
#include <QDialog>
#include <algorithm>
#include <utility>

#include "base/ScopeGuard.h"
#include "desktop/ui/BusyState.h"

namespace kv {

namespace {

QPointer<QWidget> commanding;  // OwnCommand's

bool StandsBeside(const QWidget& window) {
  return window.property(kStandsBeside).toBool();
}

bool IsWorkedIn(const QWidget* window) {
  const bool isWindow = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
  return isWindow && window->isVisible() && !StandsBeside(*window);
}

}  // namespace

OwnCommand::OwnCommand(QWidget& window) : mBefore(std::exchange(commanding, &window)) {}

OwnCommand::~OwnCommand() {
  commanding = mBefore;
}

QWidget* DialogOwner() {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  if (commanding) return commanding;
  QWidget* active = QApplication::activeWindow();  // none while the user works in another program
  if (active && !StandsBeside(*active)) return active;
  const QWidgetList windows = QApplication::topLevelWidgets();
  const auto found = std::ranges::find_if(windows, IsWorkedIn);
  return found == windows.end() ? active : *found;
}

int RunDialog(QDialog& dialog) {
  const BusyPause pause;
  const bool isBusy = QGuiApplication::overrideCursor() != nullptr;
  if (isBusy) QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
  const ScopeGuard restore([&] {
    if (isBusy) QGuiApplication::restoreOverrideCursor();
  });
  // Not more than the windows that it belongs to wait for it: the trace and the help answer meanwhile.
  if (dialog.parentWidget()) dialog.setWindowModality(Qt::WindowModal);
  return dialog.exec();
}

}  // namespace kv
