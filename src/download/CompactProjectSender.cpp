#include "download/CompactProjectSender.h"

#include <chrono>
#include <utility>

#include "download/FileFields.h"

namespace kv {
namespace {

constexpr Duration kBetweenPolls = std::chrono::milliseconds(1000);

// What a line leaves the controller as, beside what it was before.
ControllerLeft LeftBy(std::string_view line, ControllerLeft before) {
  if (line == "CCE") return ControllerLeft::ProjectPerhaps;
  if (line == "DE") return ControllerLeft::ProjectErased;
  return before == ControllerLeft::Untouched ? ControllerLeft::Stopped : before;
}

// Doing it twice is the same as doing it once, so that a stop which ended its exchange can be taken back.
bool IsRepeatable(std::string_view line) {
  return line.starts_with("LD") || line.starts_with("LN") || line == "DI" || line == "CCS";
}

}  // namespace

void CompactProjectSender::Begin() {
  mWork.window.ResetProgress(static_cast<std::int64_t>(mProject.lineCount));
  mWork.window.SetStatus("Sending download file ...");
}

CompactProjectSender::Step CompactProjectSender::CheckFits(const FoundController& controller) {
  const std::string model = ShownText(controller.version.model);
  const std::string text = OtherModelText(mProject.model, model);
  const bool takesBlocks = mWork.link.GetDownloadEngine() != nullptr;
  const LinkErrorCode reason = mWork.link.LastError().code;
  if (!takesBlocks && reason != LinkErrorCode::NotSupported) return mWork.FailOf(mWork.link.LastError());
  const std::string advice = controller.info.state == 'B' ? StateAdvice(controller) : "";
  if (takesBlocks || !advice.empty()) {  // no answer could make these go on
    mWork.Tell(text, PromptIcon::Exclamation, "Warning");
    return mWork.Refuse(advice.empty() ? "The project is one of the compact family, and the controller (" + model +
                                             ") does not know its commands."
                                       : advice);
  }
  if (model != mProject.model && !mWork.Asks(DownloadQuestion::OtherModel, text + "\r\nDo you want to continue?",
                                             PromptIcon::Question, "Warning")) {
    return std::unexpected(DownloadOutcome{
        .end = DownloadEnd::Declined,
        .cause = DownloadCause::NotFit,
        .reason = "The project is made for a " + mProject.model + ", and the controller is a " + model + "."});
  }
  if (mProject.endsWithReset ||
      mWork.Asks(DownloadQuestion::NoReset,
                 "The file does not end with the command that restarts the controller (CCE). It may have been cut; if "
                 "it "
                 "was not, the controller stands still after the download until it is restarted. Download it all the "
                 "same?",
                 PromptIcon::Exclamation)) {
    return {};
  }
  return std::unexpected(DownloadOutcome{.end = DownloadEnd::Declined,
                                         .cause = DownloadCause::File,
                                         .reason = "The project file does not end with CCE; it may have been cut."});
}

ProjectSender::Traffic CompactProjectSender::Amount() const {
  constexpr std::uint64_t kAroundCommand = 6;  // "/", unit, checksum, CR
  constexpr std::uint64_t kReply = 22;         // "LDOK" with seal and frame
  Traffic traffic;
  for (const std::string& line : mProject.commands) {
    traffic.content += line.size();
    traffic.bytes += line.size() + kAroundCommand + kReply;
    ++traffic.exchanges;
  }
  return traffic;
}

CompactProjectSender::Step CompactProjectSender::Send() {
  const std::uint64_t total = Amount().content;
  std::uint64_t bytes = 0;
  for (const std::string& line : mProject.commands) {
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
    if (&line == &mProject.commands.back() && line == "CCE") mWork.left = ControllerLeft::ProjectWaits;
    if (Step sent = SendLine(line); !sent) return sent;
    bytes += line.size();
    mWork.window.StepProgress();
    mWork.window.AmountSent(bytes, total);
    mWork.pacer.DoEvents();
  }
  if (!mProject.endsWithReset) mWork.left = ControllerLeft::ProjectWaits;
  mWork.Tell("Download was successful. ", PromptIcon::Information);
  return {};
}

CompactProjectSender::Step CompactProjectSender::SendLine(const std::string& line) {
  if (line == "CCS") mWork.Tell("The controller is about to enter Stop mode.", PromptIcon::Exclamation);
  if (line == "CCE") mWork.Tell("The controller is about to Reset.", PromptIcon::Exclamation);
  return mWork.Do(LeftBy(line, mWork.left), [&]() -> Step {
    while (true) {
      auto reply = mWork.Send(line);
      if (reply) return line == "DI" ? WaitForErase(*std::move(reply)) : Step();
      if (!IsRepeatable(line) || !mWork.GoesOnAfter(reply.error())) return std::unexpected(reply.error());
    }
  });
}

// Without a limit: only the controller knows how long its flash takes. The user can stop it.
CompactProjectSender::Step CompactProjectSender::WaitForErase(CommandReply reply) {
  constexpr std::size_t kState = 2;
  while (reply.text.size() <= kState || reply.text[kState] != 'I') {
    mWork.pacer.DoEvents();
    mWork.pacer.Sleep(kBetweenPolls);
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
    auto next = mWork.Send("DI");
    if (!next && !mWork.GoesOnAfter(next.error())) return std::unexpected(next.error());
    if (next) reply = *std::move(next);
  }
  return {};
}

}  // namespace kv
