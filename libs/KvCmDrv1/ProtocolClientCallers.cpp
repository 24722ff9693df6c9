#include <algorithm>

#include "KvCmDrv1/CallerMessages.h"
#include "KvCmDrv1/ProtocolClient.h"
#include "base/Texts.h"

// Ports that partners call: anybody may be there, so each caller is asked who it is before it is taken.

namespace kv {

using enum ExchangeOutcome;

namespace {

// A caller that is a controller answers at once; one that does not must not keep the others waiting.
constexpr Duration kLongestTrial = std::chrono::seconds(3);

}  // namespace

std::expected<void, LinkError> ProtocolClient::AwaitCaller(std::uint8_t unit, Duration limit) {
  const auto underWay = BeUnderWay();
  mLast = {.tries = 0, .start = mPacer.Now()};
  mDropped = 0;
  return AdmitCaller(unit, mLast.start + limit);
}

// Within a request: the partner that is there, when it is the one, or another one that calls.
ExchangeOutcome ProtocolClient::GetCaller(const Exchange& exchange) {
  const auto admitted = AdmitCaller(exchange.unit, exchange.deadline);
  if (admitted) return Done;
  mLoss = {admitted.error().happened, admitted.error().cause, admitted.error().cure};
  return mLine.StopAsked() ? Stopped : CannotReopen;
}

std::expected<void, LinkError> ProtocolClient::AdmitCaller(std::uint8_t unit, Instant limit) {
  while (true) {
    if (!mLine.IsOpen()) {
      const std::expected<void, PortError> opened = mLine.Open(std::max(limit - mPacer.Now(), Duration{}));
      if (!opened) return std::unexpected(NobodyCame(opened.error()));
    }
    const std::string name = mLine.GetPort().Description();
    const Duration trial = std::min(kLongestTrial, mSettings.tries * mSettings.timeOut);
    const Instant now = mPacer.Now();
    const Duration rest = limit - now;
    const ExchangeOutcome outcome = Handshake({unit, now, now + std::min(trial, rest), Exchange::Role::Admission});
    if (outcome == Done) break;
    if (outcome == Stopped) return std::unexpected(Explain(outcome));
    // Who came too late for this wait has not been heard yet, and is asked again by the next one.
    const bool isCutShort = outcome == Silence && rest < trial / 2;
    if (isCutShort)
      return std::unexpected(NobodyCame({name + " came too late to be asked who it is", "", "try again"}));
    DropCaller(name, outcome);
  }
  mDropped = 0;
  return {};
}

void ProtocolClient::DropCaller(const std::string& name, ExchangeOutcome outcome) {
  mLine.DropPartner();
  ++mDropped;
  mLastDropped = name + ": " + WhyDropped(outcome);
  mSay(std::string(kCallerDropped) + mLastDropped);
}

std::string ProtocolClient::WhyDropped(ExchangeOutcome outcome) const {
  switch (outcome) {
    case Silence:
      return "it does not answer";
    case Lost:
      return "it has hung up";
    case OtherController:
      return "it is " + mOtherName;
    case NotIdentified:
      return "it does not say who it is";
    default:
      return "what it sends is no controller's answer";
  }
}

// Why nobody was taken until the limit, with those who were there.
LinkError ProtocolClient::NobodyCame(const PortError& error) const {
  LinkError result = Explain(CannotReopen);
  result.code = mLine.StopAsked() ? LinkErrorCode::Stopped : LinkErrorCode::CannotOpen;
  result.happened = error.happened;
  result.cause = error.cause;
  result.cure = error.cure;
  if (mDropped == 0) return result;
  result.happened += "; " + Counted(static_cast<std::uint64_t>(mDropped), "caller was", "callers were") +
                     " dropped, the last: " + mLastDropped;
  result.cause = "somebody else calls this port, and the controller that is meant does not";
  result.cure =
      "check the address and TCP port that the controller dials, its unit id, and the serial number in the "
      "communication settings";
  return result;
}

}  // namespace kv
