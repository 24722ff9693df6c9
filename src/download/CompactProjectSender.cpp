#include "download/CompactProjectSender.h"

#include <algorithm>
#include <chrono>
#include <expected>
#include <utility>

#include "base/Hex.h"
#include "base/Texts.h"
#include "download/CompactApplication.h"
#include "download/FileFields.h"
#include "download/LongWait.h"

namespace kv {
namespace {

constexpr Duration kBetweenPolls = std::chrono::milliseconds(1000);
constexpr const char* kSending = "Sending download file ...";

bool IsLoading(ControllerLeft left) {
  using enum ControllerLeft;
  return left == ProjectErased || left == ProjectUnproven || left == ProjectWaits;
}

// What a line leaves the controller as, beside what it was before.
ControllerLeft LeftBy(std::string_view line, ControllerLeft before) {
  if (line == "CCE" && IsLoading(before)) return ControllerLeft::ProjectPerhaps;
  if (line == "DE") return ControllerLeft::ProjectErased;
  return before == ControllerLeft::Untouched ? ControllerLeft::Stopped : before;
}

// Doing it twice is the same as doing it once: a stop which ended its exchange can be taken back, and it is sent once
// more over a connection that has come back.
bool IsRepeatable(std::string_view line) {
  return line.starts_with("LD") || line.starts_with("LN") || line == "DI" || line == "CCS";
}

}  // namespace

void CompactProjectSender::Begin() {
  mWork.window.ResetProgress(static_cast<std::int64_t>(mProject.lineCount));
  mWork.window.SetStatus(kSending);
}

CompactProjectSender::Step CompactProjectSender::CheckFits(const FoundController& controller) {
  Step fits = CheckModel(controller);
  if (fits) fits = CheckLines();
  return fits ? CheckEnd() : fits;
}

CompactProjectSender::Step CompactProjectSender::CheckModel(const FoundController& controller) {
  const std::string model = ShownText(controller.version.model);
  const std::string text = OtherModelText(mProject.model, model);
  const bool takesBlocks = mWork.link.GetDownloadEngine() != nullptr;
  const LinkErrorCode reason = mWork.link.LastError().code;
  if (!takesBlocks && reason != LinkErrorCode::NotSupported) return mWork.FailOf(mWork.link.LastError());
  const std::string advice = controller.info.state == 'B' ? StateAdvice(controller) : "";
  if (takesBlocks || !advice.empty()) {  // no answer could make these go on
    mWork.Tell(text, PromptIcon::Exclamation, "Warning");
    return mWork.Refuse(!advice.empty() ? advice
                                        : "The project is one of the compact family, and the controller (" + model +
                                              ") does not know its commands.");
  }
  if (model == mProject.model || mWork.Asks(DownloadQuestion::OtherModel, text + "\r\nDo you want to continue?",
                                            PromptIcon::Question, "Warning")) {
    return {};
  }
  return mWork.Decline(DownloadCause::NotFit,
                       "The project is made for a " + mProject.model + ", and the controller is a " + model + ".");
}

// Whatever can be known of a line is known before the first one is sent: behind DE it would be too late. The controller
// hands out its project memory to everybody (RX), and nothing past its end.
CompactProjectSender::Step CompactProjectSender::CheckLines() {
  constexpr std::size_t kAddressOfReply = 8;
  std::uint64_t end = 0;
  CompactProjectOrder order;
  for (std::size_t i = 0; i < mProject.commands.size(); ++i) {
    const auto piece = ReadCompactPiece(mProject.commands[i]);
    const std::string fault = piece ? order.Take(mProject.commands[i]) : piece.error();
    if (!fault.empty()) {
      return mWork.Fail(DownloadCause::File, "Line " + std::to_string(i + kCompactProjectHeadLines + 1) +
                                                 " of the project file: " + fault + ". Nothing was sent of it.");
    }
    end = std::max(end, piece->end);
  }
  if (end == 0) return {};
  const auto reply = mWork.Send("RX" + ToHex(static_cast<std::uint32_t>(end - 1), kAddressOfReply));
  if (!reply) return std::unexpected(reply.error());
  if (reply->Data().size() > kAddressOfReply) return {};
  return mWork.Refuse("The project goes up to byte " + std::to_string(end) +
                      " of the project memory, which the controller does not have.");
}

CompactProjectSender::Step CompactProjectSender::CheckEnd() {
  const char* const question =
      "The file does not end with the command that restarts the controller (CCE). It may have been cut; if it was not, "
      "the controller stands still after the download until it is restarted. Download it all the same?";
  if (mProject.endsWithReset || mWork.Asks(DownloadQuestion::NoReset, question, PromptIcon::Exclamation)) return {};
  return mWork.Decline(DownloadCause::File, "The project file does not end with CCE; it may have been cut.");
}

ProjectSender::Traffic CompactProjectSender::Amount() const {
  constexpr std::uint64_t kAroundCommand = 6;  // "/", unit, checksum, CR
  constexpr std::uint64_t kReply = 22;         // "LDOK" with seal and frame
  constexpr std::uint64_t kAddress = 10;       // "RX" and its digits, in request and reply
  constexpr std::uint64_t kDigits = 2;         // of a byte
  Traffic traffic;
  std::uint64_t written = 0;
  for (const std::string& line : mProject.commands) {
    traffic.content += line.size();
    traffic.bytes += line.size() + kAroundCommand + kReply;
    ++traffic.exchanges;
    if (const auto piece = ReadCompactPiece(line)) written += piece->bytes.size();
  }
  const std::uint64_t blocks = (written + CompactApplication::kBlock - 1) / CompactApplication::kBlock;
  traffic.bytes += blocks * (kAroundCommand + kReply + 2 * kAddress) + written * kDigits;
  traffic.exchanges += blocks;
  return traffic;
}

CompactProjectSender::Step CompactProjectSender::Send() {
  const std::uint64_t total = Amount().content;
  std::uint64_t bytes = 0;
  for (const std::string& line : mProject.commands) {
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
    if (line == "CCE") {
      if (Step same = CompareWithSent(); !same) return same;
    }
    // Nothing of the project comes behind it: that is refused before.
    if (line == "CCE" && IsLoading(mWork.left)) mWork.left = ControllerLeft::ProjectWaits;
    if (Step sent = SendLine(line); !sent) return sent;
    mImage.Take(line);
    bytes += line.size();
    mWork.window.StepProgress();
    mWork.window.AmountSent(bytes, total);
    mWork.pacer.DoEvents();
  }
  if (Step same = CompareWithSent(); !same) return same;
  if (!Restarts()) mWork.left = ControllerLeft::ProjectWaits;
  return {};
}

// A controller that answers "OK" has not always done it, and after the reset only the name would be told.
CompactProjectSender::Step CompactProjectSender::CompareWithSent() {
  if (mImage.Size() == 0) return {};
  if (mWork.left == ControllerLeft::ProjectErased) mWork.left = ControllerLeft::ProjectUnproven;
  mWork.window.SetStatus("Comparing with what was sent ...");
  CompactApplication memory(mWork);
  std::uint64_t compared = 0;
  for (auto place = mImage.NextFrom(0); place;) {
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
    const auto found = mWork.WhileBusy([&] { return memory.ReadBlock(*place); });
    if (!found && mWork.GoesOnAfter(found.error())) continue;
    if (!found) return std::unexpected(found.error());
    if (found->empty()) return Differs(*place, "the controller tells no more of its memory");
    if (const auto other = mImage.DifferenceIn(*place, *found)) {
      return Differs(*other, "the controller holds " + ToHex((*found)[*other - *place], 2) + " instead of " +
                                 ToHex(mImage.At(*other), 2));
    }
    compared = std::min(compared + found->size(), mImage.Size());
    mWork.window.AmountCompared(compared, mImage.Size());
    mWork.pacer.DoEvents();
    place = mImage.NextFrom(*place + static_cast<std::uint32_t>(found->size()));
  }
  mImage.Clear();
  mWork.window.SetStatus(kSending);
  return {};
}

CompactProjectSender::Step CompactProjectSender::Differs(std::uint32_t place, const std::string& how) {
  const std::string text = "All was sent, but at address " + ToHex(place, 6) + " of the project memory " + how +
                           ".\nWhat to do: download again; when it is so again, do not use the controller.";
  if (mWork.left == ControllerLeft::ProjectUnproven) mWork.left = ControllerLeft::ProjectErased;
  mWork.Tell(text + "\n" + std::string(LeftBehindText(mWork.left)), PromptIcon::Exclamation);
  return mWork.Fail(DownloadCause::Differs, text);
}

// The last reset comes behind the last project: a load under way has its own end.
bool CompactProjectSender::Restarts() const {
  const auto last = [this](std::string_view command) {
    return std::ranges::find(mProject.commands.rbegin(), mProject.commands.rend(), command);
  };
  return last("CCE") < last("DE");
}

CompactProjectSender::Step CompactProjectSender::SendLine(const std::string& line) {
  if (line == "CCS") {
    if (Step told = mWork.TellOfStopMode(); !told) return told;
  }
  if (line == "CCE") mWork.Tell("The controller is about to Reset.", PromptIcon::Exclamation);
  const auto send = [&]() -> Step {
    auto reply = mWork.WhileBusy([&] { return mWork.Send(line); });
    if (!reply) return std::unexpected(reply.error());
    return line == "DI" ? WaitForErase(*std::move(reply)) : Step();
  };
  return mWork.Do(LeftBy(line, mWork.left), [&] { return IsRepeatable(line) ? mWork.DoRepeatable(send) : send(); });
}

// Without a limit: only the controller knows how long its flash takes. The user can stop it.
CompactProjectSender::Step CompactProjectSender::WaitForErase(CommandReply reply) {
  constexpr std::size_t kState = 2;
  LongWait wait(mWork, "that its project memory is erased");
  while (reply.text.size() <= kState || reply.text[kState] != 'I') {
    mWork.pacer.DoEvents();
    mWork.pacer.Sleep(kBetweenPolls);
    wait.Polled();
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
    auto next = mWork.WhileBusy([this] { return mWork.Send("DI"); });
    if (!next && !mWork.GoesOnAfter(next.error())) return std::unexpected(next.error());
    if (next) reply = *std::move(next);
  }
  return {};
}

}  // namespace kv
