#include "KvCmDrv1/ProtocolClient.h"

#include <algorithm>
#include <utility>

#include "KvCmDrv1/wire/AsciiCodec.h"

namespace kv {

using enum ExchangeOutcome;

namespace {

// Characters that the handshake and access may add to a request on a new connection.
constexpr std::size_t kHandshakeBytes = 400;

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

ProtocolClient::ProtocolClient(Pacer& pacer, Line& line, const ExchangeSettings& settings, Say say)
    : mPacer(pacer),
      mLine(line),
      mSettings(settings),
      mSay(std::move(say)),
      mUnits(256),
      mRandom(std::random_device{}()) {
  mTag = static_cast<std::uint16_t>(mRandom());
}

std::expected<std::string_view, LinkError> ProtocolClient::SendText(const TextRequest& request) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  const TextFault fault = EncodeFrame(request.unit, request.text, mRequestBuffers.frame);
  if (fault != TextFault::None) return std::unexpected(TextFaultError(fault));
  const auto underWay = BeUnderWay();
  const CommandFacts& facts = request.facts;
  Exchange exchange = Begin(request.unit, mRequestBuffers.frame.size() + facts.longestReply, request.notAfter);
  // The caller's own text may be built anew by a request that is refused meanwhile.
  exchange.CarryText(TextOf(mRequestBuffers.frame), facts, mUnits[request.unit], mRequestBuffers);
  exchange.onlyOn = request.onlyOn;
  if (facts.resets) exchange.deadline += kRestartTime - RestartRest(request.unit);
  const Patience before = PatienceWith(request.unit);
  const ExchangeOutcome outcome = RunWithAccess(exchange);
  auto concluded = Conclude(exchange, outcome);
  if (facts.resets && outcome == Done && exchange.Refusal()) {
    RestorePatience(request.unit, before);
  } else if (facts.resets && exchange.wentOut) {
    NoteRestart(request.unit);
  }
  if (!concluded) return std::unexpected(std::move(concluded.error()));
  return exchange.Reply();
}

std::expected<BlockReply, LinkError> ProtocolClient::SendBlock(const BlockRequest& request) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  const auto underWay = BeUnderWay();
  const std::size_t bytes = 2 * (kBlockHead + kBlockCheck) + request.payload.size() + request.replyPayload;
  Exchange exchange = Begin(request.unit, bytes, request.notAfter);
  exchange.CarryBlock(request, mRequestBuffers);
  exchange.onlyOn = request.onlyOn;
  const ExchangeOutcome outcome = RunWithAccess(exchange);
  if (auto concluded = Conclude(exchange, outcome); !concluded) return std::unexpected(std::move(concluded.error()));
  return BlockReply{exchange.status, exchange.Reply()};
}

std::expected<void, LinkError> ProtocolClient::EnsureHandshake(std::uint8_t unit) {
  if (std::optional<LinkError> refused = Refuse()) return std::unexpected(std::move(*refused));
  if (HasHandshake(unit)) return {};
  const auto underWay = BeUnderWay();
  Exchange exchange = Begin(unit, 0);
  ExchangeOutcome outcome = GetReady(exchange);
  while (outcome == Lost) {
    LoseLink(exchange);
    outcome = MayReconnect(exchange) ? GetReady(exchange) : CannotReopen;
  }
  if (outcome == Done) return {};
  return Conclude(exchange, outcome);
}

bool ProtocolClient::HasHandshake(std::uint8_t unit) const {
  const bool isKnown = mLine.IsOpen() && !mIsDoubtful && mUnits[unit].handshake == mLine.ConnectionNumber();
  return isKnown && !IsLongUnheard(unit);
}

Exchange ProtocolClient::Begin(std::uint8_t unit, std::size_t wireBytes, std::optional<Instant> notAfter) {
  const Instant start = mPacer.Now();
  Instant deadline = start + mSettings.tries * (mSettings.timeOut + mLine.WireTime(wireBytes + kHandshakeBytes));
  deadline += RestartRest(unit);
  if (notAfter) deadline = std::min(deadline, *notAfter);
  if (std::exchange(mIsDoubtful, false)) {
    for (UnitState& each : mUnits) each.handshake = 0;
  }
  if (start - mUnits[unit].heard > kLongSilence) mUnits[unit].handshake = 0;
  mAccessRefusal = 0;
  mLast = {.tries = 0, .start = start};
  return {unit, start, deadline};
}

// Who did not answer may have been taken away, and another one put in its place. A request of which no byte has gone
// out, or that was refused and was about to go out anew, has changed nothing.
std::expected<void, LinkError> ProtocolClient::Conclude(const Exchange& exchange, ExchangeOutcome outcome) {
  mLast = {.tries = exchange.tries, .start = exchange.start};
  if (outcome == Done) {
    ++mQuality.exchanges;
    EndChange(exchange, outcome, {});
    return {};
  }
  ++mQuality.errors;
  if (outcome != NotSupported && outcome != NotRecorded) mUnits[exchange.unit].handshake = 0;
  LinkError error = Explain(outcome, mLast);
  error.isNotExecuted = error.isNotExecuted || !exchange.wentOut;
  EndChange(exchange, outcome, error);
  return std::unexpected(std::move(error));
}

// Told when the caller is about to be.
void ProtocolClient::EndChange(const Exchange& exchange, ExchangeOutcome outcome, const LinkError& error) {
  if (!mLine.Gate().IsOpen()) return;
  if (outcome != Done) {
    const ChangeResult unanswered = outcome == Stopped ? ChangeResult::Stopped : ChangeResult::Failed;
    return mLine.Gate().End({error.isNotExecuted ? ChangeResult::Refused : unanswered, error.happened});
  }
  if (const std::optional<int> code = exchange.Refusal()) {
    const bool wantsOther = *code == kNeedsPasswordCode && mAccessRefusal != 0;  // than the one that it was given
    const int why = wantsOther ? mAccessRefusal : *code;
    const auto meaning = exchange.IsPanelEvent() ? PanelErrorText(why) : ControllerErrorText(why);
    return mLine.Gate().End({ChangeResult::Refused, std::string(meaning.meaning)});
  }
  const bool isBusy = !exchange.IsText() && exchange.status == kBlockBusy;
  mLine.Gate().End({isBusy ? ChangeResult::Refused : ChangeResult::Done, isBusy ? "the controller is busy" : ""});
}

// A refused request has changed nothing, so it is sent anew when there is access now. Without, the refusal stands.
ExchangeOutcome ProtocolClient::RunWithAccess(Exchange& exchange) {
  const ExchangeOutcome outcome = Run(exchange);
  if (outcome != Done || exchange.Refusal() != kNeedsPasswordCode) return outcome;
  exchange.wentOut = false;
  const ExchangeOutcome access = GetAccess(exchange);
  if (access == NotSupported) return Done;
  // What was lost has its handshake with the request, and gets its access then.
  if (access == Lost) LoseLink(exchange);
  if (access != Done && access != Lost) return access;
  return Run(exchange);
}

// Over as many connections as it takes.
ExchangeOutcome ProtocolClient::Run(Exchange& exchange) {
  while (true) {
    const ExchangeOutcome outcome = RunOnConnection(exchange);
    if (outcome != Lost) return outcome;
    LoseLink(exchange);
    if (!MayReconnect(exchange)) return exchange.IsInDoubt() ? Unsure : CannotReopen;
  }
}

ExchangeOutcome ProtocolClient::RunOnConnection(Exchange& exchange) {
  while (true) {
    const ExchangeOutcome ready = GetReady(exchange);
    if (ready != Done) return exchange.IsInDoubt() && LeavesUnsure(ready) ? Unsure : ready;
    if (!exchange.IsText() && mUnits[exchange.unit].isAsciiOnly) return NotSupported;
    if (exchange.IsInDoubt()) return WhatBecameOf(exchange);
    if (exchange.onlyOn && *exchange.onlyOn != mLine.ConnectionNumber()) return NotExecuted;
    // A link that has gone quietly is noticed before a request that could not be sent again.
    if (!exchange.IsRead() && mLine.DropInput() == Lost) return Lost;
    const ExchangeOutcome outcome = TryUntilAnswered(exchange);
    if (!exchange.IsRead() || !IsUnanswered(outcome) || !MayBeRestarting(exchange)) return outcome;
    mUnits[exchange.unit].handshake = 0;  // it was done before the reset began
  }
}

// The one loop of repeats, for text and block requests, a caller's own and those of the handshake.
ExchangeOutcome ProtocolClient::TryUntilAnswered(Exchange& exchange) {
  Number(exchange);
  ExchangeOutcome worst = Silence;  // damage in any try tells more than silence in the last
  for (exchange.tries = 1;; ++exchange.tries) {
    const ExchangeOutcome outcome = TryOnce(exchange);
    if (outcome == Done) return TakeAnswer(exchange);
    if (exchange.UsesCounter()) mUnits[exchange.unit].isSynchronised = false;
    if (!IsUnanswered(outcome)) return outcome;
    if (outcome != Damaged) mRoundTrip.Silence();
    worst = std::max(worst, outcome);
    if (const std::optional<ExchangeOutcome> end = EndBeforeRepeat(exchange, worst)) return *end;
    ++mQuality.repeats;
  }
}

// What tells the answer from all others: the counter that it must exceed, or its own sequence number.
void ProtocolClient::Number(Exchange& exchange) {
  UnitState& unit = mUnits[exchange.unit];
  exchange.counterBefore = unit.counter;
  exchange.powerUpBefore = unit.powerUp;
  if (exchange.facts.resets) {
    unit.restartUntil = mPacer.Now() + kRestartTime;
    unit.modelMayChange = true;  // also when its reply is lost together with the connection
  }
  if (exchange.IsText()) return;
  if (mSequenceConnection != mLine.ConnectionNumber()) {
    mSequenceConnection = mLine.ConnectionNumber();
    mSequence = static_cast<std::uint16_t>(mRandom());
  }
  exchange.NumberBlock(++mSequence);
}

ExchangeOutcome ProtocolClient::TryOnce(Exchange& exchange) {
  exchange.tryStart = mPacer.Now();
  const Instant utmost = exchange.deadline - ReserveOf(exchange);
  const Duration onWire = mLine.WireTime(exchange.Frame().size() + exchange.facts.longestReply);
  const Instant end = std::min(exchange.tryStart + onWire + WaitOf(exchange), utmost);
  if (exchange.tryStart >= end) return Silence;
  const auto sending = exchange.tries == 1 ? Line::Sending::New : Line::Sending::Again;
  const std::uint64_t sentBefore = mLine.BytesSent();
  const ExchangeOutcome sent = mLine.Send(exchange.Frame(), sending, exchange.tryStart, end);
  exchange.wentOut = exchange.wentOut || mLine.BytesSent() != sentBefore;
  if (sent != Done) return sent;
  const TryLimits limits{end, utmost, mSettings.timeOut / 2, exchange.tries >= mSettings.tries};
  const ExchangeOutcome outcome = mLine.Await(exchange, exchange.tryStart, limits);
  // A partner that does not answer while somebody else calls has probably lost power, and is who calls.
  const bool mayBeReplaced = IsUnanswered(outcome) && exchange.role != Exchange::Role::Admission;
  return mayBeReplaced && mLine.GetPort().HasNewerCall() ? Lost : outcome;
}

ExchangeOutcome ProtocolClient::TakeAnswer(Exchange& exchange) {
  UnitState& unit = mUnits[exchange.unit];
  unit.heard = mLine.AnswerTime();
  if (exchange.tries == 1 && !exchange.facts.isSlow) {
    const Duration onWire = mLine.WireTime(exchange.Frame().size() + exchange.AnswerBytes());
    mRoundTrip.Sample(mLine.AnswerTime() - exchange.tryStart - onWire);
  }
  if (!exchange.IsText()) return Done;
  const bool isNext = IsNewer(exchange.counter, unit.counter);
  unit.counter = exchange.counter;
  return isNext || exchange.role != Exchange::Role::Request ? Done : WhoAnswered(exchange);
}

// Finds out what has to be known before an unanswered request is sent again. An outcome: it is not sent again. A text
// request is asked after when it was the last try, too.
std::optional<ExchangeOutcome> ProtocolClient::EndBeforeRepeat(Exchange& exchange, ExchangeOutcome worst) {
  const auto isOver = [&] { return exchange.tries >= mSettings.tries || mPacer.Now() >= exchange.deadline; };
  if (!exchange.IsText() && isOver()) return worst;
  if (exchange.role == Exchange::Role::Request && IsLongUnheard(exchange.unit)) {
    if (const ExchangeOutcome done = RepeatHandshake(exchange); done != Done) {
      const bool isUnsure = exchange.facts.kind == RequestKind::NonIdempotent && LeavesUnsure(done);
      return isUnsure ? Unsure : done;
    }
  }
  if (exchange.MustAskBeforeRepeat()) {
    if (const ExchangeOutcome became = WhatBecameOf(exchange); became != NotExecuted) return became;
  }
  if (isOver()) return worst;
  if (!exchange.facts.isSettled || mUnits[exchange.unit].isSynchronised) return std::nullopt;
  const ExchangeOutcome found = Resynchronise(exchange);
  return found == Done ? std::nullopt : std::optional(found);
}

// The first try waits as long as replies have been taking, the last one as long as they may; those between wait a part
// of that at least, so that a controller that is away for a moment is not asked three times within that moment.
Duration ProtocolClient::WaitOf(const Exchange& exchange) const {
  constexpr int kPartBetween = 4;
  if (exchange.facts.isSlow || exchange.tries >= mSettings.tries) return mSettings.timeOut;
  const Duration learnt = mRoundTrip.TimeOut(mSettings.timeOut);
  return exchange.tries == 1 ? learnt : std::max(learnt, mSettings.timeOut / kPartBetween);
}

// Time that a request leaves for asking what became of it.
Duration ProtocolClient::ReserveOf(const Exchange& exchange) const {
  constexpr std::size_t kAskBytes = 110;  // request and reply of SY
  if (!exchange.MustAskBeforeRepeat()) return Duration{};
  return std::min(mSettings.timeOut / 4, mRoundTrip.TimeOut(mSettings.timeOut)) + mLine.WireTime(kAskBytes);
}

bool ProtocolClient::MayReconnect(const Exchange& exchange) {
  return mSettings.reconnects && mPacer.Now() < exchange.deadline && !mLine.StopAsked();
}

void ProtocolClient::LoseLink(Exchange& exchange) {
  ++exchange.losses;
  NoteLoss();
}

void ProtocolClient::NoteLoss() {
  NoteLossReason();
  mLine.DropPartner();  // a port that controllers dial in to goes on listening for its return
  mSay("Connection lost: " + mLoss.happened);
}

// Not every port knows more than that the connection does not stand any more.
void ProtocolClient::NoteLossReason() {
  mLoss = mLine.GetPort().LossReason();
  if (!mLoss.happened.empty()) return;
  mLoss = {"the other side has gone", "the controller was switched off, or the network between has failed",
           "open the link again, or let the communication settings reconnect a lost link"};
}

void ProtocolClient::NoteRestart(std::uint8_t unit) {
  UnitState& state = mUnits[unit];
  state.handshake = 0;
  state.modelMayChange = true;
  state.restartUntil = mPacer.Now() + kRestartTime;
}

ProtocolClient::Patience ProtocolClient::PatienceWith(std::uint8_t unit) const {
  return {mUnits[unit].restartUntil, mUnits[unit].modelMayChange};
}

void ProtocolClient::RestorePatience(std::uint8_t unit, const Patience& before) {
  mUnits[unit].restartUntil = before.restartUntil;
  mUnits[unit].modelMayChange = before.modelMayChange;
}

Duration ProtocolClient::RestartRest(std::uint8_t unit) const {
  const Instant until = mUnits[unit].restartUntil;
  return until == Instant{} ? Duration{} : std::max(until - mPacer.Now(), Duration{});
}

bool ProtocolClient::MayBeRestarting(const Exchange& exchange) const {
  return mPacer.Now() < std::min(mUnits[exchange.unit].restartUntil, exchange.deadline);
}

void ProtocolClient::LoseSynchronisation() {
  for (UnitState& unit : mUnits) unit.isSynchronised = false;
}

void ProtocolClient::ForgetUnits() {
  mUnits.assign(mUnits.size(), UnitState{});
  mIsOtherController = false;
  mIsDeclined = false;
}

void ProtocolClient::Abort(bool abort) {
  if (mIsUnderWay || !abort) {
    mLine.RequestAbort(abort);
  } else if (mLine.IsOpen()) {
    (void)mLine.DropInput();  // a loss shows with the next request
  }
}

LinkQuality ProtocolClient::Quality() const {
  LinkQuality quality = mQuality;
  quality.roundTrip = mRoundTrip.Smoothed();
  quality.bytesSent = mLine.BytesSent();
  quality.bytesReceived = mLine.BytesReceived();
  return quality;
}

}  // namespace kv
