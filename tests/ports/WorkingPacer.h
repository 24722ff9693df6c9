#pragma once

#include <algorithm>
#include <functional>

#include "desktop/console/ConsolePacer.h"

namespace kv {

// A console pacer that does what the other side is to do at each of its turns. Its clock counts turns, so that no limit
// runs out because the machine is busy.
class WorkingPacer final : public Pacer {
 public:
  std::function<void(Instant now)> onTurn;
  Instant now{};

  [[nodiscard]] Instant Now() const override { return now; }
  void Sleep(Duration span) override {
    mPacer.Sleep(std::min<Duration>(span, std::chrono::milliseconds(1)));
    now += span;
    Turn();
  }
  void DoEvents() override { Turn(); }
  void Turn() override {
    now += std::chrono::milliseconds(5);  // as long as a port waits between two turns
    mPacer.Turn();
    if (onTurn) onTurn(now);
  }
  [[nodiscard]] bool StopRequested() const override { return mPacer.StopRequested(); }
  void RequestStop() override { mPacer.RequestStop(); }
  void ClearStop() override { mPacer.ClearStop(); }

 private:
  ConsolePacer mPacer;
};

}  // namespace kv
