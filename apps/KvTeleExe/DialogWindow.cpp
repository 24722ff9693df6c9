#include "apps/KvTeleExe/DialogWindow.h"

#include <QShortcut>

#include "desktop/ui/HelpPage.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {

DialogWindow::DialogWindow(std::unique_ptr<QDialog> dialog, std::string_view topic, const WindowServices& services)
    : mDialog(std::move(dialog)), mTopic(topic), mServices(services) {
  // The window that it was opened from waits for it; the trace, which belongs to no window, answers meanwhile.
  if (mDialog->parentWidget()) mDialog->setWindowModality(Qt::WindowModal);
  RememberPlace(*mDialog, mServices.windowsFile);
  if (mTopic.empty()) return;
  const auto* help = new QShortcut(QKeySequence::HelpContents, mDialog.get());
  QObject::connect(help, &QShortcut::activated, mDialog.get(), [this] { OpenHelp(); });
}

void DialogWindow::OpenHelp() const {
  OpenHelpPage(mServices.shell, mServices.prompts, mServices.shared.paths.Help() / mTopic,
               mDialog->windowTitle().toStdString());
}

}  // namespace kv
