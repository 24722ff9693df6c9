#include "KvCmDrv1/ui/QtDriverDialogs.h"

#include <QApplication>

#include "KvCmDrv1/ui/frmComParams.h"
#include "KvCmDrv1/ui/frmModem.h"
#include "KvCmDrv1/ui/frmTrace.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {

QtDriverDialogs::~QtDriverDialogs() {
  delete mTraceWindow;
}

void QtDriverDialogs::Serve(Driver& driver) {
  mDriver = &driver;
  mTrace = driver.ShareTrace();
  driver.SetDialogs(this);
}

std::optional<LinkSettings> QtDriverDialogs::EditLink(const LinkSettings& current, const std::string& caller) {
  QWidget* owner = QApplication::activeWindow();
  frmComParams dialog(current, caller, mParts.choices,
                      {.pacer = mParts.pacer,
                       .test = [this](const LinkSettings& settings) { return mDriver->TryLink(settings); },
                       .showTrace = [this](QWidget& window) { ShowTrace(&window); }},
                      owner);
  auto result = Run(dialog);
  if (mTraceWindow && mTraceWindow->isVisible()) ShowTrace(owner);
  return result;
}

std::optional<LinkSettings> QtDriverDialogs::EditModem(const LinkSettings& current, const std::string& caller) {
  frmModem dialog(current, caller, mParts.choices, QApplication::activeWindow());
  return Run(dialog);
}

std::optional<LinkSettings> QtDriverDialogs::Run(LinkDialog& dialog) const {
  RememberPlace(dialog, mParts.windowsFile);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.Settings();
}

// A window answers while a modal dialog is open only when it belongs to the dialog; so the trace goes from one to the
// other and back.
void QtDriverDialogs::ShowTrace(QWidget* owner) {
  if (!mTraceWindow) {
    mTraceWindow = new frmTrace(mTrace, mParts.prompts, mParts.clipboard, owner);
    RememberPlace(*mTraceWindow, mParts.windowsFile);
  } else if (mTraceWindow->parentWidget() != owner) {
    const QByteArray place = mTraceWindow->saveGeometry();
    mTraceWindow->setParent(owner, Qt::Window);
    mTraceWindow->restoreGeometry(place);
  }
  mTraceWindow->show();
  mTraceWindow->raise();
  mTraceWindow->activateWindow();
}

}  // namespace kv
