#include "KvCmDrv1/ports/ModemPort.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kv {
namespace {

using std::chrono::seconds;

constexpr Duration kSlice = std::chrono::milliseconds(10);
constexpr Duration kAnswerTime = seconds(3);  // a modem answers a command at once, a reset within a second or two
constexpr Duration kGuardTime = seconds(1);   // silence before and after the escape
constexpr std::size_t kLongestLine = 1024;    // no answer of a modem is longer
constexpr std::size_t kMostWaiting = 65536;   // bytes of a call that nobody has taken yet
constexpr Duration kTurnInterval = std::chrono::milliseconds(20);  // while a modem talks without a pause
constexpr Duration kLossSilence = std::chrono::milliseconds(100);  // behind the word of a modem that lost its call
constexpr std::string_view kCarrierLoss = "\r\nNO CARRIER\r\n";

bool IsNumber(std::string_view line) {
  return line.size() <= 2 && line.find_first_not_of("0123456789") == std::string_view::npos;
}

// A command as it may be shown: the init text of a mobile modem may hold the card's PIN, to enter it ("AT+CPIN=1234"),
// to change it (CPWD) or to switch its question off (CLCK), and the password of a network (CGAUTH).
std::string WithoutPin(std::string_view text) {
  std::string shown(text);
  const auto isSame = [](char left, char right) { return left == right || (left & ~0x20) == right; };
  for (const std::string_view word : {"PIN=", "CPWD=", "CLCK=", "AUTH="}) {
    auto from = shown.begin();
    while ((from = std::search(from, shown.end(), word.begin(), word.end(), isSame)) != shown.end()) {
      from += static_cast<std::ptrdiff_t>(word.size());
      const auto end = std::find_if(from, shown.end(), [](char c) { return c == ';' || c == '\r'; });
      std::fill(from, end, '*');
      from = end;
    }
  }
  return shown;
}

}  // namespace

// How a modem's answers are spelt and what they mean to the user. "%" stands for the number or the command.
struct ModemPort::AnswerText {
  Answer answer;
  std::string_view line;  // what a line begins with; empty: not an answer of the modem
  const char* happened;
  const char* cause;
  const char* cure;

  static const std::array<AnswerText, 11> kTable;
};

const std::array<ModemPort::AnswerText, 11> ModemPort::AnswerText::kTable{{
    {Answer::Busy, "BUSY", "% is engaged", "another call to the controller's modem is under way", "dial again later"},
    {Answer::NoCarrier, "NO CARRIER", "the call to % found no modem",
     "the other side hung up, is not a modem, or the line is bad", "check the number and the modem at the controller"},
    {Answer::NoDialTone, "NO DIALTONE", "the modem hears no dial tone",
     "it is not plugged into the telephone line, or the exchange wants a prefix first",
     "check the telephone cable, and whether outside calls need a prefix such as \"0,\""},
    {Answer::NoDialTone, "NO DIAL TONE", "the modem hears no dial tone",
     "it is not plugged into the telephone line, or the exchange wants a prefix first",
     "check the telephone cable, and whether outside calls need a prefix such as \"0,\""},
    {Answer::NoAnswer, "NO ANSWER", "% does not answer", "the controller's modem is switched off or does not pick up",
     "check the number and the modem at the controller"},
    {Answer::Error, "ERROR", "the modem refused the command \"%\"", "it does not know this command",
     "check init text and number in the modem settings against the modem's manual"},
    {Answer::Number, "", "the modem answers \"%\" with a number instead of a word", "it is set to numeric answers (V0)",
     "take V0 out of the init text; if it is not there, send ATQ0V1&W to the modem once with a terminal program"},
    {Answer::Silence, "", "the modem does not answer \"%\"",
     "it is switched off, on another port, or set to another speed; it still holds an earlier call; or it stays in "
     "quiet mode (Q1) or with numeric answers (V0), which ATQ0V1 should have ended",
     "switch the modem off and on, which also ends a call, and check port and speed; if it stays silent, send ATQ0V1&W "
     "to it once with a terminal program"},
    {Answer::LaterSilence, "", "the modem does not answer \"%\", although it has answered before",
     "the command makes it quiet (Q1), takes longer than 3 s, or the modem was switched off",
     "check the init text in the modem settings: the modem must go on answering in words (Q0V1)"},
    {Answer::Stopped, "", "connecting by modem was stopped", "it was asked to end", "connect again"},
    {Answer::Lost, "", "the port of the modem is gone", "its adapter was unplugged",
     "plug it in again, then connect again"},
}};

ModemPort::ModemPort(std::unique_ptr<Port> line, ModemSettings settings, Pacer& pacer)
    : mLine(std::move(line)), mSettings(std::move(settings)), mPacer(pacer) {}

ModemPort::~ModemPort() {
  ModemPort::Close();
}

std::expected<void, PortError> ModemPort::Open(Duration limit) {
  Close();
  mLoss = {};
  mReceived.clear();
  mTail.clear();
  mLossHeard.reset();
  const Instant deadline = mPacer.Now() + limit;
  if (auto opened = mLine->Open(limit); !opened) return opened;
  if (auto failure = SetUpAndDial(deadline)) {
    mLine->Close();
    return std::unexpected(std::move(*failure));
  }
  mIsOnline = true;
  WatchForCarrierLoss(mReceived);
  return {};
}

std::optional<PortError> ModemPort::SetUpAndDial(Instant deadline) {
  if (auto failure = SetUp(deadline)) return failure;
  const std::string dialling = (mSettings.isPulse ? "ATDP" : "ATDT") + mSettings.number;
  const auto answer = Ask(dialling, "CONNECT", std::min(mSettings.dialTimeOut, deadline - mPacer.Now()));
  if (answer == Answer::Awaited) return std::nullopt;
  if (answer == Answer::Error || answer == Answer::Number) return ErrorOf(answer, dialling);
  if (answer == Answer::Silence || answer == Answer::Stopped) {
    (void)Send("\r", mPacer.Now() + kAnswerTime);  // any character calls the dialling off
  }
  return ErrorOf(answer == Answer::Silence ? Answer::NoAnswer : answer, mSettings.number);
}

std::optional<PortError> ModemPort::SetUp(Instant deadline) {
  if (const auto answer = Wake(deadline); answer != Answer::Awaited) return ErrorOf(answer, "ATZ");
  if (!mSettings.init.empty()) {
    const auto answer = Command(mSettings.init, deadline);
    if (answer != Answer::Awaited) {
      return ErrorOf(answer == Answer::Silence ? Answer::LaterSilence : answer, mSettings.init);
    }
  }
  // Without a call an echo would come back in place of a reply. A modem that cannot be told so is used all the same.
  const auto answer = Command("ATE0", deadline);
  if (answer == Answer::Awaited || answer == Answer::Error) return std::nullopt;
  return ErrorOf(answer == Answer::Silence ? Answer::LaterSilence : answer, "ATE0");
}

// The profile that the reset brings back may be a quiet one, or one with numeric answers.
ModemPort::Answer ModemPort::Wake(Instant deadline) {
  const auto answer = Command("ATZ", deadline);
  if (answer != Answer::Silence && answer != Answer::Number) return answer;
  const auto second = Command("ATQ0V1", deadline);
  return second == Answer::Silence ? answer : second;
}

ModemPort::Answer ModemPort::Command(const std::string& command, Instant deadline) {
  return Ask(command, "OK", std::min(kAnswerTime, deadline - mPacer.Now()));
}

ModemPort::Answer ModemPort::Ask(const std::string& command, std::string_view awaited, Duration limit) {
  const Instant deadline = mPacer.Now() + limit;
  mReceived.clear();
  if (Send(command + "\r", deadline)) return AwaitLine(awaited, deadline);
  if (!mLine->IsOpen()) return Answer::Lost;
  return mPacer.StopRequested() ? Answer::Stopped : Answer::Silence;
}

bool ModemPort::Send(std::string_view bytes, Instant deadline) {
  Note(Side::Said, bytes);
  for (;;) {
    const auto result = mLine->Write(bytes, kSlice);
    if (bytes.empty()) return true;
    if (result == Result::Lost || mPacer.StopRequested() || mPacer.Now() >= deadline) return false;
    mPacer.Turn();
  }
}

ModemPort::Answer ModemPort::AwaitLine(std::string_view awaited, Instant deadline) {
  Instant lastTurn = mPacer.Now();
  for (;;) {
    while (const auto line = TakeLine()) {
      Note(Side::Heard, *line);
      if (line->starts_with(awaited)) return Answer::Awaited;
      if (IsNumber(*line)) return Answer::Number;
      for (const auto& text : AnswerText::kTable) {
        if (!text.line.empty() && line->starts_with(text.line)) return text.answer;
      }
    }
    if (mPacer.StopRequested()) return Answer::Stopped;
    if (mPacer.Now() >= deadline) return Answer::Silence;
    const auto result = mLine->Read(mReceived, kSlice);
    if (result == Result::Lost) return Answer::Lost;
    if (result == Result::Nothing || mPacer.Now() - lastTurn >= kTurnInterval) {
      mPacer.Turn();
      lastTurn = mPacer.Now();
    }
  }
}

// Takes the next line that holds anything; what is behind its end stays.
std::optional<std::string> ModemPort::TakeLine() {
  mReceived.erase(0, std::min(mReceived.find_first_not_of("\r\n"), mReceived.size()));
  const auto end = mReceived.find_first_of("\r\n");
  if (end == std::string::npos) {
    if (mReceived.size() > kLongestLine) mReceived.clear();
    return std::nullopt;
  }
  auto line = mReceived.substr(0, end);
  mReceived.erase(0, mReceived.compare(end, 2, "\r\n") == 0 ? end + 2 : end + 1);
  return line;
}

void ModemPort::Note(Side side, std::string_view bytes) const {
  if (OnDialogue) OnDialogue(side, WithoutPin(bytes));
}

PortError ModemPort::ErrorOf(Answer answer, const std::string& subject) const {
  const auto found = std::find_if(AnswerText::kTable.begin(), AnswerText::kTable.end(),
                                  [answer](const AnswerText& text) { return text.answer == answer; });
  std::string happened = found->happened;
  if (const auto place = happened.find('%'); place != std::string::npos)
    happened.replace(place, 1, WithoutPin(subject));
  if (answer == Answer::Lost && !mLine->LossReason().happened.empty()) return mLine->LossReason();
  return {happened, found->cause, found->cure};
}

void ModemPort::Close() {
  if (mIsOnline) HangUp();
  mIsOnline = false;
  mLine->Close();
}

// The modem takes "+++" for a wish to command it only with silence around it. Where that cannot be waited for, or
// brings no answer, the closing line drops the call.
void ModemPort::HangUp() {
  const Instant silentUntil = mPacer.Now() + kGuardTime;
  while (mPacer.Now() < silentUntil) {
    if (mPacer.StopRequested()) return;
    mPacer.Sleep(kSlice);
  }
  mReceived.clear();
  const Instant deadline = mPacer.Now() + kAnswerTime;
  if (!Send("+++", deadline)) return;
  if (AwaitLine("OK", deadline) == Answer::Lost) return;
  (void)Ask("ATH", "OK", kAnswerTime);
}

// A modem that lost its call takes the bytes for a command, and may echo them: what it has said is read first.
Port::Result ModemPort::Write(std::string_view& bytes, Duration slice) {
  if (!mIsOnline) return Result::Lost;
  auto heard = Result::Done;
  while (heard == Result::Done && mReceived.size() < kMostWaiting) {
    heard = Listen(mReceived, mLossHeard ? slice : Duration{});
  }
  if (heard == Result::Lost) return heard;
  if (mLossHeard) return Result::Nothing;
  const auto result = mLine->Write(bytes, slice);
  return result == Result::Lost ? Lose(mLine->LossReason()) : result;
}

Port::Result ModemPort::Read(std::string& buffer, Duration slice) {
  if (!mIsOnline) return Result::Lost;
  if (mReceived.empty()) return Listen(buffer, slice);
  buffer += std::exchange(mReceived, {});
  return Result::Done;
}

// Reads from the line. The modem says the loss of its call in the middle of the data, perhaps in pieces, and then
// nothing more; the same bytes with others behind them are data.
Port::Result ModemPort::Listen(std::string& buffer, Duration slice) {
  const std::size_t start = buffer.size();
  const auto result = mLine->Read(buffer, slice);
  if (result == Result::Lost) return Lose(mLine->LossReason());
  if (result == Result::Done) {
    WatchForCarrierLoss(std::string_view(buffer).substr(start));
  } else if (mLossHeard && mPacer.Now() - *mLossHeard >= kLossSilence) {
    return Lose({"the telephone connection to " + mSettings.number + " broke",
                 "the other side hung up, or the line was cut", "dial again"});
  }
  return result;
}

void ModemPort::WatchForCarrierLoss(std::string_view bytes) {
  if (bytes.empty()) return;
  mTail += bytes;
  if (mTail.size() > kCarrierLoss.size()) mTail.erase(0, mTail.size() - kCarrierLoss.size());
  mLossHeard.reset();
  if (mTail == kCarrierLoss) mLossHeard = mPacer.Now();
}

Port::Result ModemPort::Lose(PortError reason) {
  mLoss = std::move(reason);
  mIsOnline = false;
  mLine->Close();
  return Result::Lost;
}

std::string ModemPort::Description() const {
  return mLine->Description() + ", modem " + mSettings.number;
}

}  // namespace kv
