#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace kv {

// The name that is suggested for a new clone file: of what it is and when it was made, to the second, so that it never
// is that of an older clone: "K220-22-R1-4711-2026-11-21-103000.kdf". Without a serial number where that is empty; the
// model may be, too. UTF-8.
[[nodiscard]] std::string CloneFileName(std::string_view model, std::string_view serialNumber,
                                        std::chrono::local_seconds now);

}  // namespace kv
