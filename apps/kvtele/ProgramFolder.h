#pragma once

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "base/PathText.h"
#include "base/ProgramPaths.h"

namespace kv::cli {

// Below the folder that --home names, else below the program's own.
[[nodiscard]] inline ProgramPaths PathsOf(const Environment& environment, const CommonOptions& common) {
  return ProgramPaths(common.home.empty() ? environment.home : PathFromUtf8(common.home));
}

}  // namespace kv::cli
