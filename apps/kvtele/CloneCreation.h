#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/VerbOutput.h"
#include "clone/CloneSegment.h"
#include "clone/SafeCreate.h"

namespace kv::cli {

struct CreateOrder {
  SegmentBoxes segments;
  bool replace = false;         // a file that stands there may be replaced
  std::optional<bool> mayStop;  // whether a running program may be stopped; else the user is asked
  std::string comment;          // for the manifest
};

// "AP,OS" names the optional segments that a clone takes; empty: all.
[[nodiscard]] OrFailure<SegmentBoxes> ParseSegments(const std::string& codes);

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

}  // namespace kv::cli
