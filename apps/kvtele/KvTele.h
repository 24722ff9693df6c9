#pragma once

#include <string>
#include <vector>

#include "apps/kvtele/Environment.h"
#include "apps/kvtele/Failure.h"

namespace kv::cli {

// The whole program but for its platform edge: understands `arguments` (UTF-8, without the program's name), runs the
// command and writes its result. Data goes to `environment.out`, in one piece when the command has ended, or line by
// line where it runs on; messages go to `environment.err`.
[[nodiscard]] ExitCode RunKvTele(const std::vector<std::string>& arguments, Environment& environment);

}  // namespace kv::cli
