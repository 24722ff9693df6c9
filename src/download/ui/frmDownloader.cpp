#include "download/ui/frmDownloader.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QGroupBox>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <string_view>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/RestoreCheck.h"
#include "desktop/StopScope.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/WindowGeometry.h"
#include "download/DownloadFile.h"
#include "download/OsFileName.h"
#include "download/OtherSpeeds.h"
#include "download/ProjectLook.h"
#include "download/ui/SideTable.h"
#include "download/ui/frmBrioQ50OsInfo.h"
#include "download/ui/frmIncompatibleBios.h"
#include "download/ui/frmOsInfo.h"
#include "sessions/SessionIni.h"

// What the window shows and lets choose; the downloads themselves are in frmDownloaderRun.cpp.
namespace kv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kColourModel = "Projects for controllers with a colour screen are not downloaded here.";
constexpr const char* kAsking = "The controller is asked who it is.";
constexpr const char* kStopped = "The controller's program is stopped. Start it here, or go on with a download.";
constexpr const char* kIdle = "Nothing is running.";
constexpr const char* kFolderKey = "ProjectPath";
constexpr const char* kNoFile = "No project file has been selected.";

std::optional<fs::path> DroppedFile(const QDropEvent& event) {
  const QList<QUrl> urls = event.mimeData()->urls();
  if (urls.size() != 1 || !urls.front().isLocalFile()) return std::nullopt;
  const fs::path file = PathFromUtf8(urls.front().toLocalFile().toStdString()).make_preferred();
  if (!KindOfDownloadFile(file)) return std::nullopt;
  return file;
}

bool IsProject(const fs::path& file) {
  const auto kind = KindOfDownloadFile(file);
  return kind == DownloadFileKind::AurexProject || kind == DownloadFileKind::CompactProject;
}

// What is wrong with such a file as one of the controller's own family is of no use.
std::string OtherFamilyText(const fs::path& file, const ProjectFile& project) {
  return GetFileName(file) + " is a project for a " + project.Model() +
         ", which is of another family than the controller that is connected.";
}

void Preselect(FileList& list, const fs::path& dropped) {
  const auto found = std::ranges::find_if(
      list.files, [&](const ListedFile& file) { return !dropped.empty() && IsSameFile(file.path, dropped); });
  if (found != list.files.end()) list.preselected = static_cast<std::size_t>(found - list.files.begin());
}

}  // namespace

void frmDownloader::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (std::exchange(mHasBeenShown, true)) return;
  QTimer::singleShot(0, this, [this] { Identify(); });  // once the window can be seen
}

void frmDownloader::Identify() {
  if (mIsBusy || !AskWho()) return;
  ShowProject();
  if (mFile) LookAtBoth();
}

// False when the window was closed meanwhile.
bool frmDownloader::AskWho() {
  SetBusy(kAsking);
  std::expected<void, LinkError> met;
  {
    const BusyState busy(mServices.pacer, *this, "Asking the controller who it is");
    const StopScope stop(mServices.pacer);
    const auto link = mServices.shared.ComDriver->GetChannel();
    met = link ? Meet(*link) : std::unexpected(mServices.shared.ComDriver->LastError());
  }
  if (!met) {  // who answered before is not known to be there any more
    mFound.reset();
    mFamily.reset();
  }
  SetBusy({});
  if (mClosesThen) {
    QDialog::reject();
    return false;
  }
  if (!met) {
    ShowController("The controller did not tell who it is: " + mServices.shared.ComDriver->LinkDescription(),
                   met.error().Text());
  }
  return true;
}

// Who it is and which downloads it takes.
std::expected<void, LinkError> frmDownloader::Meet(Channel& link) {
  mFound.reset();
  mFamily.reset();
  mWhyNoBackup.clear();
  auto found = FindController(link);
  // A download that was cut may have left it at another speed.
  if (!found && MayBeOfSpeed(found.error().code) && FindAtOtherSpeed(link)) found = FindController(link);
  if (!found) return std::unexpected(found.error());
  const auto family = DownloadFamilyOf(link, found->version.model);
  if (!family) return std::unexpected(family.error());
  mFound = *std::move(found);
  mLeft = ControllerLeft::Untouched;
  mFamily = *family;
  mWhyNoBackup = WhyNoBackup(link, *mFound);
  mServices.shared.Remote->ControllerTold(mFound->version, mFound->info);
  ShowFound();
  return {};
}

void frmDownloader::ShowFound() {
  VersionInfo version = mFound->version;
  version.model = ModelLabel(ControllerModelOf(*mFound, Family()), mUser);
  const bool isStopped = mFound->info.state == 'S';
  const std::string advice = isStopped ? kStopped : StateAdvice(*mFound);
  const std::string other = OtherModelWarning(*mFound, SelectedModel());
  ShowController(ControllerText(version, mFound->info, mServices.shared.ComDriver->LinkDescription()),
                 advice + (advice.empty() || other.empty() ? "" : "\n") + other);
  mStart->setVisible(isStopped);
}

// Nothing in an edition in which the models' names are not shown.
std::string frmDownloader::SelectedModel() const {
  return mUser == kUserLomba ? "" : mServices.shared.Remote->Model();
}

DownloadOrder frmDownloader::Order() const {
  return {.link = mServices.shared.ComDriver->LinkDescription(), .selectedModel = SelectedModel()};
}

void frmDownloader::ShowController(const std::string& text, const std::string& advice) {
  mController->setText(QString::fromStdString(text));
  ShowAdvice(advice);
}

void frmDownloader::ShowAdvice(const std::string& text) {
  mAdvice->setText(QString::fromStdString(text));
  mAdvice->setVisible(!text.empty());
  mAdviceSign->setVisible(!text.empty());
  mStart->hide();
  // Nothing there takes the keys, so nothing else would bring it back into sight on a small screen.
  if (isVisible()) QTimer::singleShot(0, this, [this] { mPage->verticalScrollBar()->setValue(0); });
}

DownloadFamily frmDownloader::Family() const {
  return mFamily ? *mFamily : DownloadFamilyOfModel(mServices.shared.Remote->Model());
}

void frmDownloader::ShowFamily() {
  const DownloadFamily family = Family();
  mOsFrame->setTitle(family == DownloadFamily::Aurex ? "PLC System Ugrade" : "OS Downloader");
  // A file of the other kind cannot have been meant for this controller.
  if (mFile && mFile->IsCompact() != IsCompact()) mFile.reset();
  const char* whyNoProject = family == DownloadFamily::Colour ? kColourModel : mFile ? "" : kNoFile;
  if (!mWhyNoBackup.empty()) mBackup->setChecked(false);
  Allow(*mDownload, mIsBusy ? mWhyBusy : whyNoProject);
  Allow(*mBackup, mIsBusy ? mWhyBusy : QString::fromStdString(mWhyNoBackup));
}

// What is shown stays readable; only what could begin something is disabled, and gets the focus back afterwards.
void frmDownloader::SetBusy(const QString& why) {
  mWhyBusy = why;
  mIsBusy = !why.isEmpty();
  if (mIsBusy) mFocusBefore = focusWidget();
  for (QAbstractButton* each : {mStart, mGetFile, mDownloadOs, mIdentify, mClose}) Allow(*each, why);
  Allow(*mStop, mIsBusy ? "" : kIdle);
  ShowFamily();
  if (mIsBusy) {
    mStop->setFocus();
  } else if (mFocusBefore) {
    mFocusBefore->setFocus();
  }
}

void frmDownloader::cmdGetFile_Click() {
  const std::string filter = IsCompact() ? "*.d50|*.d50" : "*.dai|*.dai";
  const std::string samples = Utf8FromPath(mServices.shared.paths.Home() / "Samples");
  const auto chosen = mServices.prompts.OpenFile({.title = "Select File",
                                                  .filter = filter,
                                                  .purpose = "Projects",
                                                  .folder = ReadSessionIni(mServices.shared, kFolderKey, samples)});
  if (!chosen) return;
  const fs::path file = PathFromUtf8(*chosen);
  const auto kept = WriteSessionIni(mServices.shared, kFolderKey, Utf8FromPath(file.parent_path()));
  if (!kept) mServices.shared.Remote->StatusMessage("The folder of the projects was not kept. " + kept.error());
  SelectProject(file);
}

void frmDownloader::SelectFile(const fs::path& file) {
  if (IsProject(file)) {
    SelectProject(file);
  } else {
    SelectOs(file);
  }
}

void frmDownloader::SelectProject(const fs::path& file) {
  auto read = ReadProject(file, IsCompact());
  if (!read) {
    const auto ofOther = ReadProject(file, !IsCompact());
    Say(ofOther ? OtherFamilyText(file, *ofOther) : read.error().Text());
    const bool isRead = read.error().fault != DownloadFileFault::Unreadable;
    mServices.prompts.Show({.text = isRead ? NotLegalText(IsCompact()) : read.error().Text(),
                            .title = "Warning",
                            .icon = PromptIcon::Exclamation});
    return;
  }
  mFile = *std::move(read);
  ShowFamily();
  ShowProject();
  LookAtBoth();
}

// Size, time and losses are known before the user decides, and so is a refusal.
void frmDownloader::LookAtBoth() {
  if (!mFound || Family() == DownloadFamily::Colour) return;
  SetBusy(kAsking);
  ProjectLook look;
  {
    const BusyState busy(mServices.pacer, *this, "Holding the file against the controller");
    const StopScope stop(mServices.pacer);
    const DownloadOrder order = Order();
    if (const auto link = mServices.shared.ComDriver->GetChannel()) {
      look = LookAtProject(*link, *mFile, order, mServices.pacer);
    }
  }
  SetBusy({});
  if (mClosesThen) return QDialog::reject();
  mLook = look.preview;
  if (mLook) ShowPreview(*mLook);
  if (look.outcome.end == DownloadEnd::Refused) Say("As it is, it would be refused: " + look.outcome.reason);
}

void frmDownloader::SelectOs(const fs::path& file) {
  mDroppedOs = file;
  Say(GetFileName(file) +
      " is offered first by \"Download O/S\", when it lies in the folder that the list is made from: " +
      Utf8FromPath(IsCompact() ? mServices.shared.paths.CompactOs() : mServices.shared.paths.AurexOs()));
  mDownloadOs->setFocus();
}

void frmDownloader::ShowNames(const ProjectFile* file) {
  mFileName->setText(file ? QString::fromStdString(GetFileName(file->path)) : "");
  mFileName->setToolTip(file ? QString::fromStdString(Utf8FromPath(file->path)) : "");
  mProjectName->setText(file ? QString::fromStdString(file->Name()) : "");
  mModel->setText(file ? QString::fromStdString(ModelLabel(file->Model(), mUser)) : "");
}

void frmDownloader::ShowProject() {
  ShowNames(mFile ? &*mFile : nullptr);
  mNow = mFound ? Shown(SideOf(*mFound)) : DownloadSide();
  mThen = mFile ? Shown({.model = mFile->Model(), .os = {}, .fonts = {}, .project = mFile->Name()}) : DownloadSide();
  mSides->ShowSides(mNow, mThen);
  mPreview->clear();
  mPreview->hide();
  mLook.reset();
}

DownloadSide frmDownloader::Shown(DownloadSide side) const {
  if (side.model) side.model = ModelLabel(*side.model, mUser);
  return side;
}

void frmDownloader::dragEnterEvent(QDragEnterEvent* event) {
  if (!mIsBusy && DroppedFile(*event)) event->acceptProposedAction();
}

// The file is looked at once the other program has been let go of.
void frmDownloader::dropEvent(QDropEvent* event) {
  const auto file = DroppedFile(*event);
  if (mIsBusy || !file) return;
  event->acceptProposedAction();
  QTimer::singleShot(0, this, [this, file] {
    if (!mIsBusy) SelectFile(*file);
  });
}

// One engine has an event for its status; the texts of the others go the same way.
void frmDownloader::SetStatus(std::string_view text) {
  mBrioQ50OSDownloader_SetStatus(text);
}

void frmDownloader::mBrioQ50OSDownloader_SetStatus(std::string_view text) {
  mStatusText = text;
  ShowStatus();
}

void frmDownloader::ResetProgress(std::int64_t maximum) {
  mSteps = 0;
  mMostSteps = std::max<std::int64_t>(1, maximum);
  mPart.clear();
  mAmount->clear();  // of what was before
  ShowSteps();
}

void frmDownloader::StepProgress() {
  mSteps = std::min(mSteps + 1, mMostSteps);
  ShowSteps();
}

void frmDownloader::ShowSteps() {
  ShowBar(static_cast<std::uint64_t>(mSteps), static_cast<std::uint64_t>(mMostSteps));
}

AurexOsChoice frmDownloader::ChooseAurexOs(const AurexOsLists& lists) {
  AurexOsLists offered = lists;
  Preselect(offered.os, mDroppedOs);
  Preselect(offered.fonts, mDroppedOs);
  frmOsInfo window(offered, mController->text(), this);
  RememberPlace(window, WindowsFile(mServices.shared.paths));
  return window.ShowGUI();
}

std::optional<std::size_t> frmDownloader::ChooseCompactOs(const FileList& list) {
  FileList offered = list;
  Preselect(offered, mDroppedOs);
  frmBrioQ50OsInfo window(offered, mController->text(), this);
  RememberPlace(window, WindowsFile(mServices.shared.paths));
  return window.ShowGUI();
}

BiosAnswer frmDownloader::WarnOfIncompatibleBios() {
  frmIncompatibleBios window(this);
  return window.ShowMessage();
}

void frmDownloader::Say(const std::string& text) {
  mInformation->appendPlainText(QString::fromStdString(text));
}

}  // namespace kv
