#include <utility>

#include "KvCmDrv1/ProtocolClient.h"
#include "link/ControllerErrorText.h"
#include "link/LinkLimits.h"

// How an exchange gets access to a controller that wants its password first.

namespace kv {

using enum ExchangeOutcome;

namespace {

// As often as a person would try.
constexpr int kMostQuestions = 3;

}  // namespace

std::expected<int, LinkError> ProtocolClient::EnsureAccess(std::uint8_t unit) {
  if (auto done = EnsureHandshake(unit); !done) return std::unexpected(std::move(done.error()));
  const auto underWay = BeUnderWay();
  Exchange exchange = Begin(unit, 0);
  const bool isKnown = !mUnits[unit].password.IsEmpty();
  ExchangeOutcome outcome = GiveAccess(exchange);
  if (!isKnown && mAccessRefusal == kWrongPasswordCode) mAccessRefusal = 0;  // nobody has given a wrong one
  if (outcome == NotSupported) outcome = AskUntilGiven(exchange);
  const bool isRefused = outcome == NotSupported;
  auto concluded = Conclude(exchange, isRefused ? Done : outcome);
  if (!concluded) return std::unexpected(std::move(concluded.error()));
  return isRefused ? AccessRefusal() : 0;
}

// Done: the controller takes requests now. NotSupported: it does not.
ExchangeOutcome ProtocolClient::GetAccess(Exchange& exchange) {
  const ExchangeOutcome given = mUnits[exchange.unit].password.IsEmpty() ? NotSupported : GiveAccess(exchange);
  return given == NotSupported ? AskUntilGiven(exchange) : given;
}

ExchangeOutcome ProtocolClient::AskUntilGiven(Exchange& exchange) {
  for (int question = 0; question < kMostQuestions; ++question) {
    if (const ExchangeOutcome asked = AskPassword(exchange); asked != Done) return asked;
    if (const ExchangeOutcome given = GiveAskedFor(exchange); given != NotSupported) return given;
  }
  mIsDeclined = true;
  return NotSupported;
}

// While the user was typing somebody may have moved the cable: the password is for the controller that asked for it.
ExchangeOutcome ProtocolClient::GiveAskedFor(const Exchange& exchange) {
  if (!IsLongUnheard(exchange.unit)) return GiveAccess(exchange);
  ExchangeOutcome outcome = AskSynchronisation(exchange);
  if (outcome == Done) outcome = Identify(exchange);
  return outcome == Done ? GiveAccess(exchange) : outcome;
}

// Asks for the password of the unit, unless there is nobody to ask, or somebody who has said that he does not know it.
// The request does not pay for the time that a person takes.
ExchangeOutcome ProtocolClient::AskPassword(Exchange& exchange) {
  const bool wasWrong = mAccessRefusal == kWrongPasswordCode;
  if (!mAsk || mIsDeclined || (mAccessRefusal != 0 && !wasWrong)) return NotSupported;
  const Instant before = mPacer.Now();
  std::optional<Secret> password = mAsk(exchange.unit, wasWrong);
  const Duration taken = mPacer.Now() - before;
  exchange.start += taken;
  exchange.deadline += taken;
  if (mLine.StopAsked()) return Stopped;
  if (mIsShut) return Closed;
  mIsDeclined = !password;
  mUnits[exchange.unit].password = std::move(password).value_or(Secret());
  return mIsDeclined ? NotSupported : Done;
}

// Gives the password that is known; none is given as blanks. NotSupported: the controller does not take it.
ExchangeOutcome ProtocolClient::GiveAccess(const Exchange& exchange) {
  const std::string_view password = mUnits[exchange.unit].password.View();
  if (password.size() > kLongestPassword) return RefusePassword(exchange.unit, kWrongPasswordCode);
  const std::uint16_t tag = NextTag();
  const std::string_view text = mWriter.GiveAccess(exchange.unit, tag, password);
  const ExchangeOutcome outcome = Ask(exchange, text, TaggedRead(kAccessReply), mHandshakeBuffers);
  mWriter.WipeText();
  Wipe(mHandshakeBuffers.frame);
  if (outcome != Done) return outcome;
  if (!ReadsAccessGiven(mHandshakeBuffers.reply, tag)) {
    return RefusePassword(exchange.unit, ReadRefusal(mHandshakeBuffers.reply, "AC").value_or(kNeedsPasswordCode));
  }
  mAccessRefusal = 0;
  return Done;
}

void ProtocolClient::ForgetPasswords() {
  bool hadOne = false;
  for (UnitState& unit : mUnits) {
    hadOne = hadOne || !unit.password.IsEmpty();
    unit.password.Clear();
  }
  mIsDeclined = false;  // the next user may know one
  if (!hadOne || !mLine.IsOpen()) return;
  mLoss = {"the access that a password had opened was ended", "another user works from now on", "open the link again"};
  mLine.DropPartner();
}

// A controller that is only busy now will take the password the next time.
ExchangeOutcome ProtocolClient::RefusePassword(std::uint8_t unit, int code) {
  mAccessRefusal = code;
  if (code == kWrongPasswordCode) mUnits[unit].password.Clear();
  return NotSupported;
}

}  // namespace kv
