#pragma once

#include <QDialog>
#include <array>
#include <memory>
#include <optional>
#include <string>

#include "KvTele2/cache/CacheImport.h"
#include "cache/CacheWizard.h"
#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "desktop/ui/QtPacer.h"
#include "host/shared/SharedState.h"

class QBoxLayout;
class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace kv {

class HelpLink;
class ResultTable;

// What the import wizard asks of the program; all outlive the window.
struct CacheServices {
  SharedState& shared;
  Prompts& prompts;
  QtPacer& pacer;
  const WallClock& clock;
};

// The wizard that reads the fonts and images of the connected colour controller into a cache file.
//
//   0 choose a file -> 1 create (only Cancel) -> 2 finished, with what came in as pictures, or why it failed -> closed
//                      1 again: refused or cancelled before anything was changed; Try Again begins anew
//
// What is checked, read and written is the engine's. The window collects what is wanted, asks before something is
// lost, and tells how it went: in lblState shortly, below it what happened, the likely cause and what to do.
class frmRestoreCache final : public QDialog, public cache::CacheImportWindow {
 public:
  frmRestoreCache(CacheServices services, QWidget* parent);

  // The host is told of the file that was made. To be called before the window is shown.
  void SetRemoteClass(RemoteHost& host) { mRemote = &host; }
  // Closes the help window, if it was opened from this wizard.
  void CloseHelpFile();

  // Cancels an import that is under way, else closes the window.
  void reject() override;

  void Event_Step(cache::CacheStep step, cache::CacheStepState state) override;
  void Event_Progress(const cache::CacheProgress& progress) override;

 protected:
  void done(int result) override;
  // A click on the label of a box is one on the box.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Operation;
  enum class Page { Choose, Create, Finished };
  enum class Tone { Plain, Failure };
  static constexpr std::size_t kRows = 3;  // of file, fonts and images

  void BuildSteps(QBoxLayout& page);
  void BuildPages();
  [[nodiscard]] QWidget* BuildChoosePage();
  [[nodiscard]] QWidget* BuildCreatePage();
  void BuildEnd(QBoxLayout& page);
  void BuildButtons(QBoxLayout& page);
  [[nodiscard]] QPushButton* AddButton(QBoxLayout& row, const char* name, const QIcon& icon, const QString& text);

  void ShowPage(Page page);
  void NameCommands();
  void EnableCommands();
  void ShowMark(cache::CacheStep step, const char* key);
  void ShowState(Tone tone, const std::string& state, const std::string& reason);

  void BeginAnew();
  void Browse();
  void AskAmount();
  void ShowAmount();
  void Next();
  void Back();
  void Create();
  void CreateFrom(Channel* link);
  [[nodiscard]] cache::CacheImportOrder Wishes() const;
  [[nodiscard]] bool IsWanted(const cache::CacheImportPlan& plan);
  void ShowFailure(const cache::CacheOutcome& outcome);
  void ShowSuccess(const cache::CacheOutcome& outcome);
  void OpenHelp();

  CacheServices mServices;
  RemoteHost* mRemote = nullptr;
  std::optional<ChosenCache> mChosen;
  std::optional<cache::CacheImportPlan> mPreview;  // of everything that has changed; nothing: it is not known
  std::unique_ptr<cache::CacheImport> mImport;
  Page mPage = Page::Choose;
  bool mIsBusy = false;
  bool mIsMade = false;
  bool mHasOpenedHelp = false;

  QLabel* mHeader = nullptr;
  std::array<QLabel*, kRows> mMarks{};
  std::array<QLabel*, kRows> mSteps{};
  std::array<QCheckBox*, kRows> mBoxes{};  // none for the file
  QCheckBox* mReadsAll = nullptr;
  QLabel* mPreviewText = nullptr;
  QStackedWidget* mPages = nullptr;
  QWidget* mChoosing = nullptr;
  QWidget* mCreating = nullptr;
  QProgressBar* mBar = nullptr;
  QLabel* mProgress = nullptr;
  QLabel* mAmount = nullptr;
  ResultTable* mResults = nullptr;  // of the last page: what came in,
  QLabel* mKept = nullptr;          // or, when it failed, what is left and what can be done
  QLabel* mState = nullptr;
  QLabel* mReason = nullptr;
  HelpLink* mHelpLink = nullptr;
  QPushButton* mBrowse = nullptr;
  QPushButton* mHelp = nullptr;
  QPushButton* mBack = nullptr;
  QPushButton* mNext = nullptr;
  QPushButton* mCancel = nullptr;
};

}  // namespace kv
