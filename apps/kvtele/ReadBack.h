#pragma once

#include <span>
#include <string>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/OperandArguments.h"

namespace kv::cli {

// Reads operands back that have just been written, in as many requests as that takes, and compares. The texts as they
// read now; the failure names the operands of the first request that are others.
[[nodiscard]] OrFailure<std::vector<std::string>> ReadBack(Environment& environment, ConnectedController& controller,
                                                           const Region& region, std::span<const std::string> written);

}  // namespace kv::cli
