#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

#include "desktop/Pacer.h"

namespace kv {

// Where input goes while an operation waits: to `widget` and what is inside it; Escape, and closing a window, call
// `cancel`; all other input is thrown away, since the user sees that the program is busy. An open gate has no widget:
// all input is delivered, so what it leads to must bear that the operation is still under way.
struct InputGate {
  QPointer<QWidget> widget{};
  std::function<void()> cancel{};
  bool isOpen = false;
};

// The pacer of programs with windows: waits inside the event loop, so windows are painted and timers run. Needs the
// QApplication, on whose thread it is used.
//
// Without a gate, input that comes during Sleep and Turn stays in the system's queue for later. BusyState sets the
// gate.
class QtPacer final : public Pacer {
 public:
  QtPacer();
  ~QtPacer() override;
  QtPacer(const QtPacer&) = delete;
  QtPacer& operator=(const QtPacer&) = delete;

  [[nodiscard]] Instant Now() const override;
  void Sleep(Duration span) override;
  void DoEvents() override;
  void Turn() override;
  [[nodiscard]] bool StopRequested() const override { return mStop; }
  void RequestStop() override { mStop = true; }
  void ClearStop() override { mStop = false; }

  // Sets the gate and returns the one before, which is to be given back; one without a widget that is not open is none.
  InputGate ExchangeGate(InputGate gate);

 private:
  class Guard;

  std::unique_ptr<Guard> mGuard;
  bool mStop = false;
};

}  // namespace kv
