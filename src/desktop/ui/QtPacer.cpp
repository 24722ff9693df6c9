#include "desktop/ui/QtPacer.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <utility>

#include "base/ScopeGuard.h"

namespace kv {

namespace {

// The largest span of one timer; longer sleeps take several.
constexpr Duration kLongestTimer = std::chrono::hours(1);

bool IsUserInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}

bool IsEscape(const QEvent& event) {
  return event.type() == QEvent::KeyPress && static_cast<const QKeyEvent&>(event).key() == Qt::Key_Escape;
}

bool IsCloseByUser(const QEvent& event) {
  return event.type() == QEvent::Close && event.spontaneous();
}

}  // namespace

// Watches all events of the program while a gate is set.
class QtPacer::Guard final : public QObject {
 public:
  enum class State { Idle, Waiting, Delivering };

  InputGate gate;
  State state = State::Idle;

  // Pumps the event loop once in `pumping`; handlers that run meanwhile may pump again.
  void Pump(State pumping, QEventLoop::ProcessEventsFlags flags) {
    const ScopeGuard restore([this, before = std::exchange(state, pumping)] { state = before; });
    if (pumping == State::Waiting && !gate.widget && !gate.isOpen) flags |= QEventLoop::ExcludeUserInputEvents;
    QCoreApplication::processEvents(flags);
  }

  // To be called after a wait: one of the toolkit's dispatchers looks again at input that it had to keep only when it
  // is woken.
  static void RecallKeptInput() { QAbstractEventDispatcher::instance()->wakeUp(); }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (state == State::Idle || !gate.widget || IsOtherModalWindowOpen()) return false;
    if (IsEscape(*event) || IsCloseByUser(*event)) return Cancel(*event);
    if (state == State::Delivering || !IsUserInput(event->type()) || MayReceive(*receiver, *event)) return false;
    // An accepted override keeps the key from being looked up among the shortcuts.
    event->setAccepted(event->type() == QEvent::ShortcutOverride);
    return true;
  }

 private:
  // A question that was opened by the operation itself, or by a timer, must be answered.
  [[nodiscard]] bool IsOtherModalWindowOpen() const {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal && modal != gate.widget->window();
  }

  bool Cancel(QEvent& event) {
    event.setAccepted(event.type() != QEvent::Close);
    if (gate.cancel) gate.cancel();
    return true;
  }

  [[nodiscard]] bool MayReceive(const QObject& receiver, const QEvent& event) const {
    if (event.type() == QEvent::ShortcutOverride || event.type() == QEvent::Shortcut) return false;
    // A window hands its input on to a widget, and that is then seen here again.
    if (receiver.isWindowType()) return &receiver == gate.widget->window()->windowHandle();
    return &receiver == gate.widget ||
           (receiver.isWidgetType() && gate.widget->isAncestorOf(static_cast<const QWidget*>(&receiver)));
  }
};

QtPacer::QtPacer() : mGuard(std::make_unique<Guard>()) {}

QtPacer::~QtPacer() = default;

Instant QtPacer::Now() const {
  return Instant{std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch())};
}

void QtPacer::Sleep(Duration span) {
  const Instant end = Now() + span;
  mGuard->Pump(Guard::State::Waiting, QEventLoop::AllEvents);
  QTimer alarm;
  alarm.setTimerType(Qt::PreciseTimer);
  alarm.setSingleShot(true);
  for (Duration left = end - Now(); left > Duration::zero(); left = end - Now()) {
    alarm.start(std::chrono::ceil<std::chrono::milliseconds>(std::min(left, kLongestTimer)));
    mGuard->Pump(Guard::State::Waiting, QEventLoop::WaitForMoreEvents);
  }
  Guard::RecallKeptInput();
}

void QtPacer::DoEvents() {
  mGuard->Pump(Guard::State::Delivering, QEventLoop::AllEvents);
}

void QtPacer::Turn() {
  mGuard->Pump(Guard::State::Waiting, QEventLoop::AllEvents);
  Guard::RecallKeptInput();
}

InputGate QtPacer::ExchangeGate(InputGate gate) {
  InputGate before = std::exchange(mGuard->gate, std::move(gate));
  qApp->removeEventFilter(mGuard.get());
  if (mGuard->gate.widget) qApp->installEventFilter(mGuard.get());
  return before;
}

}  // namespace kv
