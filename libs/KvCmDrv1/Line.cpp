#include "KvCmDrv1/Line.h"

#include <algorithm>

namespace kv {
namespace {

// After a damaged reply, this much quiet ends a try before the last: it is asked for again at once.
constexpr Duration kQuiet = std::chrono::milliseconds(10);
constexpr int kQuietBytes = 4;  // and at least the time of so many bytes

// Bytes of the shortest reply, a frame: fewer that are no message were no reply.
constexpr std::size_t kShortestReply = 20;
// Start and unit id of a frame, or the first bytes of a block message: with fewer nobody knows that a reply began.
constexpr std::size_t kReplyBegun = 3;

// Longest time between two turns while bytes arrive without a pause.
constexpr Duration kTurnInterval = std::chrono::milliseconds(20);

}  // namespace

struct Line::Wait {
  Instant now;
  Instant lastTurn;
  Instant lastArrival;
  std::size_t stray = 0;  // bytes that are no message
  bool hasForeign = false;

  [[nodiscard]] bool IsDamaged() const { return stray >= kShortestReply; }
};

Line::Line(Pacer& pacer, Trace& trace, std::unique_ptr<Port> port)
    : mPacer(pacer), mTrace(trace), mPort(std::move(port)) {
  TraceDialogue();
}

void Line::Replace(std::unique_ptr<Port> port) {
  Close();
  mPort = std::move(port);
  TraceDialogue();
}

void Line::TraceDialogue() {
  mPort->OnDialogue = [this](Port::Side side, std::string_view bytes) {
    const auto direction = side == Port::Side::Said ? Trace::Direction::Sent : Trace::Direction::Received;
    mTrace.Add(mPacer.Now(), direction, bytes);
  };
}

std::expected<void, PortError> Line::Open(Duration limit) {
  mReceiver.Clear();
  std::expected<void, PortError> opened = mPort->Open(limit);
  if (opened) ++mConnection;
  return opened;
}

void Line::Close() {
  mPort->Close();
  mReceiver.Clear();
}

void Line::DropPartner() {
  mPort->DropPartner();
  mReceiver.Clear();
}

ExchangeOutcome Line::Send(std::string_view bytes, Sending sending, Instant now, Instant deadline) {
  if (sending == Sending::New && !mGate.Pass(bytes)) return ExchangeOutcome::NotRecorded;
  mTrace.Add(now, Trace::Direction::Sent, bytes);
  // A block message that never ended must not swallow the answer to something else. The start of a frame cannot, and
  // the answer to the same request is as long as the one that has begun.
  if (sending == Sending::New && mReceiver.Pending().starts_with(kBlockStart)) mReceiver.Clear();
  while (true) {
    const std::size_t before = bytes.size();
    const Port::Result result = mPort->Write(bytes, kSlice);
    mBytesSent += before - bytes.size();
    if (result == Port::Result::Lost) return ExchangeOutcome::Lost;
    if (bytes.empty()) return ExchangeOutcome::Done;
    if (StopAsked()) return ExchangeOutcome::Stopped;
    if (mPacer.Now() >= deadline) return ExchangeOutcome::Silence;
    mPacer.Turn();
  }
}

ExchangeOutcome Line::Await(ReplyMatcher& matcher, Instant now, const TryLimits& limits) {
  const Duration quiet = std::max(kQuiet, kQuietBytes * mPort->ByteTime());
  Wait wait{.now = now, .lastTurn = now, .lastArrival = {}};
  while (true) {
    if (!mReceiver.IsEmpty() && TakeMessages(matcher, wait)) return ExchangeOutcome::Done;
    if (StopAsked()) return ExchangeOutcome::Stopped;
    if (!limits.isLast && wait.IsDamaged() && wait.now - wait.lastArrival >= quiet) return ExchangeOutcome::Damaged;
    const Instant end = IsArriving(wait, limits.patience) ? limits.utmost : limits.deadline;
    if (wait.now >= end) {
      const ExchangeOutcome outcome = WithoutAnswer(wait);
      return limits.isLast && TakeMessages(matcher, wait, true) ? ExchangeOutcome::Done : outcome;
    }

    const Port::Result result = ReadSlice(std::min(kSlice, end - wait.now));
    wait.now = mPacer.Now();
    if (!mArrived.empty()) {
      mReceiver.Feed(mArrived, wait.now);
      wait.lastArrival = wait.now;
    }
    if (result == Port::Result::Lost)
      return TakeMessages(matcher, wait) ? ExchangeOutcome::Done : ExchangeOutcome::Lost;
    if (result == Port::Result::Nothing || wait.now - wait.lastTurn >= kTurnInterval) {
      mPacer.Turn();
      wait.lastTurn = mPacer.Now();
      wait.now = wait.lastTurn;
    }
  }
}

bool Line::IsArriving(const Wait& wait, Duration patience) const {
  const bool hasBegun = mReceiver.Pending().size() >= kReplyBegun;
  return hasBegun && !wait.IsDamaged() && wait.now - wait.lastArrival < patience;
}

ExchangeOutcome Line::WithoutAnswer(const Wait& wait) const {
  const std::size_t pending = mReceiver.Pending().size();
  if (wait.IsDamaged()) return ExchangeOutcome::Damaged;
  if (pending >= kReplyBegun) return ExchangeOutcome::Incomplete;
  if (wait.hasForeign) return ExchangeOutcome::Foreign;
  return wait.stray + pending > 0 ? ExchangeOutcome::Stray : ExchangeOutcome::Silence;
}

bool Line::TakeMessages(ReplyMatcher& matcher, Wait& wait, bool isEnd) {
  while (const std::optional<Received> received = mReceiver.Next(wait.now, isEnd)) {
    const bool isAnswer = received->IsGood() && matcher.Accepts(*received);
    mTrace.Add(wait.now, isAnswer ? Trace::Direction::Received : Trace::Direction::Dropped, received->bytes);
    if (isAnswer) {
      mAnswerTime = wait.now;
      return true;
    }
    // A whole message that answers something else is no damage: the answer may be right behind it.
    if (received->IsGood()) {
      wait.hasForeign = true;
    } else {
      wait.stray += received->bytes.size();
    }
  }
  return false;
}

Port::Result Line::ReadSlice(Duration slice) {
  mArrived.clear();
  const Port::Result result = mPort->Read(mArrived, slice);
  mBytesReceived += mArrived.size();
  return result;
}

ExchangeOutcome Line::DropInput() {
  constexpr int kMostReads = 100;  // a partner that never stops talking must not hold us here
  mReceiver.Clear();
  for (int i = 0; i < kMostReads; ++i) {
    const Port::Result result = ReadSlice(Duration{});
    if (result == Port::Result::Lost) return ExchangeOutcome::Lost;
    if (result == Port::Result::Nothing) break;
    mTrace.Add(mPacer.Now(), Trace::Direction::Dropped, mArrived);
  }
  return ExchangeOutcome::Done;
}

ExchangeOutcome Line::TakeRaw(std::string& bytes, std::size_t most) {
  while (bytes.size() < most) {
    const Port::Result result = ReadSlice(Duration{});
    if (!mArrived.empty()) mTrace.Add(mPacer.Now(), Trace::Direction::Received, mArrived);
    bytes += mArrived;
    // What arrived before the loss is handed out first; the loss shows with the next call.
    if (result == Port::Result::Lost) return bytes.empty() ? ExchangeOutcome::Lost : ExchangeOutcome::Done;
    if (result == Port::Result::Nothing) break;
  }
  return ExchangeOutcome::Done;
}

ExchangeOutcome Line::AwaitRaw(std::string& bytes, Duration span) {
  const Instant end = mPacer.Now() + span;
  for (Instant now = end - span; now < end; now = mPacer.Now()) {
    const Port::Result result = ReadSlice(std::min(kSlice, end - now));
    if (!mArrived.empty()) {
      mTrace.Add(mPacer.Now(), Trace::Direction::Received, mArrived);
      bytes += mArrived;
      return ExchangeOutcome::Done;
    }
    if (result == Port::Result::Lost) return ExchangeOutcome::Lost;
    mPacer.Turn();
  }
  return ExchangeOutcome::Silence;
}

bool Line::Pause(Duration span) {
  constexpr Duration kStep = std::chrono::milliseconds(50);
  const Instant end = mPacer.Now() + span;
  while (!StopAsked()) {
    const Duration rest = end - mPacer.Now();
    if (rest <= Duration{}) return true;
    mPacer.Sleep(std::min(kStep, rest));
    mPacer.Turn();
  }
  return false;
}

}  // namespace kv
