#pragma once

#include <QDialog>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "clone/DumpProgress.h"
#include "clone/DumpWindow.h"
#include "clone/clsDumpPLC.h"
#include "desktop/Shell.h"
#include "desktop/ui/QtPacer.h"
#include "host/shared/SharedState.h"

class QAction;
class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QTableView;
class QToolBar;

namespace kv {

class DumpList;

// What the cloner asks of the program; all outlive the window.
struct ClonerServices {
  SharedState& shared;
  Prompts& prompts;
  QtPacer& pacer;
  const WallClock& clock;
  Shell& shell;
};

// The cloner: makes a clone file of the connected controller, restores one into it, and shows how far it is.
//
//   idle (create, restore, exit) -> busy (only stop; closing is refused) -> idle
//
// Beside the boxes of the engine it tells in txtInformation what the boxes do not: what a file holds and what speaks
// against restoring it, filled in before the restore begins (the user is then asked whether it is wanted all the same),
// and afterwards why an operation failed.
class frmDumpPLC final : public QDialog, public DumpWindow {
 public:
  frmDumpPLC(ClonerServices services, QWidget* parent);

  void reject() override;

  void FillSegments(std::span<const CloneSegment> segments) override;
  void Event_SegmentIndex(int index) override;
  void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) override;
  void Event_ProgressBarValue(std::int64_t value) override;
  void Event_AddWriteCommand(std::string_view line) override;
  void Event_Refresh() override;
  [[nodiscard]] SegmentBoxes CheckedSegments() const override;

 private:
  class Operation;

  void BuildTools();
  [[nodiscard]] QAction* AddTool(const char* id, const QIcon& icon, const QString& text, const QKeySequence& shortcut,
                                 const QString& tip);
  void BuildGrid();
  [[nodiscard]] QWidget* BuildBoxes();
  void BuildProgress();
  void ArrangeControls();

  void EnableCommands(bool enabled);
  void CreateClone();
  void RestoreClone();
  void RestoreInto(Channel& link, const std::filesystem::path& file);
  [[nodiscard]] CloneWork Watched();
  [[nodiscard]] std::vector<std::string> Inspect(Channel& link, const std::filesystem::path& file);
  [[nodiscard]] bool IsWantedDespite(const std::vector<std::string>& findings);
  [[nodiscard]] bool GiveAccess(Channel& link);
  void StopDump();
  void ShowHelp();

  void ShowNoLink(const std::string& what);
  void ShowOutcome(const std::string& what, const CloneOutcome& outcome, const std::filesystem::path& file);
  void ShowEnd(CloneEnd end, const std::string& text);
  void Say(const std::string& text);
  void ShowProgress();

  ClonerServices mServices;
  QToolBar* mTools = nullptr;
  QAction* mCreate = nullptr;
  QAction* mRestore = nullptr;
  QAction* mStop = nullptr;
  QAction* mExit = nullptr;
  QAction* mHelp = nullptr;
  DumpList* mRows = nullptr;
  QTableView* mGrid = nullptr;
  QCheckBox* mOp = nullptr;
  QCheckBox* mDt = nullptr;
  QCheckBox* mAp = nullptr;
  QCheckBox* mOs = nullptr;
  QProgressBar* mProgressBar = nullptr;
  QLabel* mProgressText = nullptr;
  QPlainTextEdit* mInformation = nullptr;
  QTimer mScroll;  // to the last command line, some times a second

  bool mIsBusy = false;
  bool mIsStopAsked = false;  // of the operation that is under way
  std::unique_ptr<clsDumpPLC> mEngine;
  std::unique_ptr<DumpProgress> mProgress;  // of the operation that is under way, or the last one
};

}  // namespace kv
