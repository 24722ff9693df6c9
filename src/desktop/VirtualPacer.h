#pragma once

#include <functional>
#include <map>
#include <utility>

#include "desktop/Pacer.h"
#include "desktop/WallClock.h"

namespace kv {

// The pacer of tests and benchmarks: time is a number that only Sleep moves, so hours run in microseconds. What happens
// "meanwhile" is told beforehand: actions at a moment, and hooks for the turns.
class VirtualPacer final : public Pacer, public WallClock {
 public:
  using Action = std::function<void()>;

  // Runs `action` once, when the time reaches `moment` in a Sleep; when it has been reached already, in the next Sleep,
  // Turn or DoEvents. Actions of one moment run in the order in which they were told. An action sees its own
  // moment as Now() and may itself sleep.
  void At(Instant moment, Action action) { mActions.emplace(moment, std::move(action)); }
  void After(Duration span, Action action) { At(mNow + span, std::move(action)); }

  // Run in every DoEvents and every Turn; one hook each, an empty one takes it away.
  void OnDoEvents(Action hook) { mOnDoEvents = std::move(hook); }
  void OnTurn(Action hook) { mOnTurn = std::move(hook); }

  // What LocalTime() is now; it goes on with Sleep. At first midnight of 1 January 2024.
  void SetLocalTime(std::chrono::local_seconds time);

  [[nodiscard]] int TurnCount() const { return mTurnCount; }

  [[nodiscard]] Instant Now() const override { return mNow; }
  void Sleep(Duration span) override;
  void DoEvents() override;
  void Turn() override;
  [[nodiscard]] bool StopRequested() const override { return mStop; }
  void RequestStop() override { mStop = true; }
  void ClearStop() override { mStop = false; }
  [[nodiscard]] std::chrono::local_time<Duration> LocalMoment() const override;
  [[nodiscard]] std::chrono::minutes UtcOffset() const override { return mUtcOffset; }
  void SetUtcOffset(std::chrono::minutes offset) { mUtcOffset = offset; }

 private:
  void RunActionsUntil(Instant moment);

  Instant mNow{};
  std::chrono::local_time<Duration> mLocalStart = std::chrono::local_days{std::chrono::year{2024} / 1 / 1};
  std::chrono::minutes mUtcOffset{60};
  std::multimap<Instant, Action> mActions;
  Action mOnDoEvents;
  Action mOnTurn;
  int mTurnCount = 0;
  bool mStop = false;
};

}  // namespace kv
