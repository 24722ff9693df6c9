#include "apps/KvTeleExe/DialogWindow.h"

#include "desktop/ui/WindowGeometry.h"

namespace kv {

DialogWindow::DialogWindow(std::unique_ptr<QDialog> dialog, const WindowServices& services)
    : mDialog(std::move(dialog)) {
  // The window that it was opened from waits for it; the trace and the help, which belong to no window, answer
  // meanwhile.
  if (mDialog->parentWidget()) mDialog->setWindowModality(Qt::WindowModal);
  RememberPlace(*mDialog, services.windowsFile);
}

}  // namespace kv
