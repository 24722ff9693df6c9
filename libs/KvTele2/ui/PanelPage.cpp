#include "KvTele2/ui/PanelPage.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <chrono>

#include "KvTele2/HostCommands.h"
#include "KvTele2/PanelText.h"
#include "KvTele2/TelepanelHost.h"
#include "KvTele2/ui/PanelBanner.h"
#include "KvTele2/ui/PanelFind.h"
#include "KvTele2/ui/PanelKeys.h"
#include "KvTele2/ui/PanelView.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/Icons.h"

namespace kv {
namespace {

constexpr std::chrono::milliseconds kBlink{500};
constexpr int kFrame = 5;  // around the screen

}  // namespace

PanelPage::PanelPage(OnCommand onCommand, const std::vector<QAction*>& commands, QWidget* parent)
    : QWidget(parent), mOnCommand(std::move(onCommand)) {
  setObjectName("pagePanel");
  Build(commands);
  mStep.setSingleShot(true);
  mStep.setTimerType(Qt::PreciseTimer);
  connect(&mStep, &QTimer::timeout, this, [this] { Step(); });
  mBlink.setInterval(kBlink);
  connect(&mBlink, &QTimer::timeout, this, [this] {
    mIsBlinkSeen = !mIsBlinkSeen;
    if (auto* session = mHost->Panel(); session && session->HasBlinking()) session->ShowBlinking(mIsBlinkSeen);
    mKeys->ShowBlinking(mIsBlinkSeen);
    mView->Follow(mHost->PanelResources());
  });
}

void PanelPage::Build(const std::vector<QAction*>& commands) {
  mBanner = new PanelBanner(commands, this);
  mFrame = new QFrame(this);
  mFrame->setObjectName("fraPanel");
  mScroll = new QScrollArea(mFrame);
  mScroll->setFrameShape(QFrame::NoFrame);
  mScroll->setFocusPolicy(Qt::NoFocus);
  mScroll->setWidgetResizable(true);
  mScroll->setMinimumSize(PanelView::kSmallest);
  mView = new PanelView([this] { return mHost ? mHost->Panel() : nullptr; }, [this] { StepNow(); }, mScroll);
  mView->onCopy = [this] { mOnCommand(command::kCopyTexts); };
  mScroll->setWidget(mView);
  mView->setAutoFillBackground(false);
  mScroll->viewport()->setAutoFillBackground(true);  // the frame around it is all that is coloured
  mKeys = new PanelKeys(mView->Press(), this);
  mFind = new PanelFind(
      [this](const std::optional<panel::PixelRect>& place) {
        mView->ShowFound(place);
        if (!place) return;
        const QRect at = mView->PlaceOf(*place);
        mScroll->ensureVisible(at.center().x(), at.center().y(), at.width() / 2, at.height() / 2);
      },
      this);
  mFind->onClose = [this] { mView->setFocus(); };
  mView->onTextsChanged = [this] { mFind->Follow(mView->Texts()); };

  auto* inside = new QVBoxLayout(mFrame);
  inside->setContentsMargins(kFrame, kFrame, kFrame, kFrame);
  inside->addWidget(mScroll);
  ShowFrame(false);
  auto* middle = new QHBoxLayout;
  middle->addWidget(mFrame, 1);
  middle->addWidget(mKeys);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(6, 0, 6, 4);
  rows->setSpacing(4);
  rows->addWidget(mBanner);
  rows->addLayout(middle, 1);
  rows->addWidget(BuildMissing());
  rows->addWidget(mFind);
}

QWidget* PanelPage::BuildMissing() {
  mMissingBox = new QWidget(this);
  mMissing = new ElidedLabel(mMissingBox);
  mMissing->setObjectName("lblMissing");
  mMissing->setAccessibleDescription("Fonts and images that are missing");
  auto* import = new QPushButton(IconOf("cache"), "&Import from Controller...", mMissingBox);
  import->setObjectName("cmdImportFonts");
  Describe(*import, "Reads the fonts and images of the controller into a cache file, once");
  connect(import, &QPushButton::clicked, this, [this] { mOnCommand("ID_ImportCacheFromPLC"); });
  auto* row = new QHBoxLayout(mMissingBox);
  row->setContentsMargins({});
  row->addWidget(mMissing, 1);
  row->addWidget(import);
  mMissingBox->hide();
  return mMissingBox;
}

// The beat.

void PanelPage::Step() {
  const auto onKeys = mKeys->PressedNow();
  mHost->StepPanel(onKeys ? onKeys : mView->PressedNow());
  Follow();
  Schedule();
}

// An input waits for nothing but the exchange that is under way, behind which it is sent.
void PanelPage::StepNow() {
  mStep.start(0);
}

void PanelPage::Schedule() {
  const auto next = mHost->NextPanelStep();
  if (!next) return mStep.stop();
  mStep.start(std::chrono::ceil<std::chrono::milliseconds>(*next));
}

void PanelPage::Show(const HostState&) {
  if (auto* session = mHost->Panel()) session->Show(isVisible() && !window()->isMinimized());
  Follow();
  if (!mStep.isActive()) Schedule();
}

void PanelPage::Follow() {
  panel::PanelSession* session = mHost->Panel();
  mView->Follow(mHost->PanelResources());
  mKeys->Follow(session);
  const panel::PanelState state = session ? session->State() : panel::PanelState{};
  mBanner->Show(state, QString::fromStdString(mHost->State().panelNote));
  ShowFrame(state.mode == panel::PanelMode::Operate);
  const bool hasKeys = session && session->Panel() && !session->Panel()->keys.empty();
  const bool blinks = isVisible() && session && (session->HasBlinking() || hasKeys);
  if (blinks != mBlink.isActive()) blinks ? mBlink.start() : mBlink.stop();
  const auto missing = session ? session->MissingResources() : std::vector<panel::Drawing::Missing>{};
  mMissing->SetFullText(QString::fromStdString(MissingText(missing, mHost->PanelResources())));
  // Who operates has the screen stay where it is.
  const bool isFixed = session && state.mode != panel::PanelMode::View;
  if (!isFixed) mMissingBox->setVisible(!missing.empty());
}

void PanelPage::ShowFrame(bool isOperated) {
  if (mFrame->autoFillBackground() == isOperated) return;
  mFrame->setAutoFillBackground(isOperated);
  TakeColours();
  if (isOperated) mView->setFocus();  // its keys are the controller's now
}

void PanelPage::TakeColours() {
  QPalette colours;
  if (mFrame->autoFillBackground()) colours.setColor(QPalette::Window, PanelBanner::OperateColour());
  mFrame->setPalette(colours);
  QPalette inside = QApplication::palette();  // not that of the frame: a colour that nobody has set would be
  inside.setColor(QPalette::Window, inside.color(QPalette::Window));
  mScroll->setPalette(inside);
}

void PanelPage::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && mScroll) TakeColours();  // another theme
}

// How it is shown.

void PanelPage::SetScale(PanelScale scale) {
  mView->SetScale(scale);
}

void PanelPage::SetFullScreen(bool isFull) {
  mView->SetFullScreen(isFull);
  mView->setFocus();
}

void PanelPage::OpenFind() {
  mFind->Follow(mView->Texts());
  mFind->Open();
}

void PanelPage::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  mKeys->FitInto(width());
}

void PanelPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  mView->setFocus();
  StepNow();
}

void PanelPage::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (auto* session = mHost ? mHost->Panel() : nullptr) session->Show(false);
}

}  // namespace kv
