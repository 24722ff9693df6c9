#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "clone/CloneInfo.h"
#include "clone/CloneManifest.h"

namespace kv {

enum class ManifestFit {
  Missing,     // there is none: a lost line of flash would not show
  Unreadable,  // what is there is no manifest
  Other,       // it describes another file: this one was changed, or is a later one of this name; or it was changed
  Fits,        // the file is byte for byte what was written when the clone was made
};

// What the manifest beside a clone file says of it.
struct ManifestReport {
  ManifestFit fit = ManifestFit::Missing;
  std::string text;                       // a sentence or two for a person, and only what is known
  std::optional<CloneManifest> manifest;  // when it fits: of another file's nothing is taken
};

// Holds a clone file that has been inspected against the manifest beside it. The digest decides, never the name.
[[nodiscard]] ManifestReport CheckManifest(const std::filesystem::path& file, const CloneInfo& info,
                                           const CloneWork& work = {});

// What can be said of a file in which the inspection found no damage: whole only by its manifest.
[[nodiscard]] std::string WholenessText(const CloneInfo& info, const ManifestReport& report);

}  // namespace kv
