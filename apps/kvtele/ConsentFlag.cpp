#include "apps/kvtele/ConsentFlag.h"

namespace kv::cli {

ConsolePrompts PromptsFor(Environment& environment, const CommonOptions& common) {
  ConsoleAnswers answers;
  answers.yes = common.yes;
  answers.password = common.password;
  answers.passwordFlag = common.passwordFrom;
  return {std::move(answers), environment.err, environment.input};
}

ConsolePrompts PromptsFor(Environment& environment, const ConsentFlag& consent) {
  ConsoleAnswers answers;
  answers.yes = consent.yes;
  answers.yesFlag = consent.name;
  return {std::move(answers), environment.err, environment.input};
}

OrFailure<void> Confirm(Environment& environment, const ConsentFlag& consent, const std::string& question,
                        const std::string& doing, std::string_view title) {
  const auto answer = PromptsFor(environment, consent)
                          .Show({.text = question,
                                 .title = std::string(title),
                                 .icon = PromptIcon::Exclamation,
                                 .buttons = PromptButtons::YesNo,
                                 .canLose = true});
  if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing));
  if (answer != PromptAnswer::Yes) return std::unexpected(NotConfirmedFailure(doing, consent.name));
  return {};
}

Failure NotConfirmedFailure(std::string doing, const std::string& flags) {
  return {ExitCode::Failed,
          "notConfirmed",
          std::move(doing),
          "it was not confirmed",
          {},
          "answer with yes, or give " + flags};
}

}  // namespace kv::cli
