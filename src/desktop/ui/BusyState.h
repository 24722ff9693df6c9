#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>

#include "desktop/ui/QtPacer.h"

namespace kv {

class BusyOverlay;

// Shows that a window waits for an operation: at once by the pointer, after a third of a second by a veil over the
// window with a text and a Cancel button. Cancel, Escape and closing the window become the pacer's stop request; the
// first state clears an old one. States may be nested; the innermost is seen. The window and the pacer outlive it.
class BusyState {
 public:
  BusyState(QtPacer& pacer, QWidget& window, const QString& text);
  ~BusyState();
  BusyState(const BusyState&) = delete;
  BusyState& operator=(const BusyState&) = delete;

  void SetText(const QString& text);

 private:
  void ShowOverlay();
  void Cancel();

  QtPacer& mPacer;
  QPointer<QWidget> mWindow;
  QPointer<BusyOverlay> mOverlay;  // a child of the window
  QPointer<QWidget> mFocusBefore;
  InputGate mGateBefore;
  bool mHasGate = false;
  QTimer mDelay;
};

}  // namespace kv
