#include "KvTele2/ui/frmMain.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <utility>

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/ui/ControllerPage.h"
#include "KvTele2/ui/LogView.h"
#include "KvTele2/ui/StatusFields.h"
#include "desktop/ui/ContextMenu.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/ScrollPage.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {
namespace {

constexpr std::chrono::seconds kHeartbeat{1};
// A quiet question that takes longer keeps nobody waiting: input is delivered while it goes on.
constexpr std::chrono::milliseconds kInputDelay{300};
// Longer than any answer takes but on the slowest lines.
constexpr std::chrono::seconds kSilence{1};

}  // namespace

frmMain::frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile)
    : mPacer(pacer), mCommands(*this, [this](std::string_view id, const std::string& text) { Command(id, text); }) {
  setObjectName("frmMain");
  setWindowIcon(IconOf("app"));
  BuildMiddle();
  BuildTimers();
  mStatus = new StatusFields(this);
  setStatusBar(mStatus);
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(escape, &QShortcut::activated, this, [this] { Command(command::kEscape, ""); });
  resize(960, 640);
  RememberPlace(*this, windowsFile);
}

frmMain::~frmMain() {
  ShowPointer(false);
}

void frmMain::BuildMiddle() {
  auto* middle = new QSplitter(Qt::Vertical, this);
  middle->setObjectName("splMain");
  middle->setChildrenCollapsible(false);
  mPages = new QStackedWidget(middle);
  mPages->setObjectName("stkPages");
  mPage = new ControllerPage(mPages);
  mPages->addWidget(new ScrollPage(mPage, mPages));
  mLog = new LogView(middle);
  OnContextMenu(*mLog, [this](const QModelIndex&, const QPoint& at) { ShowLogMenu(at); });
  middle->setStretchFactor(0, 3);
  middle->setStretchFactor(1, 1);
  setCentralWidget(middle);
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
  mHost->Click(id, argument);
  // What a tool has done to the controller is seen at once, and not only with the next beat.
  if (mHeartbeat.isActive()) QTimer::singleShot(0, this, [this] { Tick(); });
}

void frmMain::Show(const HostState& state, const Journal& journal) {
  setWindowTitle(QString::fromStdString(WindowTitle(state)));
  mCommands.Show(state, [this](std::string_view id) { return mHost->WhyDisabled(id); });
  mPage->Show(state);
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

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && mHost) mPage->Show(mHost->State());
}

}  // namespace kv
