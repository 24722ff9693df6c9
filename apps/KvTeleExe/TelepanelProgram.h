#pragma once

#include <QTimer>
#include <memory>

#include "KvCmDrv1/Driver.h"
#include "apps/support/SimulatedControllers.h"
#include "base/ProgramPaths.h"
#include "desktop/PacerWallClock.h"
#include "desktop/ui/QtPacer.h"
#include "desktop/ui/QtPrompts.h"
#include "desktop/ui/QtShell.h"
#include "host/HostParts.h"

namespace kv {

// The pieces of the program with windows, put together. Needs the QApplication.
class TelepanelProgram {
 public:
  // `home` is the program folder.
  explicit TelepanelProgram(const std::filesystem::path& home);
  ~TelepanelProgram();

  // The program's whole life; returns when the user has left it.
  void Run();

 private:
  [[nodiscard]] HostParts Parts();
  [[nodiscard]] std::unique_ptr<InProcessLine> SimulatedLine(const std::string& model);
  [[nodiscard]] std::unique_ptr<CommDriver> MakeDriver();
  [[nodiscard]] std::unique_ptr<frmTAPI> LoadTapi();
  [[nodiscard]] ToolWindows MakeWindows(SharedState& shared);

  ProgramPaths mPaths;
  QtPacer mPacer;
  PacerWallClock mClock;
  QtPrompts mPrompts;
  QtShell mShell;
  SimulatedControllers mControllers;
  std::unique_ptr<DriverDialogs> mDialogs;
  Driver* mDriver = nullptr;  // while the program runs
  QTimer mSocketTimer;        // lets the Ethernet socket tell what has happened
};

}  // namespace kv
