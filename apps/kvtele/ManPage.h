#pragma once

#include <string>

#include "apps/kvtele/ProgramFacts.h"

namespace kv::cli {

// The manual page of the program, in the language of man(7).
[[nodiscard]] std::string ManPage(const ProgramFacts& facts, const std::string& version);

}  // namespace kv::cli
