#pragma once

#include <string>
#include <vector>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/Failure.h"
#include "apps/kvtele/Prompting.h"

namespace kv::cli {

// Asks a question whose consent cannot be taken back, and says why it does not go on. `doing` names what is refused.
[[nodiscard]] OrFailure<void> Confirm(Environment& environment, const ConsentFlag& consent, const std::string& question,
                                      const std::string& doing);

[[nodiscard]] Failure NotConfirmedFailure(std::string doing, const std::string& flags);

// "OP,AP": the texts between the commas.
[[nodiscard]] std::vector<std::string> SplitCodes(const std::string& codes);

}  // namespace kv::cli
