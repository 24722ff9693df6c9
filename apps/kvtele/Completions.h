#pragma once

#include <string>

#include "apps/kvtele/ProgramFacts.h"

namespace kv::cli {

// Scripts that let a shell complete verbs, options and their values; each is the whole file that the shell loads.
[[nodiscard]] std::string BashCompletion(const ProgramFacts& facts);
[[nodiscard]] std::string ZshCompletion(const ProgramFacts& facts);
[[nodiscard]] std::string FishCompletion(const ProgramFacts& facts);

}  // namespace kv::cli
