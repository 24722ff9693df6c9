#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "apps/kvtele/Failure.h"

namespace kv::cli {

// The result of a command, in both forms: text for the screen, ending with a line feed when there is any, and the one
// document of --json. A comparison that found a difference is a result too, with an exit code of its own.
struct VerbOutput {
  std::string text{};
  nlohmann::ordered_json document{};
  ExitCode exit = ExitCode::Done;
};

// How a command ends.
using VerbResult = OrFailure<VerbOutput>;

}  // namespace kv::cli
