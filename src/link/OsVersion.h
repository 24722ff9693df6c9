#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "link/VersionInfo.h"

namespace kv {

// The O/S version of a controller of the colour family or a K230.
struct ColourOsVersion {
  int major = 0;
  int minor = 0;

  bool operator==(const ColourOsVersion&) const = default;

  // One number that grows with the version: 1.10 is 1010.
  [[nodiscard]] constexpr std::int64_t Number() const { return std::int64_t{1000} * major + minor; }
};

// From the version text that such a controller reports, for example "HW 1.0;BT 1.2;FL 2.0;O/S 1.10;": the fourth of the
// fields between ";", without its first four characters and the blanks around the rest, is major "." minor. What may
// follow a second "." is ignored. Nothing when it is not so.
[[nodiscard]] std::optional<ColourOsVersion> ParseColourOsVersion(std::string_view osVersion);

// The version text of all other controllers as a number: its digits without the points, so "4.60" is 460 and "2.9"
// is 29. Nothing when the rest is no number from 0 to 999999999.
[[nodiscard]] std::optional<int> ParsePlainOsVersion(std::string_view osVersion);

// What people read, UTF-8: the version as "1.10" or "4.60" whichever way it is reported, and the build as "19".
[[nodiscard]] std::string OsVersionText(const VersionInfo& version);
[[nodiscard]] std::string OsBuildText(const VersionInfo& version);

}  // namespace kv
