#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/VerbOutput.h"
#include "clone/CloneSegment.h"
#include "clone/SafeCreate.h"

// What `clone` does with a file and a controller, an action or two in each VerbClone*.cpp.
namespace kv::cli {

struct CreateOrder {
  SegmentBoxes segments;
  bool replace = false;         // a file that stands there may be replaced
  bool isDryRun = false;        // nothing is replaced: the question about that is only shown
  std::optional<bool> mayStop;  // whether a running program may be stopped; else the user is asked
  std::string comment;          // for the manifest
};

// What can be said about a create before the controller is touched; asks before a file is replaced.
[[nodiscard]] OrFailure<SafeCreate> CheckCreate(Environment& environment, const CommonOptions& common,
                                                const std::filesystem::path& file, const CreateOrder& order);

// Copies the controller into a new clone file.
[[nodiscard]] VerbResult CreateClone(Environment& environment, const CommonOptions& common,
                                     const std::filesystem::path& file, const CreateOrder& order);
// The same over a connection that is there, after CheckCreate.
[[nodiscard]] OrFailure<void> CreateFrom(Environment& environment, const CommonOptions& common,
                                         ConnectedController& controller, SafeCreate& safe,
                                         const std::filesystem::path& file, const CreateOrder& order);

struct RestoreOrder {
  bool force = false;                             // whatever speaks against the file is only told
  bool verify = false;                            // afterwards; the answer is then that of the comparison
  bool endLoad = false;                           // one that is under way in the controller, or was cut
  bool eraseEmpty = false;                        // segments of which the file has no line are erased, too
  bool unitFromController = false;                // the lines are sent for the controller's unit id
  std::optional<std::filesystem::path> backup{};  // what the controller holds before goes there
  CreateOrder backupOrder{};
};

// Copies a clone file into the controller, when the user consents. Nothing is sent of a file that is damaged, or does
// not fit the controller, unless it is forced.
[[nodiscard]] VerbResult RestoreClone(Environment& environment, const CommonOptions& common,
                                      const std::filesystem::path& file, const RestoreOrder& order);

// What a clone file holds and what is wrong with it; exit code BadFile with the whole report when something is.
[[nodiscard]] VerbResult ReportClone(Environment& environment, const std::filesystem::path& file);

// Two files, segment by segment; exit code Differs when they are not the same.
[[nodiscard]] VerbResult CompareClones(Environment& environment, const std::filesystem::path& first,
                                       const std::filesystem::path& second);
// A file and the controller, in the same way; segments with one of `codes` alone, unless it is empty.
[[nodiscard]] VerbResult CompareWithController(Environment& environment, const CommonOptions& common,
                                               const std::filesystem::path& file,
                                               const std::vector<std::string>& codes);
[[nodiscard]] VerbResult CompareWithController(Environment& environment, ConnectedController& controller,
                                               const std::filesystem::path& file,
                                               const std::vector<std::string>& codes);

}  // namespace kv::cli
