#include "KvTele2/ui/frmMain.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/ui/ControllerPage.h"
#include "KvTele2/ui/LogView.h"
#include "KvTele2/ui/StatusFields.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/WindowGeometry.h"

namespace kv {
namespace {

constexpr std::chrono::seconds kHeartbeat{1};
// A question to the controller that takes longer is shown, so that it can be cancelled.
constexpr std::chrono::milliseconds kQuietLimit{300};

}  // namespace

frmMain::frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile)
    : mPacer(pacer), mCommands(*this, [this](std::string_view id, const std::string& text) { Command(id, text); }) {
  setObjectName("frmMain");
  setWindowIcon(IconOf(Picture::App));
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
  mPages->addWidget(mPage);
  mLog = new LogView(middle);
  middle->setStretchFactor(0, 3);
  middle->setStretchFactor(1, 1);
  setCentralWidget(middle);
}

void frmMain::BuildTimers() {
  mHeartbeat.setInterval(kHeartbeat);
  connect(&mHeartbeat, &QTimer::timeout, this, [this] { Tick(); });
  mQuietWait.setSingleShot(true);
  mQuietWait.setInterval(kQuietLimit);
  connect(&mQuietWait, &QTimer::timeout, this, [this] { ShowBusy(); });
}

void frmMain::Command(std::string_view id, const std::string& argument) {
  if (id == command::kCopyLog) QApplication::clipboard()->setText(mLog->CopyText());
  mHost->Click(id, argument);
}

void frmMain::Show(const HostState& state, const Journal& journal) {
  setWindowTitle(QString::fromStdString(WindowTitle(state)));
  mCommands.Show(state, [this](std::string_view id) { return mHost->WhyDisabled(id); });
  mPage->Show(state);
  mLog->Follow(journal);
  mStatus->Show(state);
  ShowPointer(state.isPointerBusy);
  const bool isHeld = state.connection == Connection::Online || state.connection == Connection::Lost;
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
  mWaitText = QString::fromStdString(what);
  if (wait == Wait::Asked) {
    ShowBusy();
  } else {
    mQuietWait.start();
  }
}

void frmMain::EndWait() {
  mQuietWait.stop();
  mBusy.reset();
}

void frmMain::ShowBusy() {
  mBusy.emplace(mPacer, *this, mWaitText);
}

void frmMain::Tick() {
  // A box of the host's may be open over the window.
  if (!QApplication::activeModalWidget()) mHost->Tick();
}

void frmMain::closeEvent(QCloseEvent* event) {
  event->ignore();
  Command(command::kExit, "");
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && mHost) mPage->Show(mHost->State());
}

}  // namespace kv
