#include "clone/ui/frmDumpPLC.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTableView>
#include <QToolBar>
#include <algorithm>
#include <limits>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneInfo.h"
#include "clone/SafeCreate.h"
#include "clone/WorkProgress.h"
#include "clone/ui/DumpList.h"
#include "desktop/ui/Commands.h"

// What the window does; how it looks is in frmDumpPLCLayout.cpp.
namespace kv {
namespace {

constexpr const char* kFilter = "Korvantis Dump File|*.kdf";
constexpr const char* kBusy = "An operation is running; Stop ends it.";
constexpr const char* kStoppedBefore = "Stopped before anything was done.";
constexpr const char* kIdle = "No operation is running.";
constexpr const char* kNotReadBack =
    "A restore is not read back by itself. The command \"kvtele clone verify\" compares the controller with the file.";
constexpr const char* kNotRestored = "The clone file was not restored; the controller is as it was.";

QString Caption(std::string_view suffix = {}) {
  return QString::fromStdString(std::string(kClonerCaption).append(suffix));
}

int Clamped(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<int>::max()));
}

// "K220-22-R1, O/S 4.60, cloned on 2026-11-21 10:15:00".
std::string HeadText(const CloneHead& head) {
  return AnsiToUtf8(head.version.model + ", O/S " + head.version.osVersion + ", cloned on " + head.created);
}

// "It was read back and is whole: HW, FT, MM, OP for unit 1, 87 lines."
std::string FoundText(const CloneInfo& info) {
  std::string codes;
  for (const CloneInfoSegment& each : info.segments) codes += (codes.empty() ? "" : ", ") + each.segment.code;
  return "It was read back and is whole: " + AnsiToUtf8(codes) + " for unit " + std::to_string(info.unit.value_or(0)) +
         ", " + std::to_string(info.frames) + " lines.";
}

}  // namespace

// Everything that is given back when an operation ends, however it ends.
class frmDumpPLC::Operation {
 public:
  Operation(frmDumpPLC& window, std::string_view caption) : mWindow(window) {
    mWindow.setWindowTitle(Caption(caption));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QtPacer& pacer = mWindow.mServices.pacer;
    pacer.ClearStop();
    mGateBefore = pacer.ExchangeGate({.isOpen = true});  // all but the stop tool is disabled
    mWindow.mInformation->clear();
    mWindow.mProgressBar->reset();
    mWindow.mProgressText->clear();
    mWindow.mProgress = std::make_unique<DumpProgress>(pacer);
    mWindow.mIsStopAsked = false;
    mWindow.mEngine = std::make_unique<clsDumpPLC>(mWindow, mWindow.mServices.prompts, pacer, mWindow.mServices.clock);
  }
  ~Operation() {
    mWindow.mEngine.reset();
    mWindow.mServices.pacer.ExchangeGate(std::move(mGateBefore));
    mWindow.mServices.pacer.ClearStop();
    QApplication::restoreOverrideCursor();
    mWindow.setWindowTitle(Caption());
    mWindow.EnableCommands(true);
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  frmDumpPLC& mWindow;
  InputGate mGateBefore;
};

void frmDumpPLC::EnableCommands(bool enabled) {
  for (QAction* each : {mCreate, mRestore, mExit, mHelp}) Allow(*each, enabled ? "" : kBusy);
  Allow(*mStop, enabled ? kIdle : "");
  mIsBusy = !enabled;
  for (QCheckBox* each : {mOp, mDt, mAp, mOs}) each->setEnabled(enabled);
  if (mIsBusy) mTools->widgetForAction(mStop)->setFocus();  // what had the focus may just have been disabled
}

void frmDumpPLC::reject() {
  if (!mIsBusy) return QDialog::reject();
  // Once an operation, and not where the progress would wipe it away at once.
  if (!mInformation->toPlainText().endsWith(kBusy)) Say(kBusy);
}

void frmDumpPLC::CreateClone() {
  EnableCommands(false);
  const auto chosen = mServices.prompts.SaveFile({.title = "Create Clone File", .filter = kFilter});
  if (!chosen) return EnableCommands(true);
  SafeCreate safe(PathFromUtf8(*chosen));
  const Operation operation(*this, ": Create Clone File");
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) {
    // Nothing can be read, so the file that may stand there is left alone.
    mServices.prompts.Show({.text = "Operation Failed.", .title = std::string(kClonerCaption)});
    return ShowNoLink("The clone file was not created.");
  }
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);  // while the link was opened
  safe.Create(*mEngine, mServices.prompts, *link, Watched());
  ShowOutcome("Creating the clone file", safe.Outcome(), PathFromUtf8(*chosen));
  if (safe.Info() && safe.File()) Say(FoundText(*safe.Info()));
}

void frmDumpPLC::RestoreClone() {
  EnableCommands(false);
  const auto chosen = mServices.prompts.OpenFile({.title = "Restore Clone File", .filter = kFilter});
  if (!chosen) return EnableCommands(true);
  const Operation operation(*this, ": Restore Clone File");
  mRows->BeginCommands();
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) return ShowNoLink("The clone file was not restored.");
  RestoreInto(*link, PathFromUtf8(*chosen));
}

void frmDumpPLC::RestoreInto(Channel& link, const std::filesystem::path& file) {
  const std::vector<std::string> findings = Inspect(link, file);
  const bool isWanted = !mIsStopAsked && IsWantedDespite(findings) && GiveAccess(link);
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);
  if (!isWanted) return ShowEnd(CloneEnd::Stopped, kNotRestored);
  SerialPortObject* port = link.GetSerialPort();
  if (port == nullptr) return ShowNoLink("The clone file was not restored.");
  mEngine->RestoreGhost(*port, file, &link);
  ShowOutcome("Restoring the clone file", mEngine->Outcome(), file);
  if (mEngine->Outcome().end == CloneEnd::Done) Say(kNotReadBack);
}

// For work that has no callbacks of its own: it shows how far it is, and the stop tool ends it.
CloneWork frmDumpPLC::Watched() {
  const auto isStopped = [this] {
    mServices.pacer.Turn();
    return mIsStopAsked;
  };
  const auto onProgress = [this, progress = std::make_shared<WorkProgress>(mServices.pacer)](
                              std::string_view stage, std::uint64_t done, std::uint64_t total) {
    if (!mIsStopAsked) mProgressText->setText(QString::fromStdString(progress->Text(stage, done, total)));
  };
  return {.isStopped = isStopped, .onProgress = onProgress};
}

// Tells what the file holds and what speaks against restoring it, before the engine shows its own information; what
// speaks against it is returned too. What cannot be read is told; the engine then fails on it in its own way.
std::vector<std::string> frmDumpPLC::Inspect(Channel& link, const std::filesystem::path& file) {
  const auto info = InspectClone(file, Watched());
  if (mIsStopAsked) return {};
  if (!info) {
    Say(info.error().reason);
    return {};
  }
  const auto version = link.GetVersionInfo(link.UnitID());
  if (mIsStopAsked) return {};
  if (info->head) Say(Utf8FromPath(file.filename()) + ": " + HeadText(*info->head) + ".");
  if (!version) Say("The controller did not tell its model.\n" + link.LastError().Text());
  // Without an answer the model is taken to be right: there is nothing to compare it with.
  std::vector<std::string> findings = FindingsBeforeRestore(
      *info, version || !info->head ? version.value_or(VersionInfo()) : info->head->version, link.UnitID());
  for (const std::string& finding : findings) Say("Warning: " + finding);
  if (findings.empty() && version) Say("The file is whole, and made from a controller of this model.");
  return findings;
}

// The information that the engine shows has no button but OK, so who does not want it must be able to say so before.
bool frmDumpPLC::IsWantedDespite(const std::vector<std::string>& findings) {
  if (findings.empty()) return true;
  std::string question;
  for (const std::string& finding : findings) question += finding + "\r\n";
  return mServices.prompts.Show({.text = question + "\r\nRestore it all the same?",
                                 .title = std::string(kClonerCaption),
                                 .icon = PromptIcon::Exclamation,
                                 .buttons = PromptButtons::YesNo,
                                 .canLose = true}) == PromptAnswer::Yes;
}

// The lines of a restore cannot carry the password, so a controller that wants one gets it before the first of them.
bool frmDumpPLC::GiveAccess(Channel& link) {
  const bool isOpen = link.GiveAccess("", link.UnitID());
  if (isOpen || mIsStopAsked || link.LastError().code != LinkErrorCode::Refused) return true;  // else the engine tells
  const auto password = mServices.prompts.Ask(
      {.text = "Enter Password Up To 8 Chars", .title = std::string(kClonerCaption), .initial = "", .secret = true});
  if (!password) return false;
  if (link.GiveAccess(Utf8ToAnsi(*password), link.UnitID())) return true;
  Say(link.LastError().Text());
  mServices.prompts.Show({.text = "Operation Failed.", .title = std::string(kClonerCaption)});
  return false;
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

void frmDumpPLC::ShowHelp() {
  const std::string topic = Utf8FromPath(mServices.shared.paths.Help() / "Cloner.html");
  if (const auto opened = mServices.shell.Open("", topic, ""); !opened) {
    mServices.prompts.Show(
        {.text = opened.error(), .title = std::string(kClonerCaption), .icon = PromptIcon::Exclamation});
  }
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
  return {.op = mOp->isChecked(), .dt = mDt->isChecked(), .ap = mAp->isChecked(), .os = mOs->isChecked()};
}

}  // namespace kv
