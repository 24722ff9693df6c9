#pragma once

#include <QDialog>
#include <QTimer>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "clone/CloneCompare.h"
#include "clone/DumpProgress.h"
#include "clone/DumpWindow.h"
#include "clone/SafeCreate.h"
#include "clone/clsDumpPLC.h"
#include "desktop/Shell.h"
#include "desktop/ui/QtPacer.h"
#include "host/shared/SharedState.h"

class QAction;
class QCheckBox;
class QComboBox;
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
};

// The cloner: makes a clone file of the connected controller, restores one into it, compares both, and shows how far it
// is.
//
//   idle (create, restore, verify, compare, exit) -> busy (only stop; closing is refused) -> idle
//
// At the top stands whose memory it is, as far as the controller has told it. Beside the boxes of the engine it tells
// in txtInformation what the boxes do not: what a file holds and what speaks against restoring it, and afterwards how
// an operation ended and why. Nothing is overwritten before the user has said yes to a question that names it.
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
  void BuildWhose();
  void BuildProgress();
  void ArrangeControls();

  void EnableCommands(bool enabled);
  [[nodiscard]] std::optional<std::string> AskForFile(const char* title);
  [[nodiscard]] std::optional<std::string> AskForNewFile(const char* title);
  // Asks the controller who it is, and shows it; nothing when it does not tell.
  [[nodiscard]] std::optional<char> Identify(Channel& link);
  void ShowWhoseMemory(const std::string& text);
  [[nodiscard]] CloneWork Watched();

  void CreateClone();
  [[nodiscard]] bool CreateFrom(Channel& link, SafeCreate& safe, const std::string& what);
  void BeginEngine();

  void RestoreClone();
  void RestoreInto(Channel& link, const std::filesystem::path& file);
  // The steps before the first line. Each tells the user why it does not go on.
  struct Restoring;
  [[nodiscard]] bool Inspect(Restoring& restoring);
  [[nodiscard]] bool ChooseUnit(Restoring& restoring);
  [[nodiscard]] bool Check(Restoring& restoring);
  [[nodiscard]] bool IsWantedDespite(Restoring& restoring);
  [[nodiscard]] bool ConsentToEndLoad(Restoring& restoring);
  [[nodiscard]] bool ChooseErase(Restoring& restoring);
  [[nodiscard]] bool Consent(Restoring& restoring);
  [[nodiscard]] bool SaveFirst(Restoring& restoring);
  [[nodiscard]] bool GiveAccess(Restoring& restoring);
  [[nodiscard]] bool Begin(Restoring& restoring);
  void Send(Restoring& restoring);
  [[nodiscard]] bool AskYes(const std::string& question);
  [[nodiscard]] bool FailRestore(const std::string& reason);

  void VerifyClone();
  void CompareClones();
  void SayWhatIsKnown(const std::filesystem::path& file, const CloneInfo& info);
  void ShowComparison(const std::string& what, const std::expected<CloneComparison, CloneOutcome>& comparison,
                      bool isWithController);

  void StopDump();

  void ShowNoLink(const std::string& what);
  void ShowOutcome(const std::string& what, const CloneOutcome& outcome, const std::filesystem::path& file);
  void ShowEnd(CloneEnd end, const std::string& text);
  void Say(const std::string& text);
  void ShowProgress();

  ClonerServices mServices;
  QToolBar* mTools = nullptr;
  QAction* mCreate = nullptr;
  QAction* mRestore = nullptr;
  QAction* mVerify = nullptr;
  QAction* mCompare = nullptr;
  QAction* mStop = nullptr;
  QAction* mExit = nullptr;
  QAction* mHelp = nullptr;
  DumpList* mRows = nullptr;
  QTableView* mGrid = nullptr;
  QCheckBox* mOp = nullptr;
  QCheckBox* mDt = nullptr;
  QCheckBox* mAp = nullptr;
  QCheckBox* mOs = nullptr;
  QCheckBox* mSaveFirst = nullptr;
  QComboBox* mVerified = nullptr;  // ComparedKinds
  QLabel* mWhose = nullptr;
  QProgressBar* mProgressBar = nullptr;
  QLabel* mProgressText = nullptr;
  QPlainTextEdit* mInformation = nullptr;
  QTimer mScroll;  // to the last command line, some times a second

  std::string mController;  // that was asked last: model, serial number, link; empty before
  std::string mModel;       // of it
  std::string mSerialNumber;
  bool mIsBusy = false;
  bool mTakesAll = false;     // a clone takes all segments, whatever the boxes say
  bool mIsStopAsked = false;  // of the operation that is under way
  std::unique_ptr<clsDumpPLC> mEngine;
  std::unique_ptr<DumpProgress> mProgress;  // of the operation that is under way, or the last one
};

}  // namespace kv
