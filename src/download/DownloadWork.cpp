#include "download/DownloadWork.h"

#include <optional>
#include <utility>

#include "clone/CloneOutcome.h"
#include "clone/ProgramState.h"
#include "desktop/StopScope.h"
#include "download/ProjectDownload.h"
#include "download/ReadDownload.h"
#include "link/ControllerErrorText.h"

namespace kv {
namespace {

constexpr std::size_t kLongestFile = 64U << 20U;  // whatever is larger can be read, and is refused as what it is

std::string TitleOr(std::string_view title) {
  return std::string(title.empty() ? kDownloaderCaption : title);
}

}  // namespace

void DownloadWork::EndOperation(const DownloadOutcome& outcome) {
  if (!mOperation) return;
  const std::string reason = outcome.reason.substr(0, outcome.reason.find('\n'));
  if (outcome.end == DownloadEnd::Done) {
    mOperation->End({ChangeResult::Done, reason});
  } else if (outcome.left == ControllerLeft::Untouched) {
    mOperation->End({ChangeResult::Refused, reason});
  } else {
    mOperation->End({outcome.end == DownloadEnd::Stopped ? ChangeResult::Stopped : ChangeResult::Failed, reason});
  }
}

void DownloadWork::Tell(std::string_view text, PromptIcon icon, std::string_view title) {
  prompts.Show({.text = std::string(text), .title = TitleOr(title), .icon = icon});
}

DownloadWork::Step DownloadWork::TellOfStopMode() {
  const MessageBox box{.text = "The controller is about to enter Stop mode.",
                       .title = TitleOr({}),
                       .icon = PromptIcon::Exclamation,
                       .canLose = true};
  if (prompts.Show(box) == PromptAnswer::Ok) return {};
  auto stopped = Stop();
  stopped.error().reason = "The box about the Stop mode was closed without OK.";
  return stopped;
}

bool DownloadWork::Asks(DownloadQuestion question, const std::string& text, PromptIcon icon, std::string_view title) {
  return PromptsOf(question).Show(
             {.text = text, .title = TitleOr(title), .icon = icon, .buttons = PromptButtons::YesNo, .canLose = true}) ==
         PromptAnswer::Yes;
}

void DownloadWork::AnnounceClone() {
  window.SetStatus("Cloning the controller ...");
  window.Note(
      "Before the download a clone is made of what the controller holds. The next questions are about the clone.");
}

DownloadWork::Step DownloadWork::ShowCloneQuestions(const std::string& controller, char state) {
  AnnounceClone();
  if (ShowCreateQuestions(prompts, controller, state)) return {};
  auto refused = Refuse("No password was given for the clone. " + std::string(kAnyPassword));
  refused.error().cause = DownloadCause::Backup;
  return refused;
}

std::unexpected<DownloadOutcome> DownloadWork::Fail(DownloadCause cause, std::string reason) const {
  return std::unexpected(
      DownloadOutcome{.end = DownloadEnd::Failed, .cause = cause, .reason = std::move(reason), .left = left});
}

std::unexpected<DownloadOutcome> DownloadWork::Refuse(std::string reason) const {
  return std::unexpected(DownloadOutcome{
      .end = DownloadEnd::Refused, .cause = DownloadCause::NotFit, .reason = std::move(reason), .left = left});
}

std::unexpected<DownloadOutcome> DownloadWork::Decline(DownloadCause cause, std::string reason) const {
  if (pacer.StopRequested()) return Stop();
  return std::unexpected(
      DownloadOutcome{.end = DownloadEnd::Declined, .cause = cause, .reason = std::move(reason), .left = left});
}

std::unexpected<DownloadOutcome> DownloadWork::FailOf(const LinkError& error, DownloadCause cause) const {
  auto failed = Fail(cause, error.Text());
  failed.error().link = error;
  if (error.code == LinkErrorCode::Stopped) {
    failed.error().end = DownloadEnd::Stopped;
    failed.error().cause = DownloadCause::User;
  }
  return failed;
}

std::unexpected<DownloadOutcome> DownloadWork::Stop() const {
  auto stopped = Fail(DownloadCause::User, "Stopped by the user.");
  stopped.error().end = DownloadEnd::Stopped;
  return stopped;
}

DownloadWork::Step DownloadWork::GetAccess() {
  if (link.EnsureAccess(link.UnitID())) return {};
  const LinkError& error = link.LastError();
  auto failed = FailOf(error);
  if (error.controllerCode != kNeedsPasswordCode && error.controllerCode != kWrongPasswordCode) return failed;
  failed.error().end = DownloadEnd::Declined;
  failed.error().cause = DownloadCause::User;
  failed.error().reason = "The controller's password was not given.\n" + failed.error().reason;
  return failed;
}

// Nothing is compared with what cannot be read, or is the boot loader's own.
DownloadWork::Step DownloadWork::AskForNoNewerOs(const FoundController& found, const std::string& controller,
                                                 const OsNumber& next, std::string_view title) {
  const auto installed = found.Os();
  if (!installed || next > *installed) return {};
  const std::string os = "The O/S " + NumberText(next);
  const bool isSame = next == *installed;
  const std::string what = isSame ? " is installed already in the controller (" + controller + ")"
                                  : " is older than the one in the controller (" + controller + "), " + found.OsText();
  const std::string question = os + what + (isSame ? ". Install it again?" : ". Install the older one?");
  if (Asks(isSame ? DownloadQuestion::SameOs : DownloadQuestion::OlderOs, question, PromptIcon::Question, title)) {
    return {};
  }
  return Decline(DownloadCause::User, os + (isSame ? " is installed already, and was not to be installed again."
                                                   : what + ", and was not to be installed."));
}

DownloadWork::Step DownloadWork::CheckIsThere(const std::filesystem::path& file, std::string_view title) {
  const auto bytes = ReadDownloadBytes(file, kLongestFile);
  if (bytes || bytes.error().fault != DownloadFileFault::Unreadable) return {};
  Tell(bytes.error().Text(), PromptIcon::Exclamation, title);
  auto refused = Refuse(bytes.error().Text());
  refused.error().cause = DownloadCause::File;
  return refused;
}

std::vector<std::string> DownloadWork::WarningsOf(const FoundController& found,
                                                  const std::optional<OsNumber>& next) const {
  std::vector<std::string> warnings;
  const auto installed = found.Os();
  if (next && installed && *next < *installed) {
    warnings.emplace_back("The O/S in the file is older than the one in the controller.");
  }
  if (std::string other = OtherModelWarning(found, order.selectedModel); !other.empty()) {
    warnings.push_back(std::move(other));
  }
  if (std::string advice = StateAdvice(found); !advice.empty()) warnings.push_back(std::move(advice));
  return warnings;
}

DownloadWork::Step DownloadWork::StopPoint() {
  if (!pacer.StopRequested() || !IsStopMeant()) return {};
  return Stop();
}

bool DownloadWork::GoesOnAfter(const DownloadOutcome& outcome) {
  if (outcome.link.code != LinkErrorCode::Stopped || IsStopMeant()) return false;
  mMayBeExecuted = true;
  return true;
}

DownloadWork::Step DownloadWork::DoRepeatable(const std::function<Step()>& exchange) {
  std::optional<DownloadOutcome> unsure;
  while (true) {
    Step done = exchange();
    if (done) return done;
    if (!unsure && done.error().link.code == LinkErrorCode::Unsure) {
      mMayBeExecuted = true;
      unsure = done.error();
    } else if (!GoesOnAfter(done.error())) {
      return unsure && done.error().cause == DownloadCause::Link ? std::unexpected(*unsure) : done;
    }
  }
}

// Who asks for a stop once more while the question is open means it.
bool DownloadWork::IsStopMeant() {
  if (left == ControllerLeft::Untouched || !order.asksBeforeStop) return true;
  const StopScope asking(pacer);
  const std::string question = "Stop the download now? It is left half done.\r\n\r\n" +
                               std::string(LeftBehindText(left)) + "\r\n\r\nStop it all the same?";
  return Asks(DownloadQuestion::Stop, question, PromptIcon::Exclamation) || pacer.StopRequested();
}

std::expected<CommandReply, DownloadOutcome> DownloadWork::Send(std::string_view command) {
  auto reply = link.SendCommand(command);
  if (!reply) return FailOf(link.LastError());
  if (!reply->IsError()) return *std::move(reply);
  auto refusal = RefusalIn(reply->text);
  if (!refusal) return Fail(DownloadCause::Reply, "The controller's reply is an error.");
  constexpr std::size_t kShown = 20;
  refusal->doing = "sending " + std::string(command.substr(0, kShown));
  if (refusal->controllerCode == kBusyCode) refusal->code = LinkErrorCode::Busy;
  return FailOf(*refusal, DownloadCause::Reply);
}

std::expected<Bytes, DownloadOutcome> DownloadWork::SendBlock(const BlockFields& fields,
                                                              std::span<const std::uint8_t> data) {
  DownloadEngine* engine = link.GetDownloadEngine();
  if (engine == nullptr) return FailOf(link.LastError());
  engine->SetMessage(fields);
  if (!(data.data() == nullptr ? engine->Send() : engine->SendWithData(data))) return FailOf(link.LastError());
  auto refusal = RefusalOf(engine->ReplyStatus());
  if (!refusal) return engine->ReplyBytes();
  refusal->doing = "block operation " + std::to_string(fields.opCode);
  return FailOf(*refusal, DownloadCause::Reply);
}

}  // namespace kv
