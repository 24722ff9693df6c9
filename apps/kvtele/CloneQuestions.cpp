#include "apps/kvtele/CloneQuestions.h"

#include <algorithm>

#include "clone/clsDumpPLC.h"

namespace kv::cli {

std::expected<void, Failure> Confirm(Environment& environment, const ConsentFlag& consent, const std::string& question,
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

std::expected<void, Failure> GiveAccess(Environment& environment, const CommonOptions& common, Connection& controller) {
  Channel& link = controller.Link();
  const std::uint8_t unit = controller.Unit();
  if (common.password) {
    if (link.GiveAccess(*common.password, unit)) return {};
    return std::unexpected(controller.LastFailure());
  }
  if (link.GiveAccess("", unit)) return {};  // it has no password
  if (link.LastError().code != LinkErrorCode::Refused) return std::unexpected(controller.LastFailure());
  if (!environment.input.IsInteractive()) return {};  // what needs the password will be refused, and say so
  const auto password = PromptsFor(environment, common)
                            .Ask({.text = "The controller's password:",
                                  .title = std::string(kClonerCaption),
                                  .initial = "",
                                  .secret = true});
  if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure("asking for the password"));
  if (password && link.GiveAccess(*password, unit)) return {};
  if (password) return std::unexpected(controller.LastFailure());
  return std::unexpected(NotConfirmedFailure("asking for the password", "--password"));
}

}  // namespace kv::cli
