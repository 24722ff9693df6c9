#include "help/ui/HelpWindow.h"

#include "help/HelpTopics.h"

namespace kv {

void HelpWindow::ShowTopic(std::int32_t mapNumber) {
  if (!mWindow) {
    auto book = HelpBook::Open(mPaths.Help() / kHelpFile, mPaths.Help() / kHelpPages);
    if (!book) {
      mPrompts.Show({.text = book.error(), .title = "Help", .icon = PromptIcon::Exclamation});
      return;
    }
    mWindow = new frmHelp(std::move(*book), mPrompts, mWindowsFile);
  }
  mWindow->ShowTopic(mapNumber);
  mWindow->setWindowState(mWindow->windowState() & ~Qt::WindowMinimized);
  mWindow->show();
  mWindow->raise();
  mWindow->activateWindow();
}

}  // namespace kv
