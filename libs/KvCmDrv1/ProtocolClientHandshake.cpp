#include <algorithm>

#include "KvCmDrv1/ProtocolClient.h"
#include "KvCmDrv1/wire/Seal.h"
#include "base/Crc32.h"
#include "link/ReconnectPauses.h"

// The handshake: opening a lost link, asking a unit who it is and for its counter, and asking what became of a request.

namespace kv {

using enum ExchangeOutcome;

ExchangeOutcome ProtocolClient::GetReady(Exchange& exchange) {
  if (!mLine.IsOpen()) {
    if (const ExchangeOutcome opened = Reopen(exchange); opened != Done) return opened;
  }
  if (mUnits[exchange.unit].handshake != mLine.ConnectionNumber()) {
    const bool isCaller = mLine.GetPort().IsCalled() && exchange.unit == mSettings.unit;
    return isCaller ? GetCaller(exchange) : Handshake(exchange);
  }
  const bool mustSynchronise = exchange.UsesCounter() && !mUnits[exchange.unit].isSynchronised;
  return mustSynchronise ? Resynchronise(exchange) : Done;
}

// How long to wait counts the attempts of this request that led nowhere: the link could not be opened, or was lost
// again before the answer.
ExchangeOutcome ProtocolClient::Reopen(const Exchange& exchange) {
  if (!mSettings.reconnects) {
    if (mLoss.happened.empty()) NoteLossReason();
    return CannotReopen;
  }
  for (int failures = std::max(exchange.losses - 1, 0);; ++failures) {
    const Duration pause =
        std::min(kPausesInRequest.After(failures), std::max(exchange.deadline - mPacer.Now(), Duration{}));
    if (!mLine.Pause(pause)) return Stopped;
    const Duration rest = exchange.deadline - mPacer.Now();
    if (rest <= Duration{}) return CannotReopen;
    if (mLine.GetPort().IsCalled()) {
      if (const ExchangeOutcome got = GetCaller(exchange); got != Done) return got;
      break;
    }
    const std::expected<void, PortError> opened = mLine.Open(rest);
    if (opened) break;
    mLoss = opened.error();
  }
  mSay("Connected again to " + mLine.GetPort().Description());
  return Done;
}

ExchangeOutcome ProtocolClient::Handshake(const Exchange& exchange) {
  const ExchangeOutcome outcome = AskSynchronisation(exchange);
  return outcome == Done ? Introduce(exchange) : outcome;
}

ExchangeOutcome ProtocolClient::RepeatHandshake(const Exchange& exchange) {
  mUnits[exchange.unit].handshake = 0;
  return Handshake(exchange);
}

ExchangeOutcome ProtocolClient::Introduce(const Exchange& exchange) {
  ExchangeOutcome outcome = Identify(exchange);
  if (outcome != Done) return outcome;
  if (!mUnits[exchange.unit].password.IsEmpty()) {
    // A password that is refused now will be asked for by the request that needs it.
    outcome = GiveAccess(exchange);
    if (outcome == Lost || outcome == Stopped) return outcome;
  }
  mUnits[exchange.unit].handshake = mLine.ConnectionNumber();
  return Done;
}

// Something was not answered as it should have been, so the counter is asked for again. Who answers now as if its power
// had failed meanwhile may be another controller.
ExchangeOutcome ProtocolClient::Resynchronise(const Exchange& exchange) {
  UnitState& state = mUnits[exchange.unit];
  const bool isIdentified = state.handshake == mLine.ConnectionNumber();
  const std::uint16_t powerUp = state.powerUp;
  const std::uint16_t counter = state.counter;
  const ExchangeOutcome outcome = AskSynchronisation(exchange);
  if (outcome != Done || !isIdentified) return outcome;
  if (state.powerUp == powerUp && IsNewer(state.counter, counter)) return Done;
  state.handshake = 0;
  return Introduce(exchange);
}

ExchangeOutcome ProtocolClient::AskSynchronisation(const Exchange& exchange) {
  std::uint16_t tag = 0;
  ExchangeOutcome outcome = Done;
  bool mayBeRestarting = false;
  do {
    mayBeRestarting = MayBeRestarting(exchange);
    tag = NextTag();
    outcome = Ask(exchange, mWriter.Synchronise(exchange.unit, tag), TaggedRead(kSynchronisationReply),
                  mSynchronisationBuffers);
  } while (IsUnanswered(outcome) && mayBeRestarting);
  if (outcome != Done) return outcome;
  const std::optional<SynchronisationReply> reply = ReadSynchronisation(mSynchronisationBuffers.reply, tag);
  if (!reply) return NotIdentified;
  mSynchronised = *reply;
  mUnits[exchange.unit].powerUp = reply->powerUp;
  mUnits[exchange.unit].isSynchronised = true;
  return Done;
}

ExchangeOutcome ProtocolClient::Identify(const Exchange& exchange) {
  ExchangeOutcome outcome = Ask(exchange, "ID", CommandFactsOf("ID"), mHandshakeBuffers);
  if (outcome != Done) return outcome;
  const std::optional<VersionInfo> version = ReadIdentification(mHandshakeBuffers.reply);

  const std::uint16_t tag = NextTag();
  outcome = Ask(exchange, mWriter.Information(exchange.unit, tag), TaggedRead(kInformationReply), mHandshakeBuffers);
  if (outcome != Done) return outcome;
  const std::optional<Channel::ControllerInfo> info = ReadInformation(mHandshakeBuffers.reply, tag);

  if (!version || !info) return NotIdentified;
  mUnits[exchange.unit].project = info->projectName;
  const ExchangeOutcome compared = Compare(mUnits[exchange.unit], {info->serialNumber, *version});
  const bool isAdmission = exchange.role == Exchange::Role::Admission;  // a caller is dropped, and the next one asked
  return compared == OtherController && !isAdmission ? ShutOutOther() : compared;
}

ExchangeOutcome ProtocolClient::Compare(UnitState& unit, const Identity& found) {
  mOtherName = NameOfOther(unit, found);
  if (!mOtherName.empty()) return OtherController;
  // Who was told to reset may still answer as before for a moment.
  const bool isReset = unit.identity && found.version.model != unit.identity->version.model;
  if (isReset) unit.modelBefore = unit.identity->version.model;
  if (isReset || mPacer.Now() >= unit.restartUntil) unit.modelMayChange = false;
  unit.identity = found;
  unit.isAsciiOnly = UnderstandsAsciiOnly(found.version.model);
  return Done;
}

ExchangeOutcome ProtocolClient::ShutOutOther() {
  mIsOtherController = true;
  mLine.Close();
  mSay("Connection closed: another controller answered");
  return OtherController;
}

// Who answers in place of whom; empty when it is the controller that is meant.
std::string ProtocolClient::NameOfOther(const UnitState& unit, const Identity& found) const {
  const bool isLinksOwn = &unit == &mUnits[mSettings.unit];
  if (isLinksOwn && mSettings.serialNumber && found.serialNumber != *mSettings.serialNumber) {
    return NameOf(found) + " instead of serial number " + std::to_string(*mSettings.serialNumber);
  }
  const std::optional<Identity>& known = unit.identity;
  const bool isSameModel = unit.modelMayChange || !known || found.version.model == known->version.model ||
                           found.version.model == unit.modelBefore;
  const bool isOther = known && (found.serialNumber != known->serialNumber || !isSameModel);
  return isOther ? NameOf(found) + " instead of " + NameOf(*known) : "";
}

std::expected<void, LinkError> ProtocolClient::Recognise(std::uint8_t unit, const VersionInfo& version) {
  const std::optional<Identity>& known = mUnits[unit].identity;
  return Recognise(unit, {known ? known->serialNumber : 0, version});
}

std::expected<void, LinkError> ProtocolClient::Recognise(std::uint8_t unit, std::uint32_t serialNumber) {
  const std::optional<Identity>& known = mUnits[unit].identity;
  return Recognise(unit, {serialNumber, known ? known->version : VersionInfo{}});
}

std::expected<void, LinkError> ProtocolClient::Recognise(std::uint8_t unit, const Identity& found) {
  if (!mUnits[unit].identity) return {};
  if (Compare(mUnits[unit], found) == Done) return {};
  return std::unexpected(Explain(ShutOutOther()));
}

ExchangeOutcome ProtocolClient::Ask(const Exchange& exchange, std::string_view text, const CommandFacts& facts,
                                    Exchange::Buffers& buffers) {
  using enum Exchange::Role;
  if (EncodeFrame(exchange.unit, text, buffers.frame) != TextFault::None) return Damaged;
  const Exchange::Role role = exchange.role == Admission ? Admission : Handshake;
  Exchange asked(exchange.unit, exchange.start, exchange.deadline, role);
  asked.CarryText(text, facts, mUnits[exchange.unit], buffers);
  return TryUntilAnswered(asked);
}

// SY tells which request other than a read was executed last: when one was executed since ours went out it must be
// ours, and when none was, ours was not. A controller that has restarted knows nothing of what it did before and counts
// anew; only a text with a tag is then known for ours, a settled one may have been sent and answered earlier since the
// restart. A block message is not told of: a new connection does not know its sequence number.
ExchangeOutcome ProtocolClient::WhatBecameOf(Exchange& exchange) {
  if (!exchange.IsText()) return Unsure;
  const ExchangeOutcome outcome = Resynchronise(exchange);
  if (outcome != Done) return LeavesUnsure(outcome) ? Unsure : outcome;

  const SynchronisationReply& last = mSynchronised;
  const bool hasRestarted = last.powerUp != exchange.powerUpBefore;
  const int since = StepsAhead(last.counter, exchange.counterBefore);
  const int sinceNow = StepsAhead(mUnits[exchange.unit].counter, exchange.counterBefore);
  const bool isSince = last.counter != 0 && since >= 1 && since < sinceNow;
  const bool isOurs = last.counter != 0 && last.check == Crc32(exchange.text);
  if (isOurs && (hasRestarted ? !exchange.facts.isSettled : isSince)) {
    exchange.Reply() = last.reply;
    return Done;
  }
  return hasRestarted || isSince ? Unsure : NotExecuted;
}

// The answer has an older counter than the one before: its controller has restarted, or is another one. Only who is
// known is believed.
ExchangeOutcome ProtocolClient::WhoAnswered(const Exchange& exchange) {
  const ExchangeOutcome done = RepeatHandshake(exchange);
  if (done == Done || exchange.IsRead() || done == OtherController) return done;
  return Unsure;
}

}  // namespace kv
