#pragma once

#include <QTimer>
#include <memory>
#include <optional>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ui/QtDriverDialogs.h"
#include "apps/KvTeleExe/CharacterSelector.h"
#include "apps/support/SimulatedControllers.h"
#include "base/ProgramPaths.h"
#include "dataview/SessionTiles.h"
#include "desktop/PacerWallClock.h"
#include "desktop/ui/QtClipboard.h"
#include "desktop/ui/QtPacer.h"
#include "desktop/ui/QtPrompts.h"
#include "desktop/ui/QtShell.h"
#include "help/ui/HelpKey.h"
#include "help/ui/HelpWindow.h"
#include "host/HostParts.h"
#include "host/clsHelpHandler.h"
#include "journal/ChangeRecorder.h"
#include "link/PromptedPassword.h"

namespace kv {

// The pieces of the program with windows, put together. Needs the QApplication.
class TelepanelProgram {
 public:
  // `stateFolder` is that of the user in which heads of journals are kept (empty: none are).
  explicit TelepanelProgram(ProgramPaths paths, std::filesystem::path stateFolder = {});
  ~TelepanelProgram();

  // The program's whole life; returns when the user has left it.
  void Run();

 private:
  [[nodiscard]] HostParts Parts();
  [[nodiscard]] std::unique_ptr<InProcessLine> SimulatedLine(const std::string& model);
  [[nodiscard]] std::unique_ptr<CommDriver> MakeDriver();
  [[nodiscard]] std::unique_ptr<frmTAPI> LoadTapi();
  void RecordChanges(SharedState& shared);

  ProgramPaths mPaths;
  QtPacer mPacer;
  PacerWallClock mClock;
  QtPrompts mPrompts;
  SharedState* mShared = nullptr;  // while the program runs
  PromptedPassword mPassword;
  QtClipboard mClipboard;
  QtShell mShell;
  HelpWindow mHelp;
  clsHelpHandler mHelpHandler{mPaths, mHelp};
  HelpKey mHelpKey{[this](std::int32_t number) { mHelpHandler.ShowHTMLHelpByMapNumber(number); }};
  SimulatedControllers mControllers;
  QtDriverDialogs mDialogs;
  Driver* mDriver = nullptr;  // while the program runs
  std::filesystem::path mStateFolder;
  std::unique_ptr<ChangeRecorder> mRecorder;             // while the program runs
  std::optional<mdlDataTypesView::SessionTiles> mTiles;  // while the program runs
  CharacterSelector mCharacters;
  clsHexSelector mHexSelector{mCharacters};
  QTimer mSocketTimer;  // lets the Ethernet socket tell what has happened
};

}  // namespace kv
