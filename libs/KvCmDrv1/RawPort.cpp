#include "KvCmDrv1/RawPort.h"

namespace kv {

RawPort::RawPort(Pacer& pacer, Line& line, std::function<void(Outcome outcome)> onOutcome)
    : mPacer(pacer), mLine(line), mOnOutcome(std::move(onOutcome)) {}

void RawPort::SetInBufferCount(std::size_t count) {
  if (count == 0 && mLine.IsOpen()) mOnOutcome(mLine.DropInput());
}

bool RawPort::Output(std::string_view bytes) {
  constexpr Duration kTaken = std::chrono::seconds(5);  // for the line to take what is beyond its own time
  if (!mLine.IsOpen()) {
    mOnOutcome(Outcome::Closed);
    return false;
  }
  const Instant now = mPacer.Now();
  const Outcome outcome = mLine.Send(bytes, now, now + mLine.WireTime(bytes.size()) + kTaken);
  mOnOutcome(outcome);
  return outcome == Outcome::Done;
}

std::string RawPort::Input() {
  std::string bytes;
  if (mLine.IsOpen()) mOnOutcome(mLine.TakeRaw(bytes, kInBuffer));
  return bytes;
}

}  // namespace kv
