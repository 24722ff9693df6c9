#pragma once

#include <optional>
#include <string>

#include "KvCmDrv1/LinkSettings.h"

namespace kv {

// The driver's dialogs, as the program with windows provides them: modal, but for the trace.
class DriverDialogs {
 public:
  virtual ~DriverDialogs() = default;

  // What the user confirmed, every value within its range; nothing after Cancel. `caller` names the window behind.
  [[nodiscard]] virtual std::optional<LinkSettings> EditLink(const LinkSettings& current,
                                                             const std::string& caller) = 0;
  // The same for the modem: its own settings, and the port that it is on.
  [[nodiscard]] virtual std::optional<LinkSettings> EditModem(const LinkSettings& current,
                                                              const std::string& caller) = 0;
  // Brings the trace to the front.
  virtual void ShowTrace() = 0;
};

}  // namespace kv
