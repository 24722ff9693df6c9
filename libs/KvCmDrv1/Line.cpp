#include "KvCmDrv1/Line.h"

#include <algorithm>

namespace kv {
namespace {

// After something that was no answer, this much quiet ends the try: a damaged reply is asked for again at once, and a
// stream of garbage cannot use up the tries.
constexpr Duration kQuiet = std::chrono::milliseconds(10);
constexpr int kQuietBytes = 4;  // and at least the time of so many bytes

// Longest time between two turns while bytes arrive without a pause.
constexpr Duration kTurnInterval = std::chrono::milliseconds(20);

}  // namespace

struct Line::Wait {
  Instant now;
  Instant lastTurn;
  Instant lastArrival;
  bool hasArrived = false;  // any byte
  bool isDamaged = false;   // something that was to be a message
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

Outcome Line::Send(std::string_view bytes, Instant now, Instant deadline) {
  mTrace.Add(now, Trace::Direction::Sent, bytes);
  mReceiver.Clear();  // the start of a message that never ended must not swallow the answer
  while (true) {
    const std::size_t before = bytes.size();
    const Port::Result result = mPort->Write(bytes, kSlice);
    mBytesSent += before - bytes.size();
    if (result == Port::Result::Lost) return Outcome::Lost;
    if (bytes.empty()) return Outcome::Done;
    if (StopAsked()) return Outcome::Stopped;
    if (mPacer.Now() >= deadline) return Outcome::Silence;
    mPacer.Turn();
  }
}

Outcome Line::Await(ReplyJudge& judge, Instant now, Instant deadline, Instant utmost) {
  const Duration quiet = std::max(kQuiet, kQuietBytes * mPort->ByteTime());
  Wait wait{.now = now, .lastTurn = now, .lastArrival = {}};
  while (true) {
    if (!mReceiver.IsEmpty() && TakeMessages(judge, wait)) return Outcome::Done;
    if (StopAsked()) return Outcome::Stopped;
    if (wait.isDamaged && wait.now - wait.lastArrival >= quiet) return Outcome::Damaged;
    const Instant end = IsArriving(wait) ? utmost : deadline;
    if (wait.now >= end) return wait.hasArrived ? Outcome::Damaged : Outcome::Silence;

    const Port::Result result = ReadSlice(std::min(kSlice, end - wait.now));
    wait.now = mPacer.Now();
    if (!mArrived.empty()) {
      mReceiver.Feed(mArrived, wait.now);
      wait.lastArrival = wait.now;
      wait.hasArrived = true;
    }
    if (result == Port::Result::Lost) return TakeMessages(judge, wait) ? Outcome::Done : Outcome::Lost;
    if (result == Port::Result::Nothing || wait.now - wait.lastTurn >= kTurnInterval) {
      mPacer.Turn();
      wait.lastTurn = mPacer.Now();
      wait.now = wait.lastTurn;
    }
  }
}

bool Line::IsArriving(const Wait& wait) const {
  return !mReceiver.IsEmpty() && !wait.isDamaged && wait.now - wait.lastArrival < MessageReceiver::kIdle;
}

bool Line::TakeMessages(ReplyJudge& judge, Wait& wait) {
  while (const std::optional<Received> received = mReceiver.Next(wait.now)) {
    const bool isAnswer = received->IsGood() && judge.Accepts(*received);
    mTrace.Add(wait.now, isAnswer ? Trace::Direction::Received : Trace::Direction::Dropped, received->bytes);
    if (isAnswer) {
      mAnswerTime = wait.now;
      return true;
    }
    // A whole message that answers something else is no damage: the answer may be right behind it.
    if (!received->IsGood()) wait.isDamaged = true;
  }
  return false;
}

Port::Result Line::ReadSlice(Duration slice) {
  mArrived.clear();
  const Port::Result result = mPort->Read(mArrived, slice);
  mBytesReceived += mArrived.size();
  return result;
}

Outcome Line::DropInput() {
  constexpr int kMostReads = 100;  // a partner that never stops talking must not hold us here
  mReceiver.Clear();
  for (int i = 0; i < kMostReads; ++i) {
    const Port::Result result = ReadSlice(Duration{});
    if (result == Port::Result::Lost) return Outcome::Lost;
    if (result == Port::Result::Nothing) break;
    mTrace.Add(mPacer.Now(), Trace::Direction::Dropped, mArrived);
  }
  return Outcome::Done;
}

Outcome Line::TakeRaw(std::string& bytes, std::size_t most) {
  while (bytes.size() < most) {
    const Port::Result result = ReadSlice(Duration{});
    if (!mArrived.empty()) mTrace.Add(mPacer.Now(), Trace::Direction::Received, mArrived);
    bytes += mArrived;
    // What arrived before the loss is handed out first; the loss shows with the next call.
    if (result == Port::Result::Lost) return bytes.empty() ? Outcome::Lost : Outcome::Done;
    if (result == Port::Result::Nothing) break;
  }
  return Outcome::Done;
}

Outcome Line::AwaitRaw(std::string& bytes, Duration span) {
  const Instant end = mPacer.Now() + span;
  for (Instant now = end - span; now < end; now = mPacer.Now()) {
    const Port::Result result = ReadSlice(std::min(kSlice, end - now));
    if (!mArrived.empty()) {
      mTrace.Add(mPacer.Now(), Trace::Direction::Received, mArrived);
      bytes += mArrived;
      return Outcome::Done;
    }
    if (result == Port::Result::Lost) return Outcome::Lost;
    mPacer.Turn();
  }
  return Outcome::Silence;
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
