#include "desktop/ui/BusyState.h"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <ranges>
#include <utility>
#include <vector>

namespace kv {

namespace {

// What ends sooner ends without a flicker.
constexpr std::chrono::milliseconds kDelay{300};
constexpr int kOverlayAlpha = 150;  // opacity, of 255: the window below stays readable
constexpr int kWide = 280;          // the panel, where the window is not narrower

// Of the one user-interface thread.
std::vector<BusyState*> gStates;  // the innermost last
int gPauses = 0;

}  // namespace

// The overlay, and on it the panel. It covers its parent and follows its size.
class BusyOverlay final : public QWidget {
 public:
  BusyOverlay(QWidget& window, const QString& text) : QWidget(&window) {
    setObjectName("busyOverlay");
    setAccessibleName("Busy");
    auto* panel = new QFrame(this);
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setAutoFillBackground(true);
    panel->setMinimumWidth(std::min(kWide, window.width()));
    auto* lines = new QVBoxLayout(panel);
    lines->addWidget(MakeLabel(text));
    lines->addWidget(MakeProgress());
    lines->addWidget(MakeCancel(), 0, Qt::AlignRight);
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins({});
    page->addWidget(panel, 0, Qt::AlignCenter);
    setGeometry(window.rect());
    window.installEventFilter(this);
  }

  std::function<void()> onCancel;

  void SetText(const QString& text) { mLabel->setText(text); }
  void ShowStopping() { mCancel->setText("Stopping..."); }
  void TakeFocus() { mCancel->setFocus(); }

 protected:
  bool eventFilter(QObject* window, QEvent* event) override {
    if (event->type() == QEvent::Resize) setGeometry(static_cast<QWidget*>(window)->rect());
    return false;
  }

  void paintEvent(QPaintEvent* event) override {
    QColor overlay = palette().color(QPalette::Window);
    overlay.setAlpha(kOverlayAlpha);
    QPainter(this).fillRect(event->rect(), overlay);
  }

  bool focusNextPrevChild(bool) override { return true; }  // the Tab key stays here

  void keyPressEvent(
      QKeyEvent* event) override {  // Enter is for the button that has the focus, never for the window below
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) mCancel->click();
    event->accept();
  }

 private:
  QLabel* MakeLabel(const QString& text) {
    mLabel = new QLabel(text);
    mLabel->setObjectName("lblBusy");
    mLabel->setTextFormat(Qt::PlainText);
    mLabel->setWordWrap(true);
    return mLabel;
  }

  QProgressBar* MakeProgress() {
    auto* progress = new QProgressBar;
    progress->setObjectName("prgBusy");
    progress->setAccessibleName("Busy");
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    return progress;
  }

  QPushButton* MakeCancel() {
    mCancel = new QPushButton("Cancel");
    mCancel->setObjectName("cmdCancelBusy");
    mCancel->setAutoDefault(false);  // a dialog's own default button would not get its place back
    mCancel->setToolTip("Ends what is under way (Esc)");
    QObject::connect(mCancel, &QPushButton::clicked, this, [this] {
      if (onCancel) onCancel();
    });
    return mCancel;
  }

  QLabel* mLabel = nullptr;
  QPushButton* mCancel = nullptr;
};

BusyState::BusyState(QtPacer& pacer, QWidget& window, const QString& text) : mPacer(pacer), mWindow(&window) {
  gStates.push_back(this);
  QApplication::setOverrideCursor(Qt::BusyCursor);
  mOverlay = new BusyOverlay(window, text);
  mOverlay->hide();
  mOverlay->onCancel = [this] { Cancel(); };
  QObject::connect(&mDelay, &QTimer::timeout, mOverlay, [this] { ShowOverlay(); });
  mDelay.setSingleShot(true);
  mDelay.start(kDelay);
}

BusyState::~BusyState() {
  std::erase(gStates, this);
  if (mHasGate) mPacer.ExchangeGate(std::move(mGateBefore));
  delete mOverlay;
  if (mFocusBefore) mFocusBefore->setFocus();
  QApplication::restoreOverrideCursor();
}

void BusyState::SetText(const QString& text) {
  if (mOverlay) mOverlay->SetText(text);
}

void BusyState::ShowOverlay() {
  mIsDue = true;
  if (mIsPaused || mHasGate || !mOverlay) return;
  mFocusBefore = mWindow->focusWidget();
  mOverlay->show();
  mOverlay->raise();
  mOverlay->TakeFocus();
  mGateBefore = mPacer.ExchangeGate({mOverlay.data(), [this] { Cancel(); }});
  mHasGate = true;
}

void BusyState::Pause() {
  mIsPaused = true;
  if (!mHasGate) return;
  mPacer.ExchangeGate(std::move(mGateBefore));
  mHasGate = false;
  if (mOverlay) mOverlay->hide();
  if (mFocusBefore) mFocusBefore->setFocus();
}

void BusyState::Resume() {
  mIsPaused = false;
  if (mIsDue) ShowOverlay();
}

BusyPause::BusyPause() {
  if (gPauses++ > 0) return;
  for (BusyState* state : std::views::reverse(gStates)) state->Pause();
}

BusyPause::~BusyPause() {
  if (--gPauses > 0) return;
  for (BusyState* state : gStates) state->Resume();
}

void BusyState::Cancel() {
  mPacer.RequestStop();
  if (mOverlay) mOverlay->ShowStopping();
}

}  // namespace kv
