#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>

#include "desktop/ui/QtPacer.h"

namespace kv {

class BusyOverlay;

// Shows that a window waits for an operation: at once by the pointer, after a third of a second by an overlay over the
// window with a text and a Cancel button. Cancel, Escape and closing the window become the pacer's stop request,
// which the operation's StopScope takes back. States may be nested; the innermost is seen. The window and the pacer
// outlive it.
class BusyState {
 public:
  BusyState(QtPacer& pacer, QWidget& window, const QString& text);
  ~BusyState();
  BusyState(const BusyState&) = delete;
  BusyState& operator=(const BusyState&) = delete;

  void SetText(const QString& text);

 private:
  friend class BusyPause;
  void Pause();
  void Resume();
  void ShowOverlay();
  void Cancel();

  QtPacer& mPacer;
  QPointer<QWidget> mWindow;
  QPointer<BusyOverlay> mOverlay;  // a child of the window
  QPointer<QWidget> mFocusBefore;
  InputGate mGateBefore;
  bool mHasGate = false;
  bool mIsPaused = false;
  bool mIsDue = false;  // the overlay is to be seen, or would be if there were no pause
  QTimer mDelay;
};

// While a box asks the user something in the middle of an operation: no window is busy, and what is typed goes to the
// box. The overlays come back when it goes.
class BusyPause {
 public:
  BusyPause();
  ~BusyPause();
  BusyPause(const BusyPause&) = delete;
  BusyPause& operator=(const BusyPause&) = delete;
};

}  // namespace kv
