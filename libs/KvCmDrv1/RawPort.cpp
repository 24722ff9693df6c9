#include "KvCmDrv1/RawPort.h"

#include <algorithm>
#include <utility>

#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/Seal.h"

namespace kv {
namespace {

// The frame that `bytes` are, from the first to the last of them.
std::optional<AsciiFrame> WholeFrame(std::string_view bytes) {
  constexpr std::size_t kTextStart = 3;  // behind "/" and the unit id
  if (bytes.size() <= kTextStart || bytes.front() != kFrameStart || bytes.find(kFrameEnd) + 1 != bytes.size()) {
    return std::nullopt;
  }
  const auto frame = FindFrame(bytes.substr(0, bytes.size() - 1));
  return frame && frame->text.data() == bytes.data() + kTextStart ? frame : std::nullopt;
}

}  // namespace

RawPort::RawPort(Pacer& pacer, Line& line, OnTraffic onTraffic)
    : mPacer(pacer), mLine(line), mOnTraffic(std::move(onTraffic)) {}

void RawPort::SetInBufferCount(std::size_t count) {
  mWaiting.resize(std::min(count, mWaiting.size()));
  if (count == 0 && mLine.IsOpen()) mOnTraffic(mLine.DropInput(), {});
}

bool RawPort::Output(std::string_view bytes) {
  constexpr Duration kTaken = std::chrono::seconds(5);  // for the line to take what is beyond its own time
  if (!mLine.IsOpen()) {
    mOnTraffic(ExchangeOutcome::Closed, {});
    return false;
  }
  const Instant now = mPacer.Now();
  const ExchangeOutcome outcome =
      mLine.Send(bytes, Line::Sending::New, now, now + mLine.WireTime(bytes.size()) + kTaken);
  mOnTraffic(outcome, {.sent = bytes});
  return outcome == ExchangeOutcome::Done;
}

std::string RawPort::Input() {
  if (mLine.IsOpen()) {
    const ExchangeOutcome outcome = mLine.TakeRaw(mWaiting, kInBuffer);
    mOnTraffic(outcome, {.received = mWaiting});
  }
  return std::exchange(mWaiting, {});
}

bool RawPort::WaitForInput(Duration span) {
  if (!mWaiting.empty()) return true;
  const ExchangeOutcome outcome = mLine.IsOpen() ? mLine.AwaitRaw(mWaiting, span) : ExchangeOutcome::Silence;
  if (outcome != ExchangeOutcome::Silence) mOnTraffic(outcome, {});
  return !mWaiting.empty();
}

bool RawPort::IsReplyTo(std::string_view frame, std::string_view bytes) const {
  const auto request = WholeFrame(frame);
  const auto reply = WholeFrame(bytes);
  return request && reply && request->unit == reply->unit && Seal(request->text).Open(*reply);
}

}  // namespace kv
