#include "apps/KvTeleExe/DialogWindow.h"

#include <QApplication>

#include "desktop/ui/WindowGeometry.h"

namespace kv {

DialogWindow::DialogWindow(const Make& make, const std::filesystem::path& windowsFile)
    : mDialog(make(QApplication::activeWindow())) {
  RememberPlace(*mDialog, windowsFile);
}

}  // namespace kv
