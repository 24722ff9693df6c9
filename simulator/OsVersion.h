#pragma once

#include <string>
#include <string_view>

#include "simulator/ModelTable.h"

namespace sim {

// The O/S that a controller runs.
struct OsVersion {
  std::string number;  // digits with points: "4.60", "1.10"
  int build = 0;       // 0 to 99

  bool operator==(const OsVersion&) const = default;
};

// Whether `number` can be told in the model's style: 1 to 4 groups of 1 to 3 digits joined by points, in the style of
// fields exactly 2 groups (major and minor).
[[nodiscard]] bool IsOsNumber(const Model& model, std::string_view number);

// The third and fourth field of the identification.
[[nodiscard]] std::string ReportedVersion(const Model& model, const OsVersion& os);
[[nodiscard]] std::string ReportedBuild(const Model& model, const OsVersion& os);

// Its digits read without their points: 460 for "4.60".
[[nodiscard]] int VersionNumber(const OsVersion& os);

// Whether the O/S is one of the older ones with fewer operands: in the style of fields one below 1.1 (major * 1000 +
// minor below 1001), else one whose digits read without their points are below 300. `number` must be a good one.
[[nodiscard]] bool HasOlderOperandCounts(const Model& model, std::string_view number);

}  // namespace sim
