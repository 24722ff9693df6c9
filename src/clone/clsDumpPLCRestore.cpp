#include <algorithm>
#include <chrono>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneFile.h"
#include "clone/CloneFrame.h"
#include "clone/clsDumpPLC.h"
#include "link/ErrorMeaning.h"

// Restoring a clone: nothing but sending the lines of the file and waiting for an OK to each.
namespace kv {
namespace {

constexpr Duration kTurn = std::chrono::milliseconds(10);
constexpr Duration kLongestReply = std::chrono::seconds(10);
constexpr std::size_t kBufferReserve = 10;

constexpr std::string_view kNotReady = "PLC Reply Error, the PLC is not ready for Cloning";

using Line = std::expected<std::string, CloneOutcome>;

Line NextHeadLine(CloneLineReader& lines) {
  auto line = lines.Next();
  if (!line) return std::unexpected(CloneOutcome::OfFile(line.error()));
  if (*line) return std::string(**line);
  const LineError cut{lines.LineNumber() + 1, "expected four head lines: the file ends before"};
  return std::unexpected(CloneOutcome::OfFile(cut.In(lines.Name())));
}

// The first lines as the user is shown them.
std::expected<std::string, CloneOutcome> ReadHead(CloneLineReader& lines) {
  std::string head;
  for (int i = 0; i < 3; ++i) {
    const auto line = NextHeadLine(lines);
    if (!line) return std::unexpected(line.error());
    head += (i > 0 ? "\r\n" : "") + AnsiToUtf8(*line);
  }
  return head;
}

std::expected<std::int64_t, CloneOutcome> CountCommands(CloneLineReader& lines) {
  if (const auto empty = NextHeadLine(lines); !empty) return std::unexpected(empty.error());
  std::int64_t count = 0;
  while (true) {
    const auto line = lines.Next();
    if (!line) return std::unexpected(CloneOutcome::OfFile(line.error()));
    if (!*line) return count;
    ++count;
  }
}

// A reply that came and says no.
CloneOutcome WithoutOk(std::string_view reply) {
  constexpr std::size_t kShown = 60;
  if (auto refusal = RefusalIn(reply)) {
    CloneOutcome outcome =
        CloneOutcome::Failed(CloneCause::Reply, refusal->happened + ".\nWhat to do: " + refusal->cure + ".");
    outcome.link = *std::move(refusal);
    return outcome;
  }
  const std::string_view shown = reply.substr(0, std::min(reply.find('\r'), kShown));
  return CloneOutcome::Failed(CloneCause::Reply, "it was answered with \"" + AnsiToUtf8(shown) +
                                                     "\", which is no OK.\nLikely cause: noise on the line.");
}

// Whether the first line that has arrived is the controller's own reply, noise before it aside.
bool EndsInReplyTo(const SerialPortObject& port, std::string_view line, std::string_view received) {
  const std::string_view first = received.substr(0, received.find('\r') + 1);
  const std::size_t start = first.rfind('/');
  return start != std::string_view::npos && port.IsReplyTo(line, first.substr(start));
}

}  // namespace

void clsDumpPLC::RestoreGhost(SerialPortObject& port, const std::filesystem::path& file, const Channel* link) {
  mLink = link;
  mOldLinkError = link == nullptr ? "" : link->LastError().Text();
  mReach = {};
  mLineBefore.clear();
  const Step restored = Restore(port, file);
  mOutcome = restored ? WithoutEnd(file) : restored.error();
  if (restored) return Show("Clone Restore Successfully.", PromptIcon::Information);
  if (const std::string left = LeftText(mReach); !left.empty()) mOutcome.reason += "\n" + left;
  Show(kOperationFailed, PromptIcon::None);
}

// The lines are through; but only an end frame makes a restore of them.
CloneOutcome clsDumpPLC::WithoutEnd(const std::filesystem::path& file) const {
  const std::string_view last(mLineBefore);
  const auto frame = ParseCloneFrame(last.substr(0, last.find('\r') + 1));  // whatever line end is left behind it
  if (mReach.written == 0 || (frame && frame->isEnd)) return {};
  return CloneOutcome::OfFile({Utf8FromPath(file), "",
                               "it has no end frame, so the controller still waits for the rest: it is left loading, "
                               "its program stopped, its memory part of the clone. Restore a whole file"});
}

// The likely cause is a guess, for when the link does not know better.
CloneOutcome clsDumpPLC::PortFailure(CloneCause cause, const std::string& reason, const std::string& likely) const {
  CloneOutcome outcome = CloneOutcome::Failed(cause, reason);
  const bool hasReason = mLink != nullptr && mLink->LastError().Text() != mOldLinkError;
  if (!hasReason && !likely.empty()) outcome.reason += "\nLikely cause: " + likely;
  if (!hasReason) return outcome;
  outcome.link = mLink->LastError();
  outcome.reason += "\n" + outcome.link.Text();
  return outcome;
}

clsDumpPLC::Step clsDumpPLC::Restore(SerialPortObject& port, const std::filesystem::path& file) {
  const auto commands = ShowHead(file);
  if (!commands) return std::unexpected(commands.error());
  mReach.lines = *commands;
  mWindow.Event_ProgressBarInit(0, mReach.lines);

  auto stream = OpenForReading(file);
  if (!stream) return std::unexpected(CloneOutcome::OfFile(stream.error()));
  Sha256 read;
  CloneLineReader lines(*stream, Utf8FromPath(file), &read);
  for (std::size_t i = 0; i < kCloneHeadLines; ++i) {
    if (const auto line = NextHeadLine(lines); !line) return std::unexpected(line.error());
  }
  return RestoreLines(port, lines, read);
}

clsDumpPLC::Step clsDumpPLC::RestoreLines(SerialPortObject& port, CloneLineReader& lines, const Sha256& read) {
  while (true) {
    const auto line = lines.Next();
    if (!line) return std::unexpected(CloneOutcome::OfFile(line.error()));
    if (!*line || mReach.written == mReach.lines) return CheckAllWasSent(lines, line->has_value(), read);
    const std::string frame = mUnit ? WithUnit(**line, *mUnit) : std::string(**line);
    if (auto sent = RestoreLine(port, frame, lines.LineNumber()); !sent) return sent;
  }
}

// Nobody keeps the file as it was when its lines were counted.
clsDumpPLC::Step clsDumpPLC::CheckAllWasSent(const CloneLineReader& lines, bool hasMore, const Sha256& sent) const {
  if (!hasMore && mReach.written == mReach.lines) {
    if (sent.Hex() == mCounted) return {};
    return std::unexpected(CloneOutcome::OfFile(
        {lines.Name(), "", "it was changed while it was sent: what was sent is part of both. Restore a whole file"}));
  }
  const LineError changed{lines.LineNumber() + (hasMore ? 0 : 1),
                          "it was changed while it was sent: it had " + std::to_string(mReach.lines) +
                              " command lines before, and now has " +
                              (hasMore ? "more" : std::to_string(mReach.written))};
  return std::unexpected(CloneOutcome::OfFile(changed.In(lines.Name())));
}

std::expected<std::int64_t, CloneOutcome> clsDumpPLC::ShowHead(const std::filesystem::path& file) {
  auto stream = OpenForReading(file);
  if (!stream) return std::unexpected(CloneOutcome::OfFile(stream.error()));
  Sha256 digest;
  CloneLineReader lines(*stream, Utf8FromPath(file), &digest);
  const auto head = ReadHead(lines);
  if (!head) return std::unexpected(head.error());
  Show(*head, PromptIcon::None);
  auto count = CountCommands(lines);
  mCounted = digest.Hex();
  if (!count || mExpected.empty() || mExpected == mCounted) return count;
  return std::unexpected(CloneOutcome::OfFile(
      {lines.Name(), "",
       "it is not the file any more that was looked through before the restore; nothing was sent of it. Restore it "
       "again"}));
}

clsDumpPLC::Step clsDumpPLC::RestoreLine(SerialPortObject& port, std::string_view line, std::size_t number) {
  mWindow.Event_AddWriteCommand(line);
  Step done = SendCloneCommand(port, line);
  if (done) done = WaitCloneReply(port, line);
  mReach.isUnsure = !done && !MeansNotExecuted(done.error().link);
  if (!done) {
    const auto frame = ParseCloneFrame(line);
    mReach.isEnd = frame && frame->isEnd;
    done.error().reason = "Line " + std::to_string(number) + " of the clone file: " + done.error().reason;
    return done;
  }
  if (mReach.unproven > 0 && mReach.firstUnproven == 0) mReach.firstUnproven = number;
  mWindow.Event_ProgressBarValue(++mReach.written);
  if (IsStopRequested()) return std::unexpected(CloneOutcome::OfStop());
  return {};
}

clsDumpPLC::Step clsDumpPLC::SendCloneCommand(SerialPortObject& port, std::string_view line) {
  port.SetInBufferCount(0);
  if (port.Output(line)) return {};
  const bool isHeldBack = mLink != nullptr && mLink->LastError().code == LinkErrorCode::NotRecorded;
  return std::unexpected(PortFailure(
      CloneCause::Link, isHeldBack ? "it was not sent." : "it could not be sent, because the link is down."));
}

clsDumpPLC::Step clsDumpPLC::WaitCloneReply(SerialPortObject& port, std::string_view line) {
  const auto fail = [&](const std::string& reason, const std::string& likely) -> Step {
    Show(kNotReady, PromptIcon::None);
    return std::unexpected(PortFailure(CloneCause::Reply, reason, likely));
  };
  if (line == mLineBefore) mLineBefore.clear();  // their replies are alike
  const Instant start = mPacer.Now();
  std::string reply;
  while (reply.find('\r') == std::string::npos) {
    WaitTurn(port, line, reply);
    mPacer.DoEvents();
    TakeInput(port, reply);
    if (reply.find('/') != std::string::npos && reply.find('\r') != std::string::npos) {
      if (!port.IsReplyTo(line, reply)) mPacer.Sleep(kTurn);
      break;
    }
    if (reply.size() + kBufferReserve > port.InBufferSize()) {
      return fail("the reply does not end.", "noise on the line, or another speed.");
    }
    if (mPacer.Now() - start > kLongestReply) {
      const char* otherUnit = mUnit ? "" : "has another unit id than the file, ";
      return fail("no reply within 10 s.",
                  std::string("the controller is switched off, ") + otherUnit + "or the line broke.");
    }
  }
  mLineBefore = line;
  if (reply.find("OK") != std::string::npos) {
    if (!EndsInReplyTo(port, line, reply)) ++mReach.unproven;
    return {};
  }
  Show(kNotReady, PromptIcon::None);
  return std::unexpected(WithoutOk(reply));
}

// Both waits of a line end before their time only when what has arrived is the reply to this line, nothing but it, and
// the line is quiet. Any other "OK" may be a late or doubled one: then the whole time passes, and what comes in the
// second is thrown away before the next line.
void clsDumpPLC::WaitTurn(SerialPortObject& port, std::string_view line, std::string& reply) {
  const Instant end = mPacer.Now() + kTurn;
  const std::size_t most = port.InBufferSize();
  for (Instant now = end - kTurn; now < end && reply.size() < most; now = mPacer.Now()) {
    if (port.IsReplyTo(line, reply)) return;
    if (!port.WaitForInput(end - now)) mPacer.Sleep(std::max(end - mPacer.Now(), Duration{}));
    TakeInput(port, reply);
  }
}

// Noise that happens to hold a CR ends no wait, nor is the reply to the line before, once more, one to this.
void clsDumpPLC::TakeInput(SerialPortObject& port, std::string& reply) {
  reply += port.Input();
  while (const std::size_t end = reply.find('\r') + 1) {
    const std::string_view first = std::string_view(reply).substr(0, end);
    const bool isNoise = !first.contains('/') && !first.contains("OK");
    const bool isOld = !mLineBefore.empty() && port.IsReplyTo(mLineBefore, first);
    if (!isNoise && !isOld) return;
    reply.erase(0, end);
    if (isOld) return;
  }
}

}  // namespace kv
