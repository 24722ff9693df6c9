#include "KvTele2/ui/frmMain.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <utility>

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/ui/LogView.h"
#include "KvTele2/ui/MachineHeading.h"
#include "KvTele2/ui/SidePanel.h"
#include "KvTele2/ui/StartPage.h"
#include "KvTele2/ui/StatusFields.h"
#include "KvTele2/ui/ValuesPage.h"
#include "desktop/ui/ContextMenu.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/ScrollPage.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {
namespace {

constexpr std::chrono::seconds kHeartbeat{1};
// A quiet question that takes longer keeps nobody waiting: input is delivered while it goes on.
constexpr std::chrono::milliseconds kInputDelay{300};
constexpr QSize kFirstSize(1120, 720);
constexpr int kFewestLetters = 24;  // beside each other in a page; what is wider scrolls
// Longer than any answer takes but on the slowest lines.
constexpr std::chrono::seconds kSilence{1};

}  // namespace

frmMain::frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile)
    : mPacer(pacer),
      mTheme(windowsFile),
      mCommands(*this, [this](std::string_view id, const std::string& text) { Command(id, text); }) {
  setObjectName("frmMain");
  setWindowIcon(IconOf("app"));
  BuildMiddle();
  BuildTimers();
  mStatus = new StatusFields(this);
  setStatusBar(mStatus);
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(escape, &QShortcut::activated, this, [this] { Command(command::kEscape, ""); });
  mCommands.ShowTheme(NameOf(mTheme.Chosen()));
  resize(kFirstSize);
  RememberPlace(*this, windowsFile);
}

frmMain::~frmMain() {
  ShowPointer(false);
}

void frmMain::BuildMiddle() {
  auto* centre = new QWidget(this);
  auto* middle = new QSplitter(Qt::Vertical, centre);
  middle->setObjectName("splMain");
  middle->setChildrenCollapsible(false);
  middle->addWidget(BuildPages(middle));
  mLog = new LogView(middle);
  OnContextMenu(*mLog, [this](const QModelIndex&, const QPoint& at) { ShowLogMenu(at); });
  middle->setStretchFactor(0, 3);
  middle->setStretchFactor(1, 1);

  mSide = new SidePanel(centre);
  auto* side = new ScrollPage(mSide, centre);
  side->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  side->setFixedWidth(mSide->width() + side->verticalScrollBar()->sizeHint().width());
  auto* columns = new QHBoxLayout(centre);
  columns->setContentsMargins({});
  columns->setSpacing(0);
  columns->addWidget(middle, 1);
  columns->addWidget(side);
  setCentralWidget(centre);
}

QWidget* frmMain::BuildPages(QWidget* parent) {
  const auto click = [this](std::string_view id) { Command(id, ""); };
  auto* upper = new QWidget(parent);
  mHeading = new MachineHeading(click, upper);
  mPages = new QStackedWidget(upper);
  mPages->setObjectName("stkPages");
  mPages->setMinimumWidth(kFewestLetters * fontMetrics().averageCharWidth());
  mStart = new StartPage([this](std::string_view id, const std::string& text) { Command(id, text); }, mPages);
  mValues = new ValuesPage(click, mPages);
  mPages->addWidget(new ScrollPage(mStart, mPages));
  mPages->addWidget(new ScrollPage(mValues, mPages));
  auto* rows = new QVBoxLayout(upper);
  rows->setContentsMargins({});
  rows->setSpacing(0);
  rows->addWidget(mHeading);
  rows->addWidget(mPages, 1);
  return upper;
}

void frmMain::ShowLogMenu(const QPoint& at) {
  QMenu menu(this);
  menu.setToolTipsVisible(true);
  for (const std::string_view id : {command::kCopyLog, command::kClearLog}) menu.addAction(mCommands.Action(id));
  menu.exec(at);
}

void frmMain::BuildTimers() {
  mHeartbeat.setInterval(kHeartbeat);
  connect(&mHeartbeat, &QTimer::timeout, this, [this] { Tick(); });
  mInputDelay.setSingleShot(true);
  mInputDelay.setInterval(kInputDelay);
  connect(&mInputDelay, &QTimer::timeout, this, [this] { LetInputThrough(); });
  mSilence.setSingleShot(true);
  mSilence.setInterval(kSilence);
  connect(&mSilence, &QTimer::timeout, this, [this] { mHost->NoteSilence(); });
}

void frmMain::Command(std::string_view id, const std::string& argument) {
  if (id == command::kCopyLog) QApplication::clipboard()->setText(mLog->CopyText());
  if (id == command::kTheme) mTheme.Choose(ThemeNamed(QString::fromStdString(argument)));
  mHost->Click(id, argument);
  // What a tool has done to the controller is seen at once, and not only with the next beat.
  if (mHeartbeat.isActive()) QTimer::singleShot(0, this, [this] { Tick(); });
}

void frmMain::Show(const HostState& state, const Journal& journal) {
  setWindowTitle(QString::fromStdString(WindowTitle(state)));
  mCommands.Show(state, [this](std::string_view id) { return mHost->WhyDisabled(id); });
  mCommands.ShowTheme(NameOf(mTheme.Chosen()));
  mHeading->Show(state);
  mPages->setCurrentIndex(static_cast<int>(MiddlePageOf(state)));
  mStart->Show(state);
  mValues->Show(state);
  mSide->Show(state);
  mLog->Follow(journal);
  mStatus->Show(state);
  ShowPointer(state.isPointerBusy);
  const bool isHeld = state.connection == ConnectionState::Online || state.connection == ConnectionState::Lost;
  if (isHeld && !mHeartbeat.isActive()) mHeartbeat.start();
  if (!isHeld) mHeartbeat.stop();
}

void frmMain::ShowPointer(bool busy) {
  if (busy == mIsPointerBusy) return;
  mIsPointerBusy = busy;
  if (busy) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void frmMain::Run() {
  show();
  mLoop.exec();
}

void frmMain::Quit() {
  mHeartbeat.stop();
  hide();
  mLoop.quit();
}

void frmMain::BeginWait(Wait wait, const std::string& what) {
  if (wait == Wait::Asked) {
    mBusy.emplace(mPacer, *this, QString::fromStdString(what));
  } else {
    mInputDelay.start();
    mSilence.start();
  }
}

void frmMain::EndWait() {
  mInputDelay.stop();
  mSilence.stop();
  mBusy.reset();
  if (mGateBefore) mPacer.ExchangeGate(*std::exchange(mGateBefore, std::nullopt));
}

void frmMain::LetInputThrough() {
  mGateBefore = mPacer.ExchangeGate({.isOpen = true});
}

void frmMain::Tick() {
  // A tool's window may hold this one up, or a box of the host's, under which nothing is asked.
  QApplication::activeModalWidget() ? mHost->FollowTool() : mHost->Tick();
}

void frmMain::closeEvent(QCloseEvent* event) {
  event->ignore();
  Command(command::kExit, "");
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  mCommands.FitInto(width());
}

}  // namespace kv
