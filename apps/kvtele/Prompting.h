#pragma once

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "desktop/console/ConsolePrompts.h"

namespace kv::cli {

// The prompts of a command: answered from --yes and --password, else by the user.
[[nodiscard]] inline ConsolePrompts PromptsFor(Environment& environment, const CommonOptions& common) {
  ConsoleAnswers answers;
  answers.yes = common.yes;
  answers.password = common.password;
  return {std::move(answers), environment.err, environment.input};
}

// The prompts of one question that --yes does not answer, because it answers another one.
struct ConsentFlag {
  bool yes = false;
  std::string name;  // "--replace"
};
[[nodiscard]] inline ConsolePrompts PromptsFor(Environment& environment, const ConsentFlag& consent) {
  ConsoleAnswers answers;
  answers.yes = consent.yes;
  answers.yesFlag = consent.name;
  return {std::move(answers), environment.err, environment.input};
}

}  // namespace kv::cli
