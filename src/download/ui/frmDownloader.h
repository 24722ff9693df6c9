#pragma once

#include <QDialog>
#include <QPointer>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/Shell.h"
#include "desktop/WallClock.h"
#include "desktop/ui/QtPacer.h"
#include "download/DownloadFamily.h"
#include "download/DownloadProgress.h"
#include "download/DownloadWindow.h"
#include "download/ProjectDownload.h"
#include "host/shared/SharedState.h"

class QBoxLayout;
class QCheckBox;
class QGroupBox;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kv {

class SideTable;

// What the downloader asks of the program; all outlive the window.
struct DownloaderServices {
  SharedState& shared;
  Prompts& prompts;
  QtPacer& pacer;
  const WallClock& clock;
};

// The downloader: sends a project into the connected controller, or starts the download of another O/S.
//
//   idle -> asking the controller who it is (when the window opens, and by F5) -> idle
//   idle -> a download (only Stop; closing is refused) -> idle
//
// What is sent, what is asked and what is refused is the engines'. The window shows both sides beside each other, and
// afterwards how the download ended, what the controller is left as, and what it reports itself.
class frmDownloader final : public QDialog, public DownloadWindow {
 public:
  // `user` is the edition of the program that the user has; most often empty.
  frmDownloader(DownloaderServices services, std::string user, QWidget* parent);
  ~frmDownloader() override;

  void reject() override;

  void SetStatus(std::string_view text) override;
  void Note(std::string_view text) override;
  void ResetProgress(std::int64_t maximum) override;
  void StepProgress() override;
  void ProgressInfo(int phase, std::int64_t current, std::int64_t count) override;
  void AmountSent(std::uint64_t done, std::uint64_t total) override;
  void AmountCompared(std::uint64_t done, std::uint64_t total) override;
  void Waiting(std::string_view text, bool isOver) override;
  void Programmed(int percent) override;
  [[nodiscard]] AurexOsChoice ChooseAurexOs(const AurexOsLists& lists) override;
  [[nodiscard]] std::optional<std::size_t> ChooseCompactOs(const FileList& list) override;
  [[nodiscard]] BiosAnswer WarnOfIncompatibleBios() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  class Operation;
  // How a download ended, whichever it was.
  struct Ending {
    DownloadOutcome outcome;
    std::optional<DownloadReview> review;
  };
  using Engine = std::function<Ending(Channel& link, const DownloadOrder& order, const BackupContext& context)>;

  void BuildController(QVBoxLayout& page);
  void BuildProject(QBoxLayout& page);
  void BuildSides(QVBoxLayout& page);
  void BuildOs(QBoxLayout& page);
  void BuildProgress(QVBoxLayout& page);
  void BuildInformation(QVBoxLayout& page);
  void BuildButtons(QVBoxLayout& page);
  [[nodiscard]] QPushButton* AddButton(const char* name, const QIcon& icon, const QString& text, const QString& tip,
                                       const QString& keys);
  void Connect();

  void Identify();
  [[nodiscard]] bool AskWho();
  [[nodiscard]] std::expected<void, LinkError> Meet(Channel& link);
  void ShowController(const std::string& text, const std::string& advice);
  void ShowFound();
  void ShowAdvice(const std::string& text);
  [[nodiscard]] std::string SelectedModel() const;
  [[nodiscard]] DownloadOrder Order() const;
  void ShowFamily();
  [[nodiscard]] DownloadFamily Family() const;
  [[nodiscard]] bool IsCompact() const { return Family() == DownloadFamily::Compact; }

  void cmdGetFile_Click();
  void SelectFile(const std::filesystem::path& file);
  void SelectProject(const std::filesystem::path& file);
  void SelectOs(const std::filesystem::path& file);
  void ShowNames(const ProjectFile* file);
  void ShowProject();
  void LookAtBoth();

  void cmdDownload_Click();
  void cmdDownloadOS_Click();
  void Run(const char* what, const Engine& engine);
  [[nodiscard]] std::optional<std::string> AskForBackup();
  void ShowPreview(const DownloadPreview& preview);
  void ShowReview(const DownloadReview& review);
  void ShowEnding(const char* what, const Ending& ending);
  void ShowProjectAgain(const Ending& ending);
  // What the O/S downloads tell while they run.
  void mOSDownloader_ProggressInfo(int phase, std::int64_t current, std::int64_t count);
  void mBrioQ50OSDownloader_ProgressInfo(std::int64_t current, std::int64_t count);
  void mBrioQ50OSDownloader_SetStatus(std::string_view text);
  void ShowStatus();
  void StopDownload();
  void StartProgram();

  void SetBusy(const QString& why);  // empty: nothing runs
  [[nodiscard]] CloneWork Watched();
  void ShowBar(std::uint64_t value, std::uint64_t maximum);
  void ShowSteps();
  void ShowAmount(const std::string& what, std::uint64_t done, std::uint64_t total);
  void Say(const std::string& text);
  // As the users of this edition see it.
  [[nodiscard]] DownloadSide Shown(DownloadSide side) const;

  DownloaderServices mServices;
  std::string mUser;
  std::optional<FoundController> mFound;
  std::optional<DownloadFamily> mFamily;  // of the one that was found
  std::string mWhyNoBackup;
  std::optional<ProjectFile> mFile;
  std::optional<DownloadPreview> mLook;  // at the controller and this file
  std::filesystem::path mDroppedOs;      // offered first by the next list that has it
  DownloadSide mNow;                     // of the last preview
  DownloadSide mThen;
  ControllerLeft mLeft = ControllerLeft::Untouched;  // by the last download, until the controller is asked again
  bool mIsBusy = false;
  QString mWhyBusy;
  QPointer<QWidget> mFocusBefore;
  bool mHasBeenShown = false;
  bool mClosesThen = false;                     // when the controller has been asked
  std::unique_ptr<DownloadProgress> mProgress;  // of the download that is under way
  std::string mStatusText;                      // that the engine has told last
  std::int64_t mSteps = 0;                      // of the part that is under way
  std::int64_t mMostSteps = 1;
  std::string mPart;  // of an O/S, which its bar shows as a whole: "chunk 3 of 40 of part 2"

  QScrollArea* mPage = nullptr;  // all above the bar
  QLabel* mController = nullptr;
  QLabel* mAdviceSign = nullptr;
  QLabel* mAdvice = nullptr;
  QPushButton* mStart = nullptr;  // seen beside advice about a program that does not run
  QPushButton* mGetFile = nullptr;
  QPushButton* mDownload = nullptr;
  QPushButton* mDownloadOs = nullptr;
  QPushButton* mIdentify = nullptr;
  QPushButton* mStop = nullptr;
  QPushButton* mClose = nullptr;
  QLabel* mFileName = nullptr;
  QLabel* mProjectName = nullptr;
  QLabel* mModel = nullptr;
  SideTable* mSides = nullptr;
  QLabel* mPreview = nullptr;
  QCheckBox* mBackup = nullptr;
  QGroupBox* mOsFrame = nullptr;
  QLabel* mStatus = nullptr;
  QLabel* mAmount = nullptr;
  QLabel* mPresent = nullptr;
  QProgressBar* mBar = nullptr;
  QPlainTextEdit* mInformation = nullptr;
};

}  // namespace kv
