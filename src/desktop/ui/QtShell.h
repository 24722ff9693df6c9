#pragma once

#include "desktop/Shell.h"

namespace kv {

// The desktop's shell: a program is started in its own folder and outlives this one; anything else is handed to the
// program that the desktop has for it.
class QtShell final : public Shell {
 public:
  [[nodiscard]] std::expected<void, std::string> Open(std::string_view verb, std::string_view file,
                                                      std::string_view parameters) override;
};

}  // namespace kv
