#pragma once

#include <string>

namespace kv {

// Version and build of an O/S or of system fonts, as files name them.
struct OsNumber {
  int version = 0;  // its digits without the point: 460 is 4.60; 0 to 999
  int build = 0;    // 0 to 99

  auto operator<=>(const OsNumber&) const = default;  // older is less
};

// "4.60"
[[nodiscard]] std::string VersionText(const OsNumber& number);
// "4.60 (B19)", as Aurex controllers report it.
[[nodiscard]] std::string NumberText(const OsNumber& number);

}  // namespace kv
