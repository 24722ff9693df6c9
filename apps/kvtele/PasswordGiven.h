#pragma once

#include <expected>
#include <functional>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Connection.h"
#include "apps/kvtele/Environment.h"

namespace kv::cli {

// Runs `write` with the password that was given; where none was, and the controller wants one (kPasswordNeeded), a user
// at a terminal is asked and `write` runs again from its beginning.
[[nodiscard]] std::expected<void, Failure> WithPassword(Environment& environment, const CommonOptions& common,
                                                        Connection& connection,
                                                        const std::function<std::expected<void, Failure>()>& write);

}  // namespace kv::cli
