#pragma once

#include "base/Time.h"

namespace kv {

// Time and turns for engines that wait on the one user-interface thread. An engine never sleeps or reads a clock except
// through its pacer: the Qt pacer keeps the window painting, the console pacer listens for Ctrl-C, the virtual pacer
// of the tests only moves a number.
class Pacer {
 public:
  virtual ~Pacer() = default;

  [[nodiscard]] virtual Instant Now() const = 0;

  // Lets `span` pass. Windows are painted meanwhile, user input is kept for later.
  virtual void Sleep(Duration span) = 0;

  // Delivers everything that is pending, user input included. Engines call it only where they can bear to be
  // re-entered.
  virtual void DoEvents() = 0;

  // A short turn for the surroundings in the middle of a wait: windows are painted, the stop request is noticed; no
  // other user input is delivered. Returns at once when nothing is pending.
  virtual void Turn() = 0;

  // Whether the user has asked the running operation to end (Ctrl-C, the Cancel button). Stays true until the
  // operation's StopScope ends.
  [[nodiscard]] virtual bool StopRequested() const = 0;
  virtual void RequestStop() = 0;

 private:
  friend class StopScope;
  virtual void ClearStop() = 0;
};

}  // namespace kv
