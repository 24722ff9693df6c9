#include "cache/ui/frmRestoreCache.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <algorithm>
#include <limits>

#include "KvTele2/cache/CacheOutcome.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "cache/ui/ResultTable.h"
#include "desktop/StopScope.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/HelpRequest.h"
#include "desktop/ui/Icons.h"

// What the import wizard does; how it looks is in frmRestoreCacheLayout.cpp.
namespace kv {
namespace {

constexpr const char* kPurpose = "Caches";  // for which a folder is remembered
constexpr const char* kTitle = "Import Cache";
constexpr const char* kBusy = "An import is running; Cancel ends it.";
constexpr const char* kNothingChanged = "Nothing was read, and the file is as it was.";
constexpr const char* kAfterFailure =
    "Back leads to the first step, where you can import again or choose another file. Finish closes this window.";
const QColor kRed(255, 0, 0);

// The window's image list: what a key shows, and says to whoever does not see it.
struct Mark {
  const char* key;
  QIcon (*icon)();
  const char* text;
};
constexpr Mark kMarks[] = {{"PROG", [] { return IconOf("refresh"); }, "Running"},
                           {"OK", [] { return IconOf("test"); }, "Done"},
                           {"FAIL", [] { return IconOf("warning"); }, "Failed"}};

QString Text(const std::string& text) {
  return QString::fromStdString(text).replace("\r\n", "\n");
}

std::size_t RowOf(cache::CacheStep step) {
  return step == cache::CacheStep::Font ? 1 : 2;
}

std::string Lines(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences) text += (text.empty() ? "" : "\n") + sentence;
  return text;
}

// What is in a file: "4 fonts and 18 images", and how many of them were read anew.
std::string ContentText(const std::vector<cache::CacheResult>& results) {
  const auto isFont = [](const cache::CacheResult& one) { return one.step == cache::CacheStep::Font; };
  const auto fonts = static_cast<std::uint64_t>(std::ranges::count_if(results, isFont));
  const auto read = std::ranges::count_if(results, &cache::CacheResult::wasRead);
  return Counted(fonts, "font") + " and " + Counted(results.size() - fonts, "image") + ", " + std::to_string(read) +
         " of them read anew";
}

}  // namespace

// Everything that is given back when an import ends, however it ends.
class frmRestoreCache::Operation {
 public:
  explicit Operation(frmRestoreCache& window) : mWindow(window), mStop(window.mServices.pacer) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    mGateBefore = window.mServices.pacer.ExchangeGate({.isOpen = true});  // all but Cancel is disabled
    window.mIsBusy = true;
    window.EnableCommands();
    window.mCancel->setFocus();  // what had the focus has just been disabled
  }
  ~Operation() {
    mWindow.mBar->reset();
    mWindow.mProgress->clear();
    mWindow.mAmount->clear();
    mWindow.mServices.pacer.ExchangeGate(std::move(mGateBefore));
    QApplication::restoreOverrideCursor();
    mWindow.mIsBusy = false;
    mWindow.EnableCommands();
    mWindow.mNext->setFocus();
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  frmRestoreCache& mWindow;
  StopScope mStop;
  InputGate mGateBefore;
};

void frmRestoreCache::reject() {
  if (!mIsBusy) return QDialog::reject();
  mServices.pacer.RequestStop();
  mProgress->setText("Cancelling");
}

void frmRestoreCache::done(int result) {
  CloseHelpFile();
  QDialog::done(result);
}

void frmRestoreCache::OpenHelp() {
  mHasOpenedHelp = true;
  RequestHelp(*this);
}

void frmRestoreCache::CloseHelpFile() {
  if (!std::exchange(mHasOpenedHelp, false)) return;
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (each->objectName() == "frmHelp") each->close();
  }
}

void frmRestoreCache::ShowPage(Page page) {
  mPage = page;
  QWidget* const shown[] = {mChoosing, mCreating, mIsMade ? static_cast<QWidget*>(mResults) : mKept};
  mPages->setCurrentWidget(shown[static_cast<std::size_t>(page)]);
  // Of a file that is made, Finish says all that is left to do.
  mCancel->setVisible(!mIsMade);
  if (page == Page::Choose) mHeader->setText("Choose the cache file, and what is read into it");
  EnableCommands();
}

// A page that waits for its import has nothing to try again yet.
void frmRestoreCache::NameCommands() {
  constexpr const char* kCaptions[] = {"Next", "Try Again", "Finish"};
  constexpr const char* kTips[] = {"Reads the fonts and images of the controller into the file",
                                   "Begins the import anew", "Closes this window"};
  const auto next = static_cast<std::size_t>(mIsBusy ? Page::Choose : mPage);
  mNext->setText(kCaptions[next]);
  mNext->setShortcut(QKeySequence(Qt::ALT | Qt::Key_N));  // a new text has taken it away
  Describe(*mNext, kTips[next], "Alt+N");
  Describe(*mCancel, mIsBusy ? "Ends the import; the chosen file stays as it was" : "Closes this window", "Esc");
}

void frmRestoreCache::EnableCommands() {
  NameCommands();
  const bool isAnyWanted = mBoxes[1]->isChecked() || mBoxes[2]->isChecked();
  const QString whyNot = mIsBusy ? kBusy : "";
  const char* lacking = !mChosen ? "No file was chosen." : !isAnyWanted ? "Neither fonts nor images are wanted." : "";
  Allow(*mHelp, whyNot);
  Allow(*mBack, mIsBusy ? kBusy : mPage == Page::Choose ? "This is the first step." : mIsMade ? "It is done." : "");
  Allow(*mNext, mIsBusy ? kBusy : mPage == Page::Finished ? "" : lacking);
  const QString whyNotChoose = mIsBusy ? kBusy : mPage == Page::Choose ? "" : "The file was chosen in the first step.";
  Allow(*mBrowse, whyNotChoose);
  Allow(*mReadsAll, whyNotChoose);
  for (std::size_t i = 1; i < kRows; ++i) Allow(*mBoxes[i], whyNotChoose);
}

void frmRestoreCache::ShowMark(cache::CacheStep step, const char* key) {
  QLabel& label = *mMarks[RowOf(step)];
  const auto mark = std::ranges::find(kMarks, std::string_view(key), [](const Mark& one) { return one.key; });
  const bool isShown = mark != std::end(kMarks);
  label.setPixmap(isShown ? mark->icon().pixmap(label.size(), devicePixelRatioF()) : QPixmap());
  label.setProperty("key", key);
  label.setToolTip(isShown ? mark->text : "");
  label.setAccessibleName(label.toolTip());
}

void frmRestoreCache::ShowState(Tone tone, const std::string& state, const std::string& reason) {
  QPalette colours = mReason->palette();
  if (tone == Tone::Failure) colours.setColor(QPalette::WindowText, kRed);
  mState->setPalette(colours);
  mState->setText(Text(state));
  mState->setVisible(!state.empty());
  mReason->setText(Text(reason));
  mReason->setVisible(!reason.empty());
  mHelpLink->Follow(tone == Tone::Failure ? mState->text() + "\n" + mReason->text() : QString());
}

void frmRestoreCache::Browse() {
  const std::string model = mRemote->Model();
  // What is known of a file that stands there is asked before it is replaced, and that of this controller is not.
  const auto chosen = mServices.prompts.SaveFile({.title = "Create Cache File",
                                                  .filter = kCacheFilter,
                                                  .purpose = kPurpose,
                                                  .initial = CacheNameOf(model),
                                                  .asksToReplace = false});
  if (!chosen) return;
  mChosen.emplace(PathFromUtf8(*chosen));
  mSteps[0]->setText(QString::fromStdString(mChosen->Label()));
  mSteps[0]->setToolTip(QString::fromStdString(mChosen->Hint()));
  ShowState(Tone::Plain, "", "");
  AskAmount();
}

// Nobody should have to find out at the machine for how many minutes its display is away. Nothing is shown of a failure
// that Next may still get over.
void frmRestoreCache::AskAmount() {
  const Operation operation(*this);
  mPreview.reset();
  mPreviewText->setText("Asking the controller how much there is to read");
  ShowAmount();
  const std::shared_ptr<Channel> link = mServices.shared.ComDriver->GetChannel();
  cache::CacheImport import(ImportOrder(mServices.shared, mChosen->File()), mServices.pacer, mServices.clock, *this);
  if (auto plan = import.Prepare(link.get())) {
    mPreview = *std::move(plan);
  } else {
    mPreviewText->setText("How much is to be read, and for how long, is not known yet.");
  }
  ShowAmount();
}

void frmRestoreCache::ShowAmount() {
  if (mPreview) mPreviewText->setText(Text(PreviewText(*mPreview, Wishes())));
  mPreviewText->setVisible(mChosen && (mBoxes[1]->isChecked() || mBoxes[2]->isChecked()));
}

cache::CacheImportOrder frmRestoreCache::Wishes() const {
  cache::CacheImportOrder order = ImportOrder(mServices.shared, mChosen->File());
  order.fonts = mBoxes[1]->isChecked();
  order.images = mBoxes[2]->isChecked();
  order.readsAll = mReadsAll->isChecked();
  return order;
}

bool frmRestoreCache::eventFilter(QObject* watched, QEvent* event) {
  for (std::size_t i = 1; i < kRows; ++i) {
    if (watched != mSteps[i] || event->type() != QEvent::MouseButtonRelease) continue;
    const auto& mouse = *static_cast<QMouseEvent*>(event);
    const bool isClick = mouse.button() == Qt::LeftButton && mSteps[i]->rect().contains(mouse.position().toPoint());
    if (isClick) mBoxes[i]->click();
  }
  return QDialog::eventFilter(watched, event);
}

void frmRestoreCache::Next() {
  if (mPage == Page::Finished) return accept();
  Create();
}

void frmRestoreCache::Back() {
  BeginAnew();
  ShowPage(Page::Choose);
  mBrowse->setFocus();
}

void frmRestoreCache::BeginAnew() {
  for (const cache::CacheStep step : {cache::CacheStep::Font, cache::CacheStep::Image}) ShowMark(step, "");
  ShowState(Tone::Plain, "", "");
}

void frmRestoreCache::Create() {
  if (mChosen->HasChanged()) {
    Back();
    mChosen.reset();
    mPreview.reset();
    ShowAmount();
    mSteps[0]->setText(kNoCacheChosen);
    EnableCommands();
    return ShowState(Tone::Failure, "The file has changed since it was chosen.", "Choose it anew, or another one.");
  }
  BeginAnew();
  ShowPage(Page::Create);
  mHeader->setText(Text(cache::WaitText(mChosen->Name())));
  const Operation operation(*this);
  CreateFrom(mServices.shared.ComDriver->GetChannel().get());
}

void frmRestoreCache::CreateFrom(Channel* link) {
  mImport = std::make_unique<cache::CacheImport>(Wishes(), mServices.pacer, mServices.clock, *this);
  mProgress->setText("Asking the controller who it is");
  auto plan = mImport->Prepare(link);
  if (!plan) {
    if (!link) plan.error().reason = mServices.shared.ComDriver->LastError().Text();
    return ShowFailure(plan.error());
  }
  if (!IsWanted(*plan)) return ShowFailure({.end = cache::CacheEnd::Stopped, .text = kNothingChanged});
  if (const std::string kept = KeptText(*plan); !kept.empty()) ShowState(Tone::Plain, "", kept);
  const cache::CacheOutcome outcome = mImport->Run(*link);
  if (outcome.end == cache::CacheEnd::Done) return ShowSuccess(outcome);
  ShowFailure(outcome);
  if (outcome.end != cache::CacheEnd::Failed) return;
  mKept->setText(Text(outcome.kept + (outcome.kept.empty() ? "" : "\n\n") + kAfterFailure));
  ShowPage(Page::Finished);
}

bool frmRestoreCache::IsWanted(const cache::CacheImportPlan& plan) {
  return plan.question.empty() || mServices.prompts.Show({.text = plan.question,
                                                          .title = kTitle,
                                                          .icon = PromptIcon::Exclamation,
                                                          .buttons = PromptButtons::YesNo,
                                                          .canLose = true}) == PromptAnswer::Yes;
}

void frmRestoreCache::Event_Step(cache::CacheStep step, cache::CacheStepState state) {
  const bool isRunning = state == cache::CacheStepState::Running;
  ShowMark(step, isRunning ? "PROG" : state == cache::CacheStepState::Done ? "OK" : "FAIL");
  mBar->reset();
  mAmount->clear();
  mProgress->setText(isRunning ? Text(std::string(cache::ProgressText(step))) : "Ending SYSTEM mode");
}

void frmRestoreCache::Event_Progress(const cache::CacheProgress& progress) {
  constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
  mBar->setMaximum(static_cast<int>(std::clamp<std::uint64_t>(progress.total, 1, kMost)));
  mBar->setValue(static_cast<int>(std::min(progress.done, kMost)));
  mAmount->setText(Text(AmountText(progress)));
  mServices.pacer.DoEvents();
}

// What was refused before anything was read, and what was cancelled, can be tried again at once.
void frmRestoreCache::ShowFailure(const cache::CacheOutcome& outcome) {
  mRemote->StatusMessage(outcome.text + (outcome.reason.empty() ? "" : "\n" + outcome.reason));
  mHeader->setText(Text("Nothing was imported into " + mChosen->Name()));
  const std::string warnings = Lines(mImport->Warnings());
  const bool isStop = outcome.end == cache::CacheEnd::Stopped;
  const std::string& first = isStop ? outcome.kept : outcome.reason;
  ShowState(isStop ? Tone::Plain : Tone::Failure, outcome.text,
            first + (first.empty() || warnings.empty() ? "" : "\n") + warnings);
}

void frmRestoreCache::ShowSuccess(const cache::CacheOutcome& outcome) {
  mIsMade = true;
  mRemote->StatusMessage(outcome.text);
  UseCache(mServices.shared, *mRemote, mChosen->File());
  mHeader->setText(Text(mChosen->Name() + ": " + ContentText(mImport->Results())));
  ShowState(Tone::Plain, outcome.text, Lines(mImport->Warnings()));
  mResults->Fill(mImport->Results(), mImport->Content());
  ShowPage(Page::Finished);
}

}  // namespace kv
