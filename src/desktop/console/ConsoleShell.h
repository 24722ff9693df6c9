#pragma once

#include "desktop/Shell.h"

namespace kv {

// The shell of programs without windows. A program is started by itself, anything else handed to the desktop's opener.
// On Linux the parameters are taken apart at blanks, and what is started stays a child of this process.
class ConsoleShell final : public Shell {
 public:
  [[nodiscard]] std::expected<void, std::string> Open(std::string_view verb, std::string_view file,
                                                      std::string_view parameters) override;
};

}  // namespace kv
