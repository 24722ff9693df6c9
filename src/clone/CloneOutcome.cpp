#include "clone/CloneOutcome.h"

#include "base/Hex.h"
#include "base/PathText.h"
#include "link/ControllerErrorText.h"

namespace kv {

CloneOutcome CloneOutcome::OfLink(const LinkError& error) {
  CloneOutcome outcome = Failed(CloneCause::Link, error.Text());
  outcome.link = error;
  if (error.code == LinkErrorCode::Stopped) {
    outcome.end = CloneEnd::Stopped;
    outcome.cause = CloneCause::Stop;
  }
  return outcome;
}

CloneOutcome CloneOutcome::OfStop() {
  return {CloneEnd::Stopped, CloneCause::Stop, "Stopped by the user.", {}};
}

Operation RestoreOperation(const std::filesystem::path& file) {
  return {.tool = "Cloner", .what = "restore the clone " + Utf8FromPath(file)};
}

ChangeEnd ChangeEndOf(const CloneOutcome& outcome) {
  if (outcome.end == CloneEnd::Done) return {};
  const ChangeResult result = outcome.end == CloneEnd::Stopped ? ChangeResult::Stopped : ChangeResult::Failed;
  return {result, outcome.reason.substr(0, outcome.reason.find('\n'))};
}

std::optional<LinkError> RefusalIn(std::string_view reply) {
  constexpr std::string_view kError = "ERROR";
  const std::size_t at = reply.find(kError);
  if (at == std::string_view::npos) return std::nullopt;
  const int code = HexPairToByte(reply.substr(at + kError.size(), 2)).value_or(0);
  const ControllerErrorMeaning meaning = ControllerErrorText(code);
  LinkError error;
  error.code = LinkErrorCode::Refused;
  error.controllerCode = code;
  error.happened = RefusedText(meaning, code);
  error.cure = meaning.cure;
  return error;
}

}  // namespace kv
