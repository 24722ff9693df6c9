#pragma once

#include <filesystem>
#include <optional>

#include "apps/kvtele/CloneCreation.h"
#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/VerbOutput.h"

namespace kv::cli {

struct RestoreOrder {
  bool force = false;                             // whatever speaks against the file is only told
  bool verify = false;                            // afterwards; the answer is then that of the comparison
  bool eraseEmpty = false;                        // segments of which the file has no line are erased, too
  bool unitFromController = false;                // the lines are sent for the controller's unit id
  std::optional<std::filesystem::path> backup{};  // what the controller holds before goes there
  CreateOrder backupOrder{};
};

// Copies a clone file into the controller, when the user consents. Nothing is sent of a file that is damaged, or does
// not fit the controller, unless it is forced.
[[nodiscard]] VerbResult RestoreClone(Environment& environment, const CommonOptions& common,
                                      const std::filesystem::path& file, const RestoreOrder& order);

}  // namespace kv::cli
