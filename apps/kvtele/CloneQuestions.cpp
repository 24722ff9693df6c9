#include "apps/kvtele/CloneQuestions.h"

#include <algorithm>

#include "clone/clsDumpPLC.h"

namespace kv::cli {

OrFailure<void> Confirm(Environment& environment, const ConsentFlag& consent, const std::string& question,
                        const std::string& doing) {
  const auto answer = PromptsFor(environment, consent)
                          .Show({.text = question,
                                 .title = std::string(kClonerCaption),
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

std::vector<std::string> SplitCodes(const std::string& codes) {
  std::vector<std::string> split;
  for (std::size_t at = 0; !codes.empty() && at <= codes.size();) {
    const std::size_t end = std::min(codes.find(',', at), codes.size());
    split.push_back(codes.substr(at, end - at));
    at = end + 1;
  }
  return split;
}

}  // namespace kv::cli
