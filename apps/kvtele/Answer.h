#pragma once

#include <expected>
#include <nlohmann/json.hpp>
#include <string>

#include "apps/kvtele/Failure.h"

namespace kv::cli {

// The result of a command, in both forms: text for the screen, ending with a line feed when there is any, and the one
// document of --json.
struct Answer {
  std::string text;
  nlohmann::ordered_json document;
};

using Outcome = std::expected<Answer, Failure>;

}  // namespace kv::cli
