#include <algorithm>

#include "KvCmDrv1/Exchange.h"
#include "KvCmDrv1/wire/Seal.h"
#include "base/Crc32.h"

// How an exchange gets ready: opening a lost link, meeting the unit on a new connection, finding step, and asking what
// became of a request.

namespace kv {
namespace {

constexpr std::size_t kStepReply = 62;         // SY: letters, tag, counter, check, power-up, 40 characters
constexpr std::size_t kInformationReply = 55;  // IN: letters, tag, serial number, state, name

// How long to wait before the link is opened, after so many attempts of this request that led nowhere: it could not be
// opened, or was lost again before the answer. A controller that restarts needs a moment, a network that is down
// minutes.
Duration PauseAfter(int failures) {
  constexpr Duration kFirstPause = std::chrono::milliseconds(100);
  constexpr Duration kLongestPause = std::chrono::seconds(5);
  constexpr int kMostDoublings = 6;
  if (failures == 0) return Duration{};
  return std::min(kFirstPause * (1 << std::min(failures - 1, kMostDoublings)), kLongestPause);
}

}  // namespace

Outcome Exchange::GetReady(std::uint8_t unit, bool needsStep) {
  if (!mLine.IsOpen()) {
    if (const Outcome opened = Reopen(unit); opened != Outcome::Done) return opened;
  }
  if (mUnits[unit].connection != mLine.Connection()) {
    return mLine.GetPort().IsCalled() && unit == mSettings.unit ? GetCaller(unit) : Meet(unit);
  }
  return needsStep && !mUnits[unit].isInStep ? FindStep(unit) : Outcome::Done;
}

Outcome Exchange::Reopen(std::uint8_t unit) {
  if (!mSettings.reconnects) {
    if (mLoss.happened.empty()) NoteLossReason();
    return Outcome::CannotReopen;
  }
  for (int failures = std::max(mLosses - 1, 0);; ++failures) {
    const Duration pause = std::min(PauseAfter(failures), std::max(mDeadline - mPacer.Now(), Duration{}));
    if (!mLine.Pause(pause)) return Outcome::Stopped;
    const Duration rest = mDeadline - mPacer.Now();
    if (rest <= Duration{}) return Outcome::CannotReopen;
    if (mLine.GetPort().IsCalled()) {
      if (const Outcome got = GetCaller(unit); got != Outcome::Done) return got;
      break;
    }
    const std::expected<void, PortError> opened = mLine.Open(rest);
    if (opened) break;
    mLoss = opened.error();
  }
  mSay("Connected again to " + mLine.GetPort().Description());
  return Outcome::Done;
}

Outcome Exchange::Meet(std::uint8_t unit) {
  const Outcome outcome = AskStep(unit);
  return outcome == Outcome::Done ? Introduce(unit) : outcome;
}

Outcome Exchange::MeetAgain(std::uint8_t unit) {
  mUnits[unit].connection = 0;
  return Meet(unit);
}

Outcome Exchange::Introduce(std::uint8_t unit) {
  Outcome outcome = Identify(unit);
  if (outcome != Outcome::Done) return outcome;
  if (!mUnits[unit].password.empty()) {
    // A password that is refused now will be asked for by the request that needs it.
    outcome = GiveAccess(unit);
    if (outcome == Outcome::Lost || outcome == Outcome::Stopped) return outcome;
  }
  mUnits[unit].connection = mLine.Connection();
  return Outcome::Done;
}

// Step was lost because something was not answered as it should have been. Who answers now as if its power had failed
// meanwhile may be another controller.
Outcome Exchange::FindStep(std::uint8_t unit) {
  UnitState& state = mUnits[unit];
  const bool isMet = state.connection == mLine.Connection();
  const std::uint16_t powerUp = state.powerUp;
  const std::uint16_t counter = state.counter;
  const Outcome outcome = AskStep(unit);
  if (outcome != Outcome::Done || !isMet) return outcome;
  if (state.powerUp == powerUp && IsNewer(state.counter, counter)) return Outcome::Done;
  state.connection = 0;
  return Introduce(unit);
}

Outcome Exchange::AskStep(std::uint8_t unit) {
  std::uint16_t tag = 0;
  Outcome outcome = Outcome::Done;
  bool mayBeRestarting = false;
  do {
    mayBeRestarting = MayBeRestarting(unit);
    tag = NextTag();
    outcome = Ask({unit, mWriter.FindStep(unit, tag), TaggedRead(kStepReply), {}}, mStep);
  } while (IsUnanswered(outcome) && mayBeRestarting);
  if (outcome != Outcome::Done) return outcome;
  const std::optional<StepReply> step = ReadStep(mStep.reply, tag);
  if (!step) return Outcome::NotIdentified;
  mStepReply = *step;
  mUnits[unit].powerUp = step->powerUp;
  mUnits[unit].isInStep = true;
  return Outcome::Done;
}

Outcome Exchange::Identify(std::uint8_t unit) {
  Outcome outcome = Ask({unit, "ID", FactsOf("ID"), {}}, mMeeting);
  if (outcome != Outcome::Done) return outcome;
  const std::optional<VersionInfo> version = ReadIdentification(mMeeting.reply);

  const std::uint16_t tag = NextTag();
  outcome = Ask({unit, mWriter.Information(unit, tag), TaggedRead(kInformationReply), {}}, mMeeting);
  if (outcome != Outcome::Done) return outcome;
  const std::optional<Channel::ControllerInfo> info = ReadInformation(mMeeting.reply, tag);

  if (!version || !info) return Outcome::NotIdentified;
  return Compare(mUnits[unit], {info->serialNumber, *version});
}

Outcome Exchange::Compare(UnitState& unit, const Identity& found) {
  if (mOtherName = NameOfOther(unit, found); !mOtherName.empty()) {
    if (mIsAdmitting) return Outcome::OtherController;  // a caller is dropped, and the next one asked
    mIsOtherController = true;
    mLine.Close();
    mSay("Connection closed: another controller answered");
    return Outcome::OtherController;
  }
  // Who was told to reset may still answer as before for a moment.
  const bool isReset = unit.identity && found.version.model != unit.identity->version.model;
  if (isReset || mPacer.Now() >= unit.restartUntil) unit.modelMayChange = false;
  unit.identity = found;
  unit.isAsciiOnly = UnderstandsAsciiOnly(found.version.model);
  return Outcome::Done;
}

// Who answers in place of whom; empty when it is the controller that is meant.
std::string Exchange::NameOfOther(const UnitState& unit, const Identity& found) const {
  const bool isLinksOwn = &unit == &mUnits[mSettings.unit];
  if (isLinksOwn && mSettings.serialNumber && found.serialNumber != *mSettings.serialNumber) {
    return NameOf(found) + " instead of serial number " + std::to_string(*mSettings.serialNumber);
  }
  const std::optional<Identity>& known = unit.identity;
  const bool isSameModel = unit.modelMayChange || !known || found.version.model == known->version.model;
  const bool isOther = known && (found.serialNumber != known->serialNumber || !isSameModel);
  return isOther ? NameOf(found) + " instead of " + NameOf(*known) : "";
}

std::expected<void, LinkError> Exchange::Recognise(std::uint8_t unit, const VersionInfo& version) {
  const std::optional<Identity>& known = mUnits[unit].identity;
  return Recognise(unit, {known ? known->serialNumber : 0, version});
}

std::expected<void, LinkError> Exchange::Recognise(std::uint8_t unit, std::uint32_t serialNumber) {
  const std::optional<Identity>& known = mUnits[unit].identity;
  return Recognise(unit, {serialNumber, known ? known->version : VersionInfo{}});
}

std::expected<void, LinkError> Exchange::Recognise(std::uint8_t unit, const Identity& found) {
  if (!mUnits[unit].identity) return {};
  const Outcome outcome = Compare(mUnits[unit], found);
  if (outcome == Outcome::Done) return {};
  return std::unexpected(Explain(outcome));
}

Outcome Exchange::Ask(const TextRequest& request, Buffers& buffers) {
  const TextFault fault = EncodeFrame(request.unit, request.text, buffers.frame);
  return fault == TextFault::None ? TryText(request, buffers) : Outcome::Damaged;
}

// The last request other than a read tells: when it was executed since ours went out it must be ours, and when none
// was, ours was not. A controller that has restarted knows nothing of what it did before and counts anew; only a text
// with a tag is then known for ours, a settled one may have been sent and answered earlier since the restart.
Outcome Exchange::WhatBecameOf(const TextRequest& request) {
  const Outcome outcome = FindStep(request.unit);
  if (outcome != Outcome::Done) return LeavesUnsure(outcome) ? Outcome::Unsure : outcome;

  const std::uint16_t counterNow = mUnits[request.unit].counter;
  const bool hasRestarted = mStepReply.powerUp != mPowerUpBefore;
  const int since = StepsAhead(mStepReply.counter, mCounterBefore);
  const bool isSince = mStepReply.counter != 0 && since >= 1 && since < StepsAhead(counterNow, mCounterBefore);
  const bool isOurs = mStepReply.counter != 0 && mStepReply.check == Crc32(request.text);
  if (isOurs && (hasRestarted ? !request.facts.isSettled : isSince)) {
    mMain.reply = mStepReply.reply;
    return Outcome::Done;
  }
  return hasRestarted || isSince ? Outcome::Unsure : Outcome::NotExecuted;
}

// The answer to `request` has an older counter than the one before: its controller has restarted, or is another one.
// Only who is known is believed.
Outcome Exchange::WhoAnswered(const TextRequest& request) {
  const Outcome met = MeetAgain(request.unit);
  if (met == Outcome::Done || request.facts.kind == RequestKind::Read) return met;
  return met == Outcome::OtherController ? met : Outcome::Unsure;
}

bool Exchange::MayGoOn() {
  return mSettings.reconnects && mPacer.Now() < mDeadline && !mLine.StopAsked();
}

void Exchange::LoseLink() {
  ++mLosses;
  NoteLossReason();
  mLine.DropPartner();  // a port that controllers dial in to goes on listening for its return
  mSay("Connection lost: " + mLoss.happened);
}

// Not every port knows more than that the connection does not stand any more.
void Exchange::NoteLossReason() {
  mLoss = mLine.GetPort().LossReason();
  if (!mLoss.happened.empty()) return;
  mLoss = {"the other side has gone", "the controller was switched off, or the network between has failed",
           "open the link again, or let the communication settings reconnect a lost link"};
}

}  // namespace kv
