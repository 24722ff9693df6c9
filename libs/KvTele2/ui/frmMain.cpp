#include "KvTele2/ui/frmMain.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QSaveFile>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <array>
#include <utility>

#include "KvTele2/TelepanelHost.h"
#include "KvTele2/ui/LogView.h"
#include "KvTele2/ui/MachineHeading.h"
#include "KvTele2/ui/PanelPage.h"
#include "KvTele2/ui/PanelView.h"
#include "KvTele2/ui/SidePanel.h"
#include "KvTele2/ui/StartPage.h"
#include "KvTele2/ui/StatusFields.h"
#include "KvTele2/ui/ValuesPage.h"
#include "base/ProfileStrings.h"
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
// A screen that is not as many lines of text high has no room for these.
constexpr int kLinesWithLog = 28;
constexpr int kLinesWithTools = 26;
// Longer than any answer takes but on the slowest lines.
constexpr std::chrono::seconds kSilence{1};
// The scale of the panel, in the file of the windows' places: it belongs to the screen.
constexpr const char* kPanelSection = "Panel";
constexpr const char* kScaleKey = "Scale";
constexpr auto kBannerCommands =
    std::to_array<std::string_view>({command::kOperate, command::kViewOnly, command::kScale, command::kFullScreen,
                                     command::kCopyPicture, command::kFindText});

}  // namespace

frmMain::frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile)
    : mPacer(pacer),
      mWindowsFile(windowsFile),
      mTheme(windowsFile),
      mCommands(*this, [this](std::string_view id, const std::string& text) { Command(id, text); }) {
  setObjectName("frmMain");
  setWindowIcon(IconOf("app"));
  BuildMiddle();
  BuildTimers();
  mStatus = new StatusFields(this);
  setStatusBar(mStatus);
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(escape, &QShortcut::activated, this,
          [this] { mAround.empty() ? Command(command::kEscape, "") : ToggleFullScreen(); });
  ShowScale(PanelScale::Named(QString::fromStdString(ReadProfileString(mWindowsFile, kPanelSection, kScaleKey, ""))));
  mCommands.ShowTheme(NameOf(mTheme.Chosen()));
  FitScreen();
  resize(kFirstSize);
  RememberPlace(*this, windowsFile);
}

void frmMain::SetHost(TelepanelHost& host) {
  mHost = &host;
  mPanel->SetHost(host);
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
  mSideColumn = new ScrollPage(mSide, centre);
  auto* side = static_cast<ScrollPage*>(mSideColumn);
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
  std::vector<QAction*> commands;
  for (const std::string_view id : kBannerCommands) commands.push_back(mCommands.Action(id));
  mPanel = new PanelPage(click, commands, mPages);
  mPages->addWidget(mPanel);
  addActions({commands.begin(), commands.end()});  // their keys go on working when the menus are hidden
  auto* rows = new QVBoxLayout(upper);
  rows->setContentsMargins({});
  rows->setSpacing(0);
  rows->addWidget(mHeading);
  rows->addWidget(mPages, 1);
  return upper;
}

// On a small screen, or with large letters, what stands around the middle gives way: the menus have all commands, the
// title names machine and state, and the foot has the last line of the log.
void frmMain::FitScreen() {
  if (!mAround.empty()) return;
  const QSize room = RoomFor(*this);
  const int lines = room.height() / fontMetrics().lineSpacing();
  const bool isWide = room.width() >= mSideColumn->maximumWidth() + 2 * mPages->minimumWidth();
  mSideColumn->setVisible(isWide);
  mStatus->ShowPlace(isWide);
  mLog->setVisible(lines >= kLinesWithLog);
  mCommands.ToolBar()->setVisible(lines >= kLinesWithTools);
  mHeading->ShowName(lines >= kLinesWithTools);
  // Before it was shown it may have had to be higher than the screen.
  if (isVisible()) FitToScreen(*this);
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  connect(windowHandle(), &QWindow::screenChanged, this, &frmMain::FitScreen, Qt::UniqueConnection);
  QTimer::singleShot(0, this, [this] { FitScreen(); });
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
  connect(&mSilence, &QTimer::timeout, this, [this] { NoteSilence(); });
}

void frmMain::Command(std::string_view id, const std::string& argument) {
  if (id == command::kCopyLog) QApplication::clipboard()->setText(mLog->CopyText());
  if (id == command::kTheme) mTheme.Choose(ThemeNamed(QString::fromStdString(argument)));
  ShowPanelCommand(id, QString::fromStdString(argument));
  mHost->Click(id, argument);
  // What a tool has done to the controller is seen at once, and not only with the next beat.
  if (mHeartbeat.isActive()) QTimer::singleShot(0, this, [this] { Tick(); });
}

void frmMain::Show(const HostState& state, const Journal& journal) {
  setWindowTitle(QString::fromStdString(WindowTitle(state)));
  mCommands.Show(state, [this](std::string_view id) { return mHost->WhyDisabled(id); });
  mCommands.ShowTheme(NameOf(mTheme.Chosen()));
  mHeading->Show(state);
  if (!mAround.empty() && MiddlePageOf(state) != MiddlePage::Panel) ToggleFullScreen();
  mPages->setCurrentIndex(static_cast<int>(MiddlePageOf(state)));
  mStart->Show(state);
  mValues->Show(state);
  mPanel->Show(state);
  mSide->Show(state);
  mLog->Follow(journal);
  mStatus->Show(state);
  ShowPointer(state.isPointerBusy);
  const bool isHeld = state.connection == ConnectionState::Online || state.connection == ConnectionState::Lost;
  if (isHeld && !mHeartbeat.isActive()) mHeartbeat.start();
  if (!isHeld) mHeartbeat.stop();
}

// What of the panel's commands is the window's own.
void frmMain::ShowPanelCommand(std::string_view id, const QString& argument) {
  if (id == command::kScale) {
    ShowScale(PanelScale::Named(argument));
    // A choice that cannot be kept holds until the program ends.
    (void)WriteProfileString(mWindowsFile, kPanelSection, kScaleKey, argument.toStdString());
  }
  if (id == command::kFullScreen) ToggleFullScreen();
  if (id == command::kFindText) mPanel->OpenFind();
  if (id == command::kCopyPicture) {
    QApplication::clipboard()->setImage(mPanel->View().Picture());
    mHost->StatusMessage("The picture of the screen is on the clipboard.");
  }
  if (id == command::kCopyTexts) {
    QApplication::clipboard()->setText(mPanel->View().TextToCopy());
    mHost->StatusMessage("The texts of the screen are on the clipboard.");
  }
}

void frmMain::ShowScale(PanelScale scale) {
  mPanel->SetScale(scale);
  mCommands.ShowScale(scale.Name());
}

// Which machine it is, and how it is, stands above its screen there, too.
void frmMain::ToggleFullScreen() {
  if (!mAround.empty()) {
    for (QWidget* widget : std::exchange(mAround, {})) widget->show();
    const QRect before = normalGeometry();
    setWindowState(windowState() & ~Qt::WindowFullScreen);
    if (!isMaximized()) setGeometry(before);  // the desktop's word comes later than the next question for it
    FitScreen();
  } else {
    mHeading->ShowName(true);
    for (QWidget* widget : {static_cast<QWidget*>(menuBar()), static_cast<QWidget*>(statusBar()), mSideColumn,
                            static_cast<QWidget*>(mLog), mCommands.ToolBar()}) {
      if (!widget->isVisible()) continue;
      widget->hide();
      mAround.push_back(widget);
    }
    setWindowState(windowState() | Qt::WindowFullScreen);
  }
  mPanel->SetFullScreen(!mAround.empty());
}

std::expected<void, std::string> frmMain::SavePicture(const std::string& path) {
  const QImage picture = mPanel->View().Picture();
  QSaveFile file(QString::fromStdString(path));
  const bool isSaved =
      !picture.isNull() && file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit();
  if (isSaved) return {};
  return std::unexpected(picture.isNull() ? "There is no screen any more."
                                          : path + ": " + file.errorString().toStdString() +
                                                ".\r\nWhat to do: choose another folder.");
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
  if (!mAround.empty()) ToggleFullScreen();  // its place is kept for the next time
  mHeartbeat.stop();
  hide();
  mLoop.quit();
}

void frmMain::BeginWait(Wait wait, const std::string& what) {
  if (wait == Wait::Asked) {
    mBusy.emplace(mPacer, *this, QString::fromStdString(what));
  } else {
    mSilence.start();
    mModalBefore = QApplication::activeModalWidget();
    // Whoever sees the panel may press at any moment.
    const bool isPanelSeen = wait == Wait::Screen || mPages->currentWidget() == mPanel;
    isPanelSeen ? LetInputThrough() : mInputDelay.start();
  }
}

void frmMain::EndWait() {
  mInputDelay.stop();
  mSilence.stop();
  mBusy.reset();
  if (mGateBefore) mPacer.ExchangeGate(*std::exchange(mGateBefore, std::nullopt));
}

// An exchange may ask the user something, such as whether to go on without a record: it waits for him, and nobody for
// the controller. A question that was open before it began is none of its own.
void frmMain::NoteSilence() {
  const QWidget* modal = QApplication::activeModalWidget();
  if (!modal || modal == mModalBefore) return mHost->NoteSilence();
  mHost->NoteQuestion();
  mSilence.start();
}

void frmMain::LetInputThrough() {
  mGateBefore = mPacer.ExchangeGate({.isOpen = true});
}

void frmMain::Tick() {
  // A tool's window may hold this one up, or a box of the host's, under which nothing is asked.
  if (!QApplication::activeModalWidget()) return mHost->Tick();
  mHost->FollowTool();
  mPanel->Show(mHost->State());  // grows old all the same
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
