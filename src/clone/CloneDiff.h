#pragma once

#include <expected>
#include <filesystem>

#include "clone/CloneCompare.h"
#include "clone/CloneOutcome.h"

namespace kv {

// Compares two clone files, segment by segment. Unit, date and version texts do not count. A damaged file is refused.
[[nodiscard]] std::expected<CloneComparison, CloneOutcome> DiffClones(const std::filesystem::path& first,
                                                                      const std::filesystem::path& second,
                                                                      const CloneWork& work = {});

}  // namespace kv
