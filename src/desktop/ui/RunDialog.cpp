#include "desktop/ui/RunDialog.h"

#include <QApplication>
#include <QDialog>

#include "base/ScopeGuard.h"
#include "desktop/ui/BusyState.h"

namespace kv {

QWidget* DialogOwner() {
  QWidget* modal = QApplication::activeModalWidget();
  return modal ? modal : QApplication::activeWindow();
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
