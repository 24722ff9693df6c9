#include "KvCmDrv1/Exchange.h"

#include <algorithm>
#include <array>
#include <utility>

#include "KvCmDrv1/wire/Seal.h"
#include "link/ControllerErrorText.h"
#include "link/DownloadEngine.h"

namespace kv {
namespace {

// Characters that finding step, identification and access may add to a request on a new connection.
constexpr std::size_t kMeetingBytes = 400;

// Block operations that change nothing, and answer at once.
bool IsReadOperation(std::uint16_t opCode) {
  constexpr auto kReads = std::to_array<std::uint16_t>({0, 1, 7, 8, 256, 257, 258, 259});
  return std::ranges::find(kReads, opCode) != kReads.end();
}

LinkError TextFaultError(TextFault fault) {
  LinkError error;
  error.code = LinkErrorCode::BadArgument;
  error.cause = "a fault of the program, or of the file that it works on";
  error.cure = "check the file; if it is right, keep the trace for an error report";
  switch (fault) {
    case TextFault::None:
      break;
    case TextFault::Empty:
      error.happened = "the command is empty";
      break;
    case TextFault::TooLong:
      error.happened = "the command is longer than 1100 characters";
      break;
    case TextFault::BadCharacter:
      error.happened = "the command holds a character that no frame can carry";
      break;
    case TextFault::TailIsFrame:
      error.happened = "the end of the command could be taken for a command of its own";
      break;
  }
  return error;
}

}  // namespace

// Takes the reply to one text request.
class Exchange::TextJudge final : public ReplyJudge {
 public:
  TextJudge(const TextRequest& request, const UnitState& unit, std::string& reply)
      : mRequest(request), mUnit(unit), mReply(reply), mSeal(request.text) {}

  bool Accepts(const Received& received) override {
    if (received.kind != Received::Kind::Frame || received.frame.unit != mRequest.unit) return false;
    const std::optional<SealedReply> sealed = mSeal.Open(received.frame);
    if (!sealed || !IsOurs(*sealed)) return false;
    mReply = sealed->text;
    mCounter = sealed->counter;
    return true;
  }

  [[nodiscard]] std::uint16_t Counter() const { return mCounter; }

 private:
  // A text with a tag was sent for this request only, and so was its refusal's seal; a settled text may have been sent
  // before.
  [[nodiscard]] bool IsOurs(const SealedReply& sealed) const {
    if (mRequest.facts.isSettled) return IsNewer(sealed.counter, mUnit.counter);
    return EchoesTag(sealed.text, mRequest.text) || ReadRefusal(sealed.text, mRequest.text).has_value();
  }

  const TextRequest& mRequest;
  const UnitState& mUnit;
  std::string& mReply;
  Seal mSeal;
  std::uint16_t mCounter = 0;
};

// Takes the reply to one block message.
class Exchange::BlockJudge final : public ReplyJudge {
 public:
  BlockJudge(const BlockMessage& request, std::string& payload) : mRequest(request), mPayload(payload) {}

  bool Accepts(const Received& received) override {
    const BlockMessage& block = received.block;
    if (received.kind != Received::Kind::Block || block.unit != mRequest.unit) return false;
    if (block.sequence != mRequest.sequence || block.fields != mRequest.fields) return false;
    mPayload = block.payload;
    mStatus = block.status;
    return true;
  }

  [[nodiscard]] int Status() const { return mStatus; }

 private:
  const BlockMessage& mRequest;
  std::string& mPayload;
  int mStatus = 0;
};

Exchange::Exchange(Pacer& pacer, Line& line, const ExchangeSettings& settings, Say say)
    : mPacer(pacer),
      mLine(line),
      mSettings(settings),
      mSay(std::move(say)),
      mUnits(256),
      mRandom(std::random_device{}()) {
  mTag = static_cast<std::uint16_t>(mRandom());
}

std::expected<std::string_view, LinkError> Exchange::SendText(const TextRequest& given) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  if (const TextFault fault = EncodeFrame(given.unit, given.text, mMain.frame); fault != TextFault::None) {
    return std::unexpected(TextFaultError(fault));
  }
  TextRequest request = given;
  request.text = TextOf(mMain.frame);  // the caller's own may be built anew by a request that is refused meanwhile
  const UnderWay underWay(*this);
  Begin(request.unit, mMain.frame.size() + request.facts.longestReply, request.notAfter);
  if (request.facts.resets) mDeadline += kRestartTime - RestartRest(request.unit);
  const Patience before = PatienceWith(request.unit);
  Outcome outcome = RunText(request);
  if (outcome == Outcome::Done && ReadRefusal(mMain.reply, request.text) == kNeedsPasswordCode) {
    outcome = RunWithAccess(request.unit, [&] { return RunText(request); });
  }
  Conclude(request.unit, outcome);
  const bool isRefused = outcome == Outcome::Done && ReadRefusal(mMain.reply, request.text).has_value();
  if (request.facts.resets && isRefused) {
    RestorePatience(request.unit, before);
  } else if (request.facts.resets && mWentOut) {
    NoteRestart(request.unit);
  }
  if (outcome != Outcome::Done) return std::unexpected(ExplainRequest(outcome));
  return mMain.reply;
}

std::expected<BlockReply, LinkError> Exchange::SendBlock(const BlockRequest& request) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  const UnderWay underWay(*this);
  const std::size_t bytes = 2 * (kBlockHead + kBlockCheck) + request.payload.size() + request.replyPayload;
  Begin(request.unit, bytes, request.notAfter);
  Outcome outcome = RunBlock(request);
  if (outcome == Outcome::Done && mBlockStatus == kBlockRefused + kNeedsPasswordCode) {
    outcome = RunWithAccess(request.unit, [&] { return RunBlock(request); });
  }
  Conclude(request.unit, outcome);
  if (outcome != Outcome::Done) return std::unexpected(ExplainRequest(outcome));
  return BlockReply{mBlockStatus, mMain.reply};
}

std::expected<void, LinkError> Exchange::MeetUnit(std::uint8_t unit) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  if (HasMet(unit)) return {};
  const UnderWay underWay(*this);
  Begin(unit, 0, std::nullopt);
  Outcome outcome = GetReady(unit, false);
  while (outcome == Outcome::Lost) {
    LoseLink();
    outcome = MayGoOn() ? GetReady(unit, false) : Outcome::CannotReopen;
  }
  if (outcome == Outcome::Done) return {};
  Conclude(unit, outcome);
  return std::unexpected(Explain(outcome));
}

std::expected<void, LinkError> Exchange::AwaitCaller(std::uint8_t unit, Duration limit) {
  const UnderWay underWay(*this);
  mStart = mPacer.Now();
  mDropped = 0;
  return AdmitCaller(unit, mStart + limit);
}

bool Exchange::HasMet(std::uint8_t unit) const {
  const bool isKnown = mLine.IsOpen() && !mIsDoubtful && mUnits[unit].connection == mLine.Connection();
  return isKnown && !IsLongUnheard(unit, mPacer.Now());
}

void Exchange::Begin(std::uint8_t unit, std::size_t wireBytes, std::optional<Instant> notAfter) {
  mStart = mPacer.Now();
  mDeadline = mStart + mSettings.tries * (mSettings.timeOut + mLine.WireTime(wireBytes + kMeetingBytes));
  mDeadline += RestartRest(unit);
  if (notAfter) mDeadline = std::min(mDeadline, *notAfter);
  if (std::exchange(mIsDoubtful, false)) {
    for (UnitState& each : mUnits) each.connection = 0;
  }
  if (IsLongUnheard(unit, mStart)) mUnits[unit].connection = 0;
}

// Who did not answer may have been taken away, and another one put in its place.
void Exchange::Conclude(std::uint8_t unit, Outcome outcome) {
  if (outcome == Outcome::Done) {
    ++mQuality.exchanges;
    return;
  }
  ++mQuality.errors;
  if (outcome != Outcome::NotSupported) mUnits[unit].connection = 0;
}

void Exchange::NoteRestart(std::uint8_t unit) {
  UnitState& state = mUnits[unit];
  state.connection = 0;
  state.modelMayChange = true;
  state.restartUntil = mPacer.Now() + kRestartTime;
}

Exchange::Patience Exchange::PatienceWith(std::uint8_t unit) const {
  return {mUnits[unit].restartUntil, mUnits[unit].modelMayChange};
}

void Exchange::RestorePatience(std::uint8_t unit, const Patience& before) {
  mUnits[unit].restartUntil = before.restartUntil;
  mUnits[unit].modelMayChange = before.modelMayChange;
}

Duration Exchange::RestartRest(std::uint8_t unit) const {
  const Instant until = mUnits[unit].restartUntil;
  return until == Instant{} ? Duration{} : std::max(until - mPacer.Now(), Duration{});
}

bool Exchange::MayBeRestarting(std::uint8_t unit) const {
  return mPacer.Now() < std::min(mUnits[unit].restartUntil, mDeadline);
}

Outcome Exchange::RunText(const TextRequest& request) {
  const bool isRead = request.facts.kind == RequestKind::Read;
  while (true) {
    Outcome outcome = GetReady(request.unit, request.facts.isSettled || !isRead);
    if (outcome == Outcome::Done && mWentOut && !isRead) {
      outcome = WhatBecameOf(request);
    } else if (outcome == Outcome::Done) {
      // A link that has gone quietly is noticed before a request that could not be sent again.
      if (!isRead) outcome = mLine.DropInput();
      if (outcome == Outcome::Done) outcome = TryText(request, mMain);
      if (isRead && IsUnanswered(outcome) && MayBeRestarting(request.unit)) {
        mUnits[request.unit].connection = 0;  // met before the reset began
        continue;
      }
    } else if (mWentOut && !isRead && LeavesUnsure(outcome)) {
      return Outcome::Unsure;
    }
    if (outcome != Outcome::Lost) return outcome;
    LoseLink();
    if (!MayGoOn()) return mWentOut && !isRead ? Outcome::Unsure : Outcome::CannotReopen;
  }
}

Outcome Exchange::TryText(const TextRequest& request, Buffers& buffers) {
  const bool isMain = &buffers == &mMain;
  const CommandFacts& facts = request.facts;
  UnitState& unit = mUnits[request.unit];
  if (isMain) {
    mCounterBefore = unit.counter;
    mPowerUpBefore = unit.powerUp;
  }
  if (facts.resets) unit.restartUntil = mPacer.Now() + kRestartTime;
  TextJudge judge(request, unit, buffers.reply);
  Outcome worst = Outcome::Silence;  // damage in any try tells more than silence in the last
  for (int tryNumber = 1;; ++tryNumber) {
    const std::uint64_t sentBefore = mLine.BytesSent();
    const Outcome outcome =
        OneTry(judge, {buffers.frame, facts.longestReply, facts.isSlow, ReserveOf(facts), tryNumber});
    if (isMain) {
      mWentOut = mWentOut || mLine.BytesSent() != sentBefore;
      mTriesUsed = tryNumber;
    }
    if (outcome == Outcome::Done) {
      const bool isNext = IsNewer(judge.Counter(), unit.counter);
      unit.counter = judge.Counter();
      unit.heard = mLine.AnswerTime();
      if (tryNumber == 1 && !facts.isSlow) {
        mRoundTrip.Sample(mLine.AnswerTime() - mTryStart - mLine.WireTime(buffers.frame.size() + buffers.reply.size()));
      }
      return isNext || !isMain ? outcome : WhoAnswered(request);
    }
    if (facts.isSettled || facts.kind != RequestKind::Read) unit.isInStep = false;
    if (!IsUnanswered(outcome)) return outcome;
    if (outcome != Outcome::Damaged) mRoundTrip.Silence();
    worst = std::max(worst, outcome);
    if (isMain && IsLongUnheard(request.unit, mPacer.Now())) {
      if (const Outcome met = MeetAgain(request.unit); met != Outcome::Done) {
        return facts.kind == RequestKind::Once && LeavesUnsure(met) ? Outcome::Unsure : met;
      }
    }
    if (facts.kind == RequestKind::Once) {
      if (const Outcome became = WhatBecameOf(request); became != Outcome::NotExecuted) return became;
    }
    if (tryNumber >= mSettings.tries || mPacer.Now() >= mDeadline) return worst;
    if (facts.isSettled && !unit.isInStep) {
      if (const Outcome found = FindStep(request.unit); found != Outcome::Done) return found;
    }
    ++mQuality.repeats;
  }
}

Outcome Exchange::RunBlock(const BlockRequest& request) {
  const bool isRead = IsReadOperation(request.fields.opCode);
  while (true) {
    Outcome outcome = GetReady(request.unit, false);
    if (outcome == Outcome::Done) {
      if (mUnits[request.unit].isAsciiOnly) return Outcome::NotSupported;
      if (mWentOut && !isRead) return Outcome::Unsure;  // the new connection does not know the sequence number
      if (!isRead) outcome = mLine.DropInput();
      if (outcome == Outcome::Done) outcome = TryBlock(request);
      if (isRead && IsUnanswered(outcome) && MayBeRestarting(request.unit)) {
        mUnits[request.unit].connection = 0;
        continue;
      }
    } else if (mWentOut && !isRead && LeavesUnsure(outcome)) {
      return Outcome::Unsure;
    }
    if (outcome != Outcome::Lost) return outcome;
    LoseLink();
    if (!MayGoOn()) return mWentOut && !isRead ? Outcome::Unsure : Outcome::CannotReopen;
  }
}

Outcome Exchange::TryBlock(const BlockRequest& request) {
  if (mSequenceConnection != mLine.Connection()) {
    mSequenceConnection = mLine.Connection();
    mSequence = static_cast<std::uint16_t>(mRandom());
  }
  const BlockMessage message{
      .unit = request.unit, .status = 0, .sequence = ++mSequence, .fields = request.fields, .payload = request.payload};
  EncodeBlockRequest(message, mMain.frame);
  BlockJudge judge(message, mMain.reply);
  const bool isSlow = !IsReadOperation(request.fields.opCode);
  const std::size_t replyBytes = kBlockHead + request.replyPayload + kBlockCheck;
  Outcome worst = Outcome::Silence;
  for (int tryNumber = 1;; ++tryNumber) {
    const std::uint64_t sentBefore = mLine.BytesSent();
    const Outcome outcome = OneTry(judge, {mMain.frame, replyBytes, isSlow, Duration{}, tryNumber});
    mWentOut = mWentOut || mLine.BytesSent() != sentBefore;
    mTriesUsed = tryNumber;
    if (outcome == Outcome::Done) {
      mBlockStatus = judge.Status();
      mUnits[request.unit].heard = mLine.AnswerTime();
      if (tryNumber == 1 && !isSlow)
        mRoundTrip.Sample(mLine.AnswerTime() - mTryStart - mLine.WireTime(mMain.frame.size() + replyBytes));
      return outcome;
    }
    if (!IsUnanswered(outcome)) return outcome;
    if (outcome != Outcome::Damaged) mRoundTrip.Silence();
    worst = std::max(worst, outcome);
    if (tryNumber >= mSettings.tries || mPacer.Now() >= mDeadline) return worst;
    if (IsLongUnheard(request.unit, mPacer.Now())) {
      if (const Outcome met = MeetAgain(request.unit); met != Outcome::Done) {
        return !IsReadOperation(request.fields.opCode) && LeavesUnsure(met) ? Outcome::Unsure : met;
      }
    }
    ++mQuality.repeats;
  }
}

Outcome Exchange::OneTry(ReplyJudge& judge, const Try& one) {
  mTryStart = mPacer.Now();
  const Instant utmost = mDeadline - one.reserve;
  const Duration onWire = mLine.WireTime(one.frame.size() + one.replyBytes);
  const Instant end = std::min(mTryStart + onWire + WaitOf(one.isSlow, one.number), utmost);
  if (mTryStart >= end) return Outcome::Silence;
  const auto sending = one.number == 1 ? Line::Sending::New : Line::Sending::Again;
  const Outcome sent = mLine.Send(one.frame, sending, mTryStart, end);
  if (sent != Outcome::Done) return sent;
  const TryLimits limits{end, utmost, mSettings.timeOut / 2, one.number >= mSettings.tries};
  const Outcome outcome = mLine.Await(judge, mTryStart, limits);
  return IsUnanswered(outcome) && IsReplaced() ? Outcome::Lost : outcome;
}

// The first try waits as long as replies have been taking, the last one as long as they may; those between wait a part
// of that at least, so that a controller that is away for a moment is not asked three times within that moment.
Duration Exchange::WaitOf(bool isSlow, int tryNumber) const {
  constexpr int kPartBetween = 4;
  if (isSlow || tryNumber >= mSettings.tries) return mSettings.timeOut;
  const Duration learnt = mRoundTrip.TimeOut(mSettings.timeOut);
  return tryNumber == 1 ? learnt : std::max(learnt, mSettings.timeOut / kPartBetween);
}

// Time that a request which must not be done twice leaves for asking what became of it.
Duration Exchange::ReserveOf(const CommandFacts& facts) const {
  constexpr std::size_t kStepBytes = 110;  // request and reply of SY
  if (facts.kind != RequestKind::Once) return Duration{};
  return std::min(mSettings.timeOut / 4, mRoundTrip.TimeOut(mSettings.timeOut)) + mLine.WireTime(kStepBytes);
}

void Exchange::LoseStep() {
  for (UnitState& unit : mUnits) unit.isInStep = false;
}

void Exchange::ForgetUnits() {
  mUnits.assign(mUnits.size(), UnitState{});
  mIsOtherController = false;
  mIsDeclined = false;
}

void Exchange::Abort(bool abort) {
  if (mIsUnderWay || !abort) {
    mLine.RequestAbort(abort);
  } else if (mLine.IsOpen()) {
    (void)mLine.DropInput();  // a loss shows with the next request
  }
}

LinkQuality Exchange::Quality() const {
  LinkQuality quality = mQuality;
  quality.roundTrip = mRoundTrip.Smoothed();
  quality.bytesSent = mLine.BytesSent();
  quality.bytesReceived = mLine.BytesReceived();
  return quality;
}

}  // namespace kv
