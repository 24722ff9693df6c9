#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "KvCmDrv1/LinkSettings.h"
#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Failure.h"

namespace kv::cli {

// The link that the options ask for. --link starts from the settings of a new installation, so that a command means the
// same on every machine; without it they are those of the session. The other options go on top of either.
struct LinkChoice {
  LinkSettings settings;
  std::filesystem::path sessionFolder;  // need not exist when --link is given
  std::vector<std::string> complaints;  // values in the session's settings that could not be used
};

[[nodiscard]] OrFailure<LinkChoice> ChooseLink(const CommonOptions& common);

// The model that the options name without any controller: --model, or that of a simulated link; empty when the
// controller must be asked.
[[nodiscard]] std::string ModelKnownBeforehand(const CommonOptions& common);

}  // namespace kv::cli
