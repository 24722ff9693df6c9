#pragma once

#include <filesystem>
#include <string>

#include "apps/kvtele/Answer.h"
#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"

namespace kv::cli {

// Copies the controller into a new clone file. `segments` names the optional ones that it takes ("AP,OS"); empty: all.
[[nodiscard]] Outcome CreateClone(Environment& environment, const CommonOptions& common,
                                  const std::filesystem::path& file, const std::string& segments);

struct RestoreOrder {
  bool force = false;   // whatever speaks against the file is only told
  bool verify = false;  // afterwards; the answer is then that of the comparison
};

// Copies a clone file into the controller, when the user consents. Nothing is sent of a file that is damaged, or does
// not fit the controller, unless it is forced.
[[nodiscard]] Outcome RestoreClone(Environment& environment, const CommonOptions& common,
                                   const std::filesystem::path& file, const RestoreOrder& order);

}  // namespace kv::cli
