#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "clone/CloneFileName.h"
#include "clone/WorkProgress.h"
#include "desktop/StopScope.h"
#include "desktop/ui/Commands.h"
#include "download/clsAurexOSDownloader.h"
#include "download/clsBrioQ50OSDownloader.h"
#include "download/ui/BackupView.h"
#include "download/ui/QuietCloner.h"
#include "download/ui/SideTable.h"
#include "download/ui/TimedPrompts.h"
#include "download/ui/frmDownloader.h"

// The downloads, from the button to how they ended.
namespace kv {
namespace {

constexpr const char* kGivesUp =
    "A download has not come to its end: what was sent of it is given up, and what the controller held before runs. ";
constexpr const char* kRuns = "A download is running; Stop ends it.";

const char* EndText(DownloadEnd end) {
  switch (end) {
    case DownloadEnd::Done:
      return " has ended well.";
    case DownloadEnd::WouldGoOn:
      return " would go on.";
    case DownloadEnd::Declined:
      return " was not begun.";
    case DownloadEnd::Refused:
      return " was refused.";
    case DownloadEnd::Stopped:
      return " was stopped.";
    case DownloadEnd::Failed:
      break;
  }
  return " has failed.";
}

std::string Lines(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences) text += "\n" + sentence;
  return text;
}

std::string PlaceText(std::int64_t current, std::int64_t count) {
  return std::to_string(current) + " of " + std::to_string(count);
}

}  // namespace

// Everything that is given back when a download ends, however it ends.
class frmDownloader::Operation {
 public:
  explicit Operation(frmDownloader& window) : mWindow(window), mStop(window.mServices.pacer) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    mGateBefore = window.mServices.pacer.ExchangeGate({.isOpen = true});  // all but the stop button is disabled
    window.mProgress = std::make_unique<DownloadProgress>(window.mServices.pacer);
    window.mInformation->clear();
    window.mAmount->clear();
    window.mPresent->clear();
    window.ResetProgress(1);
    window.SetBusy(kRuns);
  }
  ~Operation() {
    mWindow.mProgress.reset();
    mWindow.mAmount->clear();
    mWindow.mServices.pacer.ExchangeGate(std::move(mGateBefore));
    QApplication::restoreOverrideCursor();
    mWindow.SetBusy({});
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  frmDownloader& mWindow;
  StopScope mStop;
  InputGate mGateBefore;
};

// A download goes on until it ends or is stopped, whoever wants to close the window. What only asks is given up.
void frmDownloader::reject() {
  if (!mIsBusy) return QDialog::reject();
  if (mProgress) return SetStatus(mWhyBusy.toStdString());
  mClosesThen = true;
  mServices.pacer.RequestStop();
}

void frmDownloader::Note(std::string_view text) {
  Say(std::string(text));
}

// What the bar stands for stands beside it. The parts of an O/S differ in length, so its bar shows all of it.
void frmDownloader::ProgressInfo(int phase, std::int64_t current, std::int64_t count) {
  if (IsCompact()) return mBrioQ50OSDownloader_ProgressInfo(current, count);
  mOSDownloader_ProggressInfo(phase, current, count);
}

void frmDownloader::mOSDownloader_ProggressInfo(int phase, std::int64_t current, std::int64_t count) {
  mPart = "chunk " + PlaceText(current, count) + " of part " + std::to_string(phase);
}

void frmDownloader::mBrioQ50OSDownloader_ProgressInfo(std::int64_t current, std::int64_t count) {
  mPart = "block " + PlaceText(current, count);
}

void frmDownloader::ShowStatus() {
  mStatus->setText(QString::fromStdString(mStatusText));
}

// The bar of a project counts its parts.
void frmDownloader::AmountSent(std::uint64_t done, std::uint64_t total) {
  if (mPart.empty()) return ShowAmount("part " + PlaceText(mSteps, mMostSteps), done, total);
  ShowBar(done, total);
  ShowAmount(mPart, done, total);
}

void frmDownloader::AmountCompared(std::uint64_t done, std::uint64_t total) {
  ShowBar(done, total);
  ShowAmount("compared", done, total);
}

void frmDownloader::ShowAmount(const std::string& what, std::uint64_t done, std::uint64_t total) {
  if (!mProgress) return;
  mProgress->AmountSent(done, total);
  mAmount->setText(QString::fromStdString(what + ": " + mProgress->Text()));
}

void frmDownloader::Waiting(std::string_view text, bool isOver) {
  mAmount->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
  if (isOver) ShowBar(1, 1);
}

// Who saw the bar full would take the power away too soon.
void frmDownloader::Programmed(int percent) {
  constexpr std::uint64_t kHundred = 100;
  ShowBar(static_cast<std::uint64_t>(percent), kHundred);
  mAmount->setText(QString("Programmed: %1 %").arg(percent));
}

void frmDownloader::ShowBar(std::uint64_t value, std::uint64_t maximum) {
  constexpr std::uint64_t kSteps = 10'000;  // whatever the size, which may be more than a bar counts
  constexpr std::uint64_t kHundred = 100;
  const double part = maximum == 0 ? 0.0 : static_cast<double>(std::min(value, maximum)) / static_cast<double>(maximum);
  mBar->setMaximum(kSteps);
  mBar->setValue(static_cast<int>(part * kSteps));
  mPresent->setText(QString::number(static_cast<int>(part * kHundred)) + "%");
}

void frmDownloader::StopDownload() {
  if (!mIsBusy) return;
  mServices.pacer.RequestStop();
  mStatus->setText("Stopping");  // until a question about it has been answered with No
}

// The window holds the line, so another program could not start it.
void frmDownloader::StartProgram() {
  const bool isHalf = mLeft == ControllerLeft::ProjectBegun;
  const std::string question = "The program of the controller (" + mController->text().toStdString() +
                               ") does not run. " + (isHalf ? kGivesUp : "") + "Start it now?";
  if (mServices.prompts.Show({.text = question,
                              .title = std::string(kDownloaderCaption),
                              .icon = PromptIcon::Exclamation,
                              .buttons = PromptButtons::YesNo,
                              .canLose = true}) != PromptAnswer::Yes) {
    return;
  }
  SetBusy("The controller's program is being started.");
  const auto link = mServices.shared.ComDriver->GetChannel();
  const OperationScope starting(link ? link->Changes() : nullptr,
                                {.tool = "Downloader", .what = "start the program again"});
  const bool isStarted = link && link->RunController(link->UnitID());
  SetBusy({});
  if (!isStarted) {
    const LinkError& error = link ? link->LastError() : mServices.shared.ComDriver->LastError();
    return Say("Starting the program has failed.\n" + error.Text());
  }
  Say("The controller's program has been started.");
  Identify();
}

void frmDownloader::cmdDownload_Click() {
  if (!mFile || Family() == DownloadFamily::Colour) return;
  const ProjectFile file = *mFile;
  Run("Downloading the project", [&](Channel& link, const DownloadOrder& order, const BackupContext& context) {
    ProjectDownload download(*this, context.questions, mServices.pacer);
    download.Download(link, file, order);
    return Ending{download.Outcome(), download.Review()};
  });
}

// Another controller may have been plugged in since the window asked, and each family has an engine of its own.
void frmDownloader::cmdDownloadOS_Click() {
  if (mIsBusy || !AskWho()) return;
  if (!mFound) {
    return Say("Downloading the O/S was not begun, since the controller did not tell who it is.\n" +
               std::string(LeftBehindText(ControllerLeft::Untouched)));
  }
  const DownloadFamily family = Family();
  if (family == DownloadFamily::Colour) {
    mServices.prompts.Show(
        {.text = std::string(kColourOsRefusal), .title = "Telepanel", .icon = PromptIcon::Exclamation});
    return;
  }
  ShowNames(nullptr);  // no project is sent
  const ScopeGuard shown([this] { ShowNames(mFile ? &*mFile : nullptr); });
  Run("Downloading the O/S", [&](Channel& link, const DownloadOrder& order, const BackupContext& context) {
    if (family == DownloadFamily::Compact) {
      clsBrioQ50OSDownloader download(*this, context.questions, mServices.pacer, mServices.shared.paths);
      static_cast<void>(download.DownloadOS(link, order));
      return Ending{download.Outcome(), download.Review()};
    }
    clsAurexOSDownloader download(*this, context, mServices.shared.paths);
    static_cast<void>(download.DownloadOS(link, order));
    return Ending{download.Outcome(), download.Review()};
  });
}

void frmDownloader::Run(const char* what, const Engine& engine) {
  const bool isBackupWanted = mBackup->isChecked();
  const auto file = isBackupWanted ? AskForBackup() : std::nullopt;
  if (isBackupWanted && !file) return;
  BackupView view(mServices.pacer, [this](std::uint64_t done, std::uint64_t total, const std::string& text) {
    ShowBar(done, total);
    mAmount->setText(QString::fromStdString(text));
  });
  TimedPrompts prompts(mServices.prompts, mServices.pacer, [this](Duration open) {
    if (mProgress) mProgress->Exclude(open);
    ShowStatus();
  });
  QuietCloner cloner(prompts, [this](const std::string& text) { Say(text); });
  const BackupContext context{view, cloner, prompts, mServices.pacer, mServices.clock, Watched()};
  std::optional<BackupBefore> backup;
  if (file) backup.emplace(PathFromUtf8(*file), context);

  const Operation operation(*this);
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) return Say(std::string(what) + " has failed.\n" + mServices.shared.ComDriver->LastError().Text());
  DownloadOrder order = Order();
  order.usualBaudRate = mServices.shared.ComDriver->UsualBaudRate();
  order.backup = backup ? &*backup : nullptr;
  order.onPreview = [this](const DownloadPreview& preview) { ShowPreview(preview); };
  order.onReview = [this](const DownloadReview& review) { ShowReview(review); };
  const Ending ending = engine(*link, order, context);
  ShowEnding(what, ending);
  ShowProjectAgain(ending);
  // A boot loader has become a controller. One that does not tell that now has told it the engine a moment ago.
  if (ending.outcome.end == DownloadEnd::Done) static_cast<void>(Meet(*link));
  if (!backup) return;
  for (const std::string& warning : backup->Warnings()) Say("Warning: " + warning);
}

// Of a clone that is read back and compared.
CloneWork frmDownloader::Watched() {
  return {.isStopped = {},
          .onProgress = [this, progress = std::make_shared<WorkProgress>(mServices.pacer)](
                            std::string_view stage, std::uint64_t done, std::uint64_t total) {
            ShowBar(done, total);
            mAmount->setText(QString::fromStdString(progress->Text(stage, done, total)));
            mServices.pacer.Turn();
          }};
}

std::optional<std::string> frmDownloader::AskForBackup() {
  const std::string model = mFound ? AnsiToUtf8(mFound->version.model) : mServices.shared.Remote->Model();
  const std::string number = mFound ? std::to_string(mFound->info.serialNumber) : "";
  return mServices.prompts.SaveFile({.title = "Save What The Controller Holds Now",
                                     .filter = "Korvantis Dump File|*.kdf",
                                     .purpose = "Clones",
                                     .initial = CloneFileName(model, number, mServices.clock.LocalTime())});
}

void frmDownloader::ShowPreview(const DownloadPreview& preview) {
  mNow = Shown(preview.now);
  mThen = Shown(preview.then);
  mSides->ShowSides(mNow, mThen);
  mPreview->setText(QString::fromStdString(AmountText(preview) + Lines(preview.losses) + Lines(preview.warnings)));
  mPreview->show();
}

void frmDownloader::ShowEnding(const char* what, const Ending& ending) {
  const DownloadOutcome& outcome = ending.outcome;
  const std::string left(LeftBehindText(outcome.left));
  std::string text = what + std::string(EndText(outcome.end));
  for (const std::string* more : {&outcome.reason, &outcome.done, &left}) {
    if (!more->empty()) text += "\n" + *more;
  }
  Say(text);
  mServices.shared.Remote->StatusMessage(text);
  const bool isDone = outcome.end == DownloadEnd::Done && outcome.left != ControllerLeft::ProjectWaits;
  // What stood there of a controller that was not touched still holds.
  if (isDone || outcome.left != ControllerLeft::Untouched) {
    ShowAdvice(isDone ? "" : left);
    mStart->setVisible(outcome.left == ControllerLeft::Stopped || outcome.left == ControllerLeft::ProjectBegun);
  }
  mLeft = outcome.left;
  if (ending.review) ShowReview(*ending.review);
}

void frmDownloader::ShowReview(const DownloadReview& review) {
  mSides->ShowSides(Shown(review.before), mThen, Shown(review.after));
}

// What was shown of an O/S that was not begun would stand below a project that can be downloaded.
void frmDownloader::ShowProjectAgain(const Ending& ending) {
  if (ending.outcome.left != ControllerLeft::Untouched) return mLook.reset();
  if (mLook) return ShowPreview(*mLook);
  if (mFile) ShowProject();
}

}  // namespace kv
