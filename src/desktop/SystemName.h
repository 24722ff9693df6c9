#pragma once

#include <string>

namespace kv {

// The operating system, for reports: "Debian GNU/Linux 12 (bookworm), Linux 6.1.0 x86_64".
[[nodiscard]] std::string SystemName();

}  // namespace kv
