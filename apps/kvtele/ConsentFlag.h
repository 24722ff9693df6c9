#pragma once

#include <string>
#include <string_view>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "clone/clsDumpPLC.h"
#include "desktop/console/ConsolePrompts.h"

namespace kv::cli {

// The flag that answers one question beforehand. --yes does not, because it answers another one.
struct ConsentFlag {
  bool yes = false;
  std::string name;  // "--replace"
};

// The prompts of a command: answered from --yes and --password, else by the user.
[[nodiscard]] ConsolePrompts PromptsFor(Environment& environment, const CommonOptions& common);
// The prompts of one question that has a flag of its own.
[[nodiscard]] ConsolePrompts PromptsFor(Environment& environment, const ConsentFlag& consent);

// Asks a question whose consent cannot be taken back, and says why it does not go on. `doing` names what is refused.
[[nodiscard]] OrFailure<void> Confirm(Environment& environment, const ConsentFlag& consent, const std::string& question,
                                      const std::string& doing, std::string_view title = kClonerCaption);

[[nodiscard]] Failure NotConfirmedFailure(std::string doing, const std::string& flags);

}  // namespace kv::cli
