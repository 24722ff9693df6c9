#include "desktop/console/ConsolePacer.h"

#include <chrono>
#include <thread>

namespace kv {

Instant ConsolePacer::Now() const {
  return Instant{std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch())};
}

void ConsolePacer::Sleep(Duration span) {
  // Until a moment rather than for a span: the call sleeps on after a signal, and then knows how much is left.
  std::this_thread::sleep_until(std::chrono::steady_clock::now() + span);
}

void ConsolePacer::ClearStop() {
  mStop = false;
  StopSignal::Clear();
}

}  // namespace kv
