#include <algorithm>

#include "KvCmDrv1/CallerMessages.h"
#include "KvCmDrv1/Exchange.h"

// Ports that partners call: anybody may be there, so each caller is asked who it is before it is taken.

namespace kv {
namespace {

// A caller that is a controller answers at once; one that does not must not keep the others waiting.
constexpr Duration kLongestTrial = std::chrono::seconds(3);

}  // namespace

// Within a request: the partner that is there, when it is the one, or another one that calls.
Outcome Exchange::GetCaller(std::uint8_t unit) {
  const auto admitted = AdmitCaller(unit, mDeadline);
  if (admitted) return Outcome::Done;
  mLoss = {admitted.error().happened, admitted.error().cause, admitted.error().cure};
  return mLine.StopAsked() ? Outcome::Stopped : Outcome::CannotReopen;
}

std::expected<void, LinkError> Exchange::AdmitCaller(std::uint8_t unit, Instant limit) {
  while (true) {
    if (!mLine.IsOpen()) {
      const std::expected<void, PortError> opened = mLine.Open(std::max(limit - mPacer.Now(), Duration{}));
      if (!opened) return std::unexpected(NobodyCame(opened.error()));
    }
    const std::string name = mLine.GetPort().Description();
    const Duration trial = std::min(kLongestTrial, mSettings.tries * mSettings.timeOut);
    const Duration rest = limit - mPacer.Now();
    const Outcome outcome = TryCaller(unit, mPacer.Now() + std::min(trial, rest));
    if (outcome == Outcome::Done) break;
    if (outcome == Outcome::Stopped) return std::unexpected(Explain(outcome));
    // Who came too late for this wait has not been heard yet, and is asked again by the next one.
    const bool isCutShort = outcome == Outcome::Silence && rest < trial / 2;
    if (isCutShort)
      return std::unexpected(NobodyCame({name + " came too late to be asked who it is", "", "try again"}));
    DropCaller(name, outcome);
  }
  mDropped = 0;
  return {};
}

Outcome Exchange::TryCaller(std::uint8_t unit, Instant end) {
  const Instant deadlineOfRequest = mDeadline;
  mDeadline = end;
  mIsAdmitting = true;
  const Outcome outcome = Meet(unit);
  mIsAdmitting = false;
  mDeadline = deadlineOfRequest;
  return outcome;
}

void Exchange::DropCaller(const std::string& name, Outcome outcome) {
  mLine.DropPartner();
  ++mDropped;
  mLastDropped = name + ": " + WhyDropped(outcome);
  mSay(std::string(kCallerDropped) + mLastDropped);
}

std::string Exchange::WhyDropped(Outcome outcome) const {
  switch (outcome) {
    case Outcome::Silence:
      return "it does not answer";
    case Outcome::Lost:
      return "it has hung up";
    case Outcome::OtherController:
      return "it is " + mOtherName;
    case Outcome::NotIdentified:
      return "it does not say who it is";
    default:
      return "what it sends is no controller's answer";
  }
}

// A partner that does not answer while somebody else calls has probably lost power, and is who calls.
bool Exchange::IsReplaced() {
  return !mIsAdmitting && mLine.GetPort().HasNewerCall();
}

// Why nobody was taken until the limit, with those who were there.
LinkError Exchange::NobodyCame(const PortError& error) const {
  LinkError result = Explain(Outcome::CannotReopen);
  result.code = mLine.StopAsked() ? LinkErrorCode::Stopped : LinkErrorCode::CannotOpen;
  result.happened = error.happened;
  result.cause = error.cause;
  result.cure = error.cure;
  if (mDropped == 0) return result;
  result.happened += "; " + std::to_string(mDropped) + (mDropped == 1 ? " caller was" : " callers were") +
                     " dropped, the last: " + mLastDropped;
  result.cause = "somebody else calls this port, and the controller that is meant does not";
  result.cure =
      "check the address and TCP port that the controller dials, its unit id, and the serial number in the "
      "communication settings";
  return result;
}

}  // namespace kv
