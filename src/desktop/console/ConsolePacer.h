#pragma once

#include "desktop/Pacer.h"
#include "desktop/console/StopSignal.h"

namespace kv {

// Time of the machine's steady clock, for programs without windows. Ctrl-C (and the request to terminate) becomes the
// stop request; a second one before that is taken back ends the process at once with exit code 130. At most one at a
// time.
class ConsolePacer final : public Pacer {
 public:
  ConsolePacer() = default;
  ConsolePacer(const ConsolePacer&) = delete;
  ConsolePacer& operator=(const ConsolePacer&) = delete;

  [[nodiscard]] Instant Now() const override;
  void Sleep(Duration span) override;  // the whole span, whatever signals come
  void DoEvents() override {}          // there are no windows, and the stop request is noticed without a turn
  void Turn() override {}
  [[nodiscard]] bool StopRequested() const override { return mStop || StopSignal::Raised(); }
  void RequestStop() override { mStop = true; }
  void ClearStop() override;

 private:
  StopSignal mSignal;
  bool mStop = false;
};

}  // namespace kv
