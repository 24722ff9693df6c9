#include <utility>

#include "KvCmDrv1/Exchange.h"
#include "link/ControllerErrorText.h"

// How an exchange gets access to a controller that wants its password first.

namespace kv {
namespace {

// As often as a person would try.
constexpr int kMostQuestions = 3;
constexpr std::size_t kLongestPassword = 8;
constexpr std::size_t kAccessReply = 9;

}  // namespace

// A refused request has changed nothing, so it is sent anew. Without access the refusal stands.
Outcome Exchange::RunWithAccess(std::uint8_t unit, const std::function<Outcome()>& run) {
  mWentOut = false;
  const Outcome access = GetAccess(unit);
  if (access == Outcome::NotSupported) return Outcome::Done;
  // What was lost is met anew by the request, and gets its access then.
  if (access == Outcome::Lost) LoseLink();
  if (access != Outcome::Done && access != Outcome::Lost) return access;
  return run();
}

std::expected<int, LinkError> Exchange::EnsureAccess(std::uint8_t unit) {
  if (auto met = MeetUnit(unit); !met) return std::unexpected(std::move(met.error()));
  const UnderWay underWay(*this);
  Begin(unit, 0, std::nullopt);
  const bool isKnown = !mUnits[unit].password.empty();
  Outcome outcome = GiveAccess(unit);
  if (!isKnown && mAccessRefusal == kWrongPasswordCode) mAccessRefusal = 0;  // nobody has given a wrong one
  if (outcome == Outcome::NotSupported) outcome = AskUntilGiven(unit);
  const bool isRefused = outcome == Outcome::NotSupported;
  Conclude(unit, isRefused ? Outcome::Done : outcome);
  if (isRefused) return AccessRefusal();
  if (outcome != Outcome::Done) return std::unexpected(Explain(outcome));
  return 0;
}

// Done: the controller takes requests now. NotSupported: it does not.
Outcome Exchange::GetAccess(std::uint8_t unit) {
  const Outcome given = mUnits[unit].password.empty() ? Outcome::NotSupported : GiveAccess(unit);
  return given == Outcome::NotSupported ? AskUntilGiven(unit) : given;
}

Outcome Exchange::AskUntilGiven(std::uint8_t unit) {
  for (int question = 0; question < kMostQuestions; ++question) {
    if (const Outcome asked = AskPassword(unit); asked != Outcome::Done) return asked;
    if (const Outcome given = GiveAskedFor(unit); given != Outcome::NotSupported) return given;
  }
  mIsDeclined = true;
  return Outcome::NotSupported;
}

// While the user was typing somebody may have moved the cable: the password is for the controller that asked for it.
Outcome Exchange::GiveAskedFor(std::uint8_t unit) {
  if (!IsLongUnheard(unit, mPacer.Now())) return GiveAccess(unit);
  Outcome outcome = AskStep(unit);
  if (outcome == Outcome::Done) outcome = Identify(unit);
  return outcome == Outcome::Done ? GiveAccess(unit) : outcome;
}

// Asks for the password of the unit, unless there is nobody to ask, or somebody who has said that he does not know it.
// The request does not pay for the time that a person takes.
Outcome Exchange::AskPassword(std::uint8_t unit) {
  const bool wasWrong = mAccessRefusal == kWrongPasswordCode;
  if (!mAsk || mIsDeclined || (mAccessRefusal != 0 && !wasWrong)) return Outcome::NotSupported;
  const Instant before = mPacer.Now();
  std::optional<std::string> password = mAsk(unit, wasWrong);
  const Duration taken = mPacer.Now() - before;
  mStart += taken;
  mDeadline += taken;
  if (mLine.StopAsked()) return Outcome::Stopped;
  if (mIsShut) return Outcome::Closed;
  mIsDeclined = !password;
  mUnits[unit].password = std::move(password).value_or("");
  return mIsDeclined ? Outcome::NotSupported : Outcome::Done;
}

// Gives the password that is known; none is given as blanks. NotSupported: the controller does not take it.
Outcome Exchange::GiveAccess(std::uint8_t unit) {
  const std::string& password = mUnits[unit].password;
  if (password.size() > kLongestPassword) return RefusePassword(unit, kWrongPasswordCode);
  const std::uint16_t tag = NextTag();
  const Outcome outcome = Ask({unit, mWriter.GiveAccess(unit, tag, password), TaggedRead(kAccessReply), {}}, mMeeting);
  if (outcome != Outcome::Done) return outcome;
  if (!ReadsAccessGiven(mMeeting.reply, tag)) {
    return RefusePassword(unit, ReadRefusal(mMeeting.reply, "AC").value_or(kNeedsPasswordCode));
  }
  mAccessRefusal = 0;
  return Outcome::Done;
}

// A controller that is only busy now will take the password the next time.
Outcome Exchange::RefusePassword(std::uint8_t unit, int code) {
  mAccessRefusal = code;
  if (code == kWrongPasswordCode) mUnits[unit].password.clear();
  return Outcome::NotSupported;
}

}  // namespace kv
