#pragma once

#include <expected>
#include <string>

#include "KvTele2/HostState.h"
#include "KvTele2/Journal.h"

namespace kv {

// What the host asks of its main window.
class HostView {
 public:
  enum class Wait {
    Asked,   // the user waits for it: shown, and other input is refused
    Quiet,   // goes on behind the user's back: takes nothing from him; the host is told when it lasts (NoteSilence)
    Screen,  // the same of the panel: its user presses at any time, so that input is delivered from the first moment
  };

  virtual ~HostView() = default;

  // Shows the state and the log as they now are.
  virtual void Show(const HostState& state, const Journal& journal) = 0;
  // Shows the window and serves the user until Quit is called.
  virtual void Run() = 0;
  virtual void Quit() = 0;
  // A wait for the controller begins or ends. The user may end it with Escape or a Cancel button: the pacer's stop
  // request. Waits are not nested.
  virtual void BeginWait(Wait wait, const std::string& what) = 0;
  virtual void EndWait() = 0;
  // Saves the panel's screen as it is shown, dot for dot, as a PNG file. The error is a sentence for the user.
  [[nodiscard]] virtual std::expected<void, std::string> SavePicture(const std::string& path) = 0;
};

}  // namespace kv
