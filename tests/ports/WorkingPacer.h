#pragma once

#include <algorithm>
#include <functional>

#include "desktop/console/ConsolePacer.h"

namespace kv {

// A console pacer that does what the other side is to do at each of its turns.
class WorkingPacer final : public Pacer {
 public:
  std::function<void(Instant now)> onTurn;
  Duration ahead{};  // of the real time

  [[nodiscard]] Instant Now() const override { return mPacer.Now() + ahead; }
  void Sleep(Duration span) override {
    mPacer.Sleep(std::min<Duration>(span, std::chrono::milliseconds(1)));
    Turn();
  }
  void DoEvents() override { Turn(); }
  void Turn() override {
    mPacer.Turn();
    if (onTurn) onTurn(Now());
  }
  [[nodiscard]] bool StopRequested() const override { return mPacer.StopRequested(); }
  void RequestStop() override { mPacer.RequestStop(); }
  void ClearStop() override { mPacer.ClearStop(); }

 private:
  ConsolePacer mPacer;
};

}  // namespace kv
