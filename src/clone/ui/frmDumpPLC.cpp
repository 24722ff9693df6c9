#include "clone/ui/frmDumpPLC.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTableView>
#include <QToolBar>
#include <algorithm>
#include <limits>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "clone/CloneFileName.h"
#include "clone/CloneInfo.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "clone/SafeCreate.h"
#include "clone/WorkProgress.h"
#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLCOperation.h"
#include "desktop/ui/Commands.h"
#include "link/ControllerErrorText.h"

// What the window does; how it looks is in frmDumpPLCLayout.cpp.
namespace kv {
namespace {

constexpr const char* kFilter = "Korvantis Dump File|*.kdf";
constexpr const char* kPurpose = "Clones";  // for which a folder is remembered
constexpr const char* kBusy = "An operation is running; Stop ends it.";
constexpr const char* kIdle = "No operation is running.";
QString Caption(std::string_view suffix = {}) {
  return QString::fromStdString(std::string(kClonerCaption).append(suffix));
}

int Clamped(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<int>::max()));
}

// "It was read back and is whole: HW, FT, MM, OP for unit 1, 87 lines."
std::string FoundText(const CloneInfo& info) {
  std::string codes;
  for (const CloneInfoSegment& each : info.segments) codes += (codes.empty() ? "" : ", ") + each.segment.code;
  return "It was read back and is whole: " + AnsiToUtf8(codes) + " for unit " + std::to_string(info.unit.value_or(0)) +
         ", " + Counted(info.frames, "line") + ".";
}

}  // namespace

frmDumpPLC::Operation::Operation(frmDumpPLC& window, std::string_view caption)
    : mWindow(window), mStop(window.mServices.pacer) {
  mWindow.setWindowTitle(Caption(caption));
  QApplication::setOverrideCursor(Qt::WaitCursor);
  QtPacer& pacer = mWindow.mServices.pacer;
  mGateBefore = pacer.ExchangeGate({.isOpen = true});  // all but the stop tool is disabled
  mWindow.mInformation->clear();
  mWindow.mProgressBar->reset();
  mWindow.mProgressText->clear();
  mWindow.mIsStopAsked = false;
  mWindow.BeginEngine();
}

frmDumpPLC::Operation::~Operation() {
  mWindow.mEngine.reset();
  mWindow.mServices.pacer.ExchangeGate(std::move(mGateBefore));
  QApplication::restoreOverrideCursor();
  mWindow.setWindowTitle(Caption());
  mWindow.EnableCommands(true);
}

void frmDumpPLC::BeginEngine() {
  mProgress = std::make_unique<DumpProgress>(mServices.pacer);
  mEngine = std::make_unique<clsDumpPLC>(*this, mServices.prompts, mServices.pacer, mServices.clock);
}

void frmDumpPLC::EnableCommands(bool enabled) {
  for (QAction* each : {mCreate, mRestore, mVerify, mCompare, mExit, mHelp}) Allow(*each, enabled ? "" : kBusy);
  Allow(*mStop, enabled ? kIdle : "");
  mIsBusy = !enabled;
  for (QCheckBox* each : {mOp, mDt, mAp, mOs, mSaveFirst}) each->setEnabled(enabled);
  mVerified->setEnabled(enabled);
  if (mIsBusy) mTools->widgetForAction(mStop)->setFocus();  // what had the focus may just have been disabled
}

void frmDumpPLC::reject() {
  if (!mIsBusy) return QDialog::reject();
  // Once an operation, and not where the progress would wipe it away at once.
  if (!mInformation->toPlainText().endsWith(kBusy)) Say(kBusy);
}

std::optional<std::string> frmDumpPLC::AskForFile(const char* title) {
  return mServices.prompts.OpenFile({.title = title, .filter = kFilter, .purpose = kPurpose});
}

std::optional<std::string> frmDumpPLC::AskForNewFile(const char* title) {
  const std::string model = mModel.empty() ? mServices.shared.Remote->Model() : mModel;
  const std::string name = CloneFileName(model, mSerialNumber, mServices.clock.LocalTime());
  return mServices.prompts.SaveFile({.title = title, .filter = kFilter, .purpose = kPurpose, .initial = name});
}

void frmDumpPLC::ShowWhoseMemory(const std::string& text) {
  mWhose->setText(QString::fromStdString(text));
}

std::optional<char> frmDumpPLC::Identify(Channel& link) {
  mProgressText->setText("Asking the controller who it is");
  const std::string where = mServices.shared.ComDriver->LinkDescription();
  const auto version = link.GetVersionInfo(link.UnitID());
  const auto info = version ? link.GetControllerInfo(link.UnitID()) : std::nullopt;
  if (!info) {
    const std::string before = mController.empty() ? "" : "; the one asked before was " + mController;
    ShowWhoseMemory("The controller did not tell who it is: " + where + before);
    return std::nullopt;
  }
  mModel = AnsiToUtf8(version->model);
  mSerialNumber = std::to_string(info->serialNumber);
  mController = ControllerText(*version, *info, where);
  ShowWhoseMemory("Memory of " + mController);
  mProgressText->clear();
  return info->state;
}

void frmDumpPLC::CreateClone() {
  EnableCommands(false);
  const auto chosen = AskForNewFile("Create Clone File");
  if (!chosen) return EnableCommands(true);
  SafeCreate safe(PathFromUtf8(*chosen));
  const Operation operation(*this, ": Create Clone File");
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) {
    mServices.prompts.Show({.text = std::string(kOperationFailed), .title = std::string(kClonerCaption)});
    return ShowNoLink("The clone file was not created.");
  }
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);  // while the link was opened
  static_cast<void>(CreateFrom(*link, safe, "Creating the clone file"));
}

// Nothing is done to a controller that does not tell who it is: no question could name it.
bool frmDumpPLC::CreateFrom(Channel& link, SafeCreate& safe, const std::string& what) {
  const auto state = Identify(link);
  if (!state && !mIsStopAsked) {
    ShowOutcome(what, CloneOutcome::OfLink(link.LastError()), {});
    mServices.prompts.Show({.text = std::string(kOperationFailed), .title = std::string(kClonerCaption)});
    return false;
  }
  if (mIsStopAsked || (state && !IsStartWanted(mServices.prompts, mController, *state))) {
    ShowEnd(CloneEnd::Stopped, kStoppedBefore);
    return false;
  }
  mEngine->NameController(mController);
  safe.Create(*mEngine, mServices.prompts, link, Watched());
  CloneOutcome outcome = safe.Outcome();
  const bool isMade = outcome.end == CloneEnd::Done;
  if (!isMade) OfferToRun(*mEngine, link, mServices.prompts, mServices.pacer, mController, outcome);
  ShowOutcome(what, outcome, safe.File().value_or(std::filesystem::path()));
  if (isMade) Say(FoundText(*safe.Info()));
  for (const std::string& warning : safe.Warnings()) Say("Warning: " + warning);
  return isMade;
}

void frmDumpPLC::RestoreClone() {
  EnableCommands(false);
  const auto chosen = AskForFile("Restore Clone File");
  if (!chosen) return EnableCommands(true);
  const Operation operation(*this, ": Restore Clone File");
  mRows->BeginCommands();
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) return ShowNoLink("The clone file was not restored.");
  RestoreInto(*link, PathFromUtf8(*chosen));
}

// For work that has no callbacks of its own: it shows how far it is, and the stop tool ends it.
CloneWork frmDumpPLC::Watched() {
  const auto isStopped = [this] {
    mServices.pacer.Turn();
    return mIsStopAsked;
  };
  const auto onProgress = [this, progress = std::make_shared<WorkProgress>(mServices.pacer)](
                              std::string_view stage, std::uint64_t done, std::uint64_t total) {
    constexpr std::uint64_t kKibibyte = 1024;
    mProgressBar->setMaximum(std::max(1, Clamped(static_cast<std::int64_t>(total / kKibibyte))));
    mProgressBar->setValue(Clamped(static_cast<std::int64_t>(done / kKibibyte)));
    if (!mIsStopAsked) mProgressText->setText(QString::fromStdString(progress->Text(stage, done, total)));
  };
  return {.isStopped = isStopped, .onProgress = onProgress};
}

// The engine notices after the piece that it is busy with. An exchange of a create that waits for a reply ends at once;
// a restore hears the reply to its line out, because only that tells whether the line was written.
void frmDumpPLC::StopDump() {
  mIsStopAsked = true;
  if (!mEngine) return;
  mEngine->StopDump();
  mServices.pacer.RequestStop();
  mProgressText->setText("Stopping");
}

void frmDumpPLC::ShowNoLink(const std::string& what) {
  ShowEnd(CloneEnd::Failed, what + "\n" + mServices.shared.ComDriver->LastError().Text());
}

void frmDumpPLC::ShowOutcome(const std::string& what, const CloneOutcome& outcome, const std::filesystem::path& file) {
  const std::string end = outcome.end == CloneEnd::Done      ? " has ended well: " + Utf8FromPath(file)
                          : outcome.end == CloneEnd::Stopped ? " was stopped."
                                                             : " has failed.";
  const std::string text = what + end + (outcome.reason.empty() ? "" : "\n" + outcome.reason);
  mServices.shared.Remote->StatusMessage(text);
  ShowEnd(outcome.end, text);
}

void frmDumpPLC::ShowEnd(CloneEnd end, const std::string& text) {
  Say(text);
  mProgressText->setText(end == CloneEnd::Done ? "Done." : end == CloneEnd::Stopped ? "Stopped." : "Failed.");
}

void frmDumpPLC::Say(const std::string& text) {
  mInformation->appendPlainText(QString::fromStdString(text));
}

void frmDumpPLC::ShowProgress() {
  mProgressText->setText(QString::fromStdString(mProgress->Text()));
}

void frmDumpPLC::FillSegments(std::span<const CloneSegment> segments) {
  mRows->ShowSegments(segments);
  mProgress->FillSegments(segments, CheckedSegments());
}

void frmDumpPLC::Event_SegmentIndex(int index) {
  mProgress->SegmentIndex(index);
  mGrid->selectRow(index - 1);
  mGrid->scrollTo(mRows->index(index - 1, 0));
}

void frmDumpPLC::Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) {
  mProgressBar->setMaximum(Clamped(maximum));
  mProgressBar->setMinimum(Clamped(minimum));
  mProgressBar->setValue(Clamped(minimum));
  mProgress->ProgressBarInit(maximum);
  ShowProgress();
}

void frmDumpPLC::Event_ProgressBarValue(std::int64_t value) {
  mProgressBar->setValue(Clamped(value));
  mProgress->ProgressBarValue(value);
  if (!mIsStopAsked) ShowProgress();
}

void frmDumpPLC::Event_AddWriteCommand(std::string_view line) {
  mRows->AddCommand(line);
  if (!mScroll.isActive()) mScroll.start();
}

void frmDumpPLC::Event_Refresh() {
  mGrid->viewport()->update();
}

SegmentBoxes frmDumpPLC::CheckedSegments() const {
  if (mTakesAll) return {};
  return {.op = mOp->isChecked(), .dt = mDt->isChecked(), .ap = mAp->isChecked(), .os = mOs->isChecked()};
}

}  // namespace kv
