#include "apps/KvTeleExe/DialogWindow.h"

#include <QApplication>

#include "desktop/ui/WindowGeometry.h"

namespace kv {

DialogWindow::DialogWindow(const Make& make, const std::filesystem::path& windowsFile)
    : mDialog(make(QApplication::activeWindow())) {
  // The window that it was opened from waits for it; the trace, which belongs to no window, answers meanwhile.
  if (mDialog->parentWidget()) mDialog->setWindowModality(Qt::WindowModal);
  RememberPlace(*mDialog, windowsFile);
}

}  // namespace kv
