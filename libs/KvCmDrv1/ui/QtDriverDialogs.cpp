#include "KvCmDrv1/ui/QtDriverDialogs.h"

#include "KvCmDrv1/ui/frmComParams.h"
#include "KvCmDrv1/ui/frmModem.h"
#include "KvCmDrv1/ui/frmTrace.h"
#include "desktop/ui/RunDialog.h"
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
  frmComParams dialog(current, caller, mParts.choices,
                      {.pacer = mParts.pacer,
                       .test = [this](const LinkSettings& settings) { return mDriver->TryLink(settings); },
                       .showTrace = [this] { ShowTrace(); }},
                      DialogOwner());
  return Run(dialog);
}

std::optional<LinkSettings> QtDriverDialogs::EditModem(const LinkSettings& current, const std::string& caller) {
  frmModem dialog(current, caller, mParts.choices, DialogOwner());
  return Run(dialog);
}

std::optional<LinkSettings> QtDriverDialogs::Run(LinkDialog& dialog) const {
  // The window that the dialog was opened from waits for it; the trace, which belongs to no window, answers meanwhile.
  if (dialog.parentWidget()) dialog.setWindowModality(Qt::WindowModal);
  RememberPlace(dialog, mParts.windowsFile);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.Settings();
}

void QtDriverDialogs::ShowTrace() {
  if (!mTraceWindow) {
    mTraceWindow = new frmTrace(mTrace, mParts.prompts, mParts.clipboard);
    RememberPlace(*mTraceWindow, mParts.windowsFile);
  }
  mTraceWindow->show();
  mTraceWindow->raise();
  mTraceWindow->activateWindow();
}

}  // namespace kv
