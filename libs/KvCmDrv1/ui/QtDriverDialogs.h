#pragma once

#include <QPointer>
#include <filesystem>
#include <memory>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/DriverDialogs.h"
#include "KvCmDrv1/ui/LinkDialog.h"
#include "desktop/Clipboard.h"
#include "desktop/Prompts.h"
#include "desktop/ui/QtPacer.h"

namespace kv {

class frmTrace;

// The driver's dialogs as windows.
//
//   QtDriverDialogs dialogs({pacer, prompts, clipboard, {models, ListSerialPorts}, windowsFile});
//   dialogs.Serve(driver);
class QtDriverDialogs final : public DriverDialogs {
 public:
  struct Parts {
    QtPacer& pacer;
    Prompts& prompts;
    Clipboard& clipboard;
    LinkChoices choices;
    std::filesystem::path windowsFile;  // where the windows remember their places
  };

  explicit QtDriverDialogs(Parts parts) : mParts(std::move(parts)) {}
  ~QtDriverDialogs() override;
  QtDriverDialogs(const QtDriverDialogs&) = delete;
  QtDriverDialogs& operator=(const QtDriverDialogs&) = delete;

  // Gives the driver these dialogs. They outlive it, and are not asked for any more after it has gone.
  void Serve(Driver& driver);

  [[nodiscard]] std::optional<LinkSettings> EditLink(const LinkSettings& current, const std::string& caller) override;
  [[nodiscard]] std::optional<LinkSettings> EditModem(const LinkSettings& current, const std::string& caller) override;

  // The trace, in a window of its own that lives beside all others; brought to the front when it is open.
  void ShowTrace() override;

 private:
  [[nodiscard]] std::optional<LinkSettings> Run(LinkDialog& dialog) const;

  Parts mParts;
  Driver* mDriver = nullptr;
  std::shared_ptr<Trace> mTrace;
  QPointer<frmTrace> mTraceWindow;
};

}  // namespace kv
