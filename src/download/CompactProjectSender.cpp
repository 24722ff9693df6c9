#include "download/CompactProjectSender.h"

#include <algorithm>
#include <chrono>
#include <expected>
#include <utility>

#include "base/Hex.h"
#include "download/FileFields.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

constexpr Duration kBetweenPolls = std::chrono::milliseconds(1000);

// What a line leaves the controller as, beside what it was before.
ControllerLeft LeftBy(std::string_view line, ControllerLeft before) {
  if (line == "CCE") return ControllerLeft::ProjectPerhaps;
  if (line == "DE") return ControllerLeft::ProjectErased;
  return before == ControllerLeft::Untouched ? ControllerLeft::Stopped : before;
}

// The stretch of project memory that a line writes; nothing (`end` 0) for every other line. Malformed is one that a
// controller would refuse: address (6 digits) and 1 to 256 bytes, or a name of at most 20 bytes.
struct Piece {
  std::uint32_t end = 0;
};
std::expected<Piece, std::string> ReadPiece(std::string_view line) {
  constexpr std::size_t kName = 2;
  constexpr std::size_t kAddress = 6;
  constexpr std::size_t kMostBytes = 256;
  const bool isName = line.starts_with("LN");
  if (!isName && !line.starts_with("LD")) return Piece{};
  const std::string_view digits = line.substr(kName);
  const std::size_t head = isName ? 0 : kAddress;
  const std::size_t bytes = digits.size() < head ? 0 : (digits.size() - head) / 2;
  const bool fits = isName ? bytes <= kLongestProjectName : bytes >= 1 && bytes <= kMostBytes;
  if (!AreUpperHexDigits(digits) || digits.size() % 2 != 0 || !fits) {
    return std::unexpected(isName ? "expected a name of at most 20 bytes, as digits"
                                  : "expected an address of 6 digits and 1 to 256 bytes, as digits");
  }
  if (isName) return Piece{};
  const auto address = static_cast<std::uint32_t>(ParseHex(digits.substr(0, kAddress)).value_or(0));
  return Piece{address + static_cast<std::uint32_t>(bytes)};
}

// Doing it twice is the same as doing it once: a stop which ended its exchange can be taken back, and it is sent once
// more over a connection that has come back.
bool IsRepeatable(std::string_view line) {
  return line.starts_with("LD") || line.starts_with("LN") || line == "DI" || line == "CCS";
}

}  // namespace

void CompactProjectSender::Begin() {
  mWork.window.ResetProgress(static_cast<std::int64_t>(mProject.lineCount));
  mWork.window.SetStatus("Sending download file ...");
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

// The controller hands out its project memory to everybody (RX), and nothing past its end.
CompactProjectSender::Step CompactProjectSender::CheckLines() {
  constexpr std::size_t kAddressOfReply = 8;
  std::uint32_t end = 0;
  for (std::size_t i = 0; i < mProject.commands.size(); ++i) {
    const auto piece = ReadPiece(mProject.commands[i]);
    if (!piece) {
      return mWork.Fail(DownloadCause::File, "Line " + std::to_string(i + kCompactProjectHeadLines + 1) +
                                                 " of the project file: " + piece.error() +
                                                 ". Nothing was sent of it.");
    }
    end = std::max(end, piece->end);
  }
  if (end == 0) return {};
  const auto reply = mWork.Send("RX" + ToHex(end - 1, kAddressOfReply));
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
  return {};
}

CompactProjectSender::Step CompactProjectSender::SendLine(const std::string& line) {
  if (line == "CCS") mWork.Tell("The controller is about to enter Stop mode.", PromptIcon::Exclamation);
  if (line == "CCE") mWork.Tell("The controller is about to Reset.", PromptIcon::Exclamation);
  const auto send = [&]() -> Step {
    auto reply = mWork.Send(line);
    if (!reply) return std::unexpected(reply.error());
    return line == "DI" ? WaitForErase(*std::move(reply)) : Step();
  };
  return mWork.Do(LeftBy(line, mWork.left), [&] { return IsRepeatable(line) ? mWork.DoRepeatable(send) : send(); });
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
