#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "KvCmDrv1/Exchange.h"
#include "KvCmDrv1/Line.h"
#include "KvCmDrv1/RoundTrip.h"
#include "KvCmDrv1/UnitState.h"
#include "KvCmDrv1/wire/Replies.h"
#include "KvCmDrv1/wire/Requests.h"
#include "base/ScopeGuard.h"
#include "link/Channel.h"
#include "link/ControllerErrorText.h"
#include "link/LinkLimits.h"

namespace kv {

// How exchanges go about on this link.
struct ExchangeSettings {
  Duration timeOut = std::chrono::milliseconds(kUsualTimeOut);  // for one reply, without the time on the wire
  int tries = kUsualTries;
  bool reconnects = true;                     // a lost link is reopened within the request's deadline
  std::uint8_t unit = 1;                      // that the link is for
  std::optional<std::uint32_t> serialNumber;  // of that unit; nothing: whoever answers first
};

struct BlockReply {
  int status = 0;
  std::string_view payload;  // good until the next exchange
};

// Gets one request through to a controller and its answer back, whatever the line does meanwhile, or says why not.
//
//   Idle -> Ready           the link is open, the handshake with this unit is done on it, and its counter is known
//                           where that is needed (synchronised)
//   Ready -> Sent           one write
//   Sent -> Answered        a reply with the right unit, seal or sequence number, tag or newer counter
//   Sent -> Ready           silence or damage; a read, an idempotent request or a block message goes out again
//   Sent -> Asking          silence or damage; a request that is not idempotent: SY is asked what became of it
//   Asking -> Answered      it was executed, and SY tells the answer
//   Asking -> Ready         it was not executed: it goes out again
//   Asking -> Unsure        nobody knows
//   any -> Reopening        the link is lost: reopened with growing pauses, the handshake repeated
//   Reopening -> Ready      a read, or a request that had not gone out
//   Reopening -> Asking     any other, which is never sent again over a new connection
//   any handshake -> OtherController   serial number or model are not what they were; the link stays closed
//   Answered -> Sent        refused for want of the password, and there is access now: once more
//   any -> Stopped          the pacer's stop request, or AbortComm
//
// All of it ends within tries x (time on the wire + time-out), and what is left of the time that a reset takes. What
// arrives late is told apart by tag, counter, seal and sequence number, never by time. The last try waits for as long
// as the time-out allows, the ones before for as long as replies on this link have been taking.
//
// The handshake with a unit asks SY, ID and IN. It is repeated on a new connection, after a request that ended without
// its answer, after a long silence, after raw traffic, and when counter or power-up number show a restart: in each of
// these cases somebody may have put another controller on the same line.
class ProtocolClient {
 public:
  using Say = std::function<void(const std::string& message)>;
  // The password of a unit; `wasWrong`: the one before was refused.
  using AskForPassword = std::function<std::optional<Secret>(std::uint8_t unit, bool wasWrong)>;

  ProtocolClient(Pacer& pacer, Line& line, const ExchangeSettings& settings, Say say);

  // The reply text without its seal, good until the next exchange; a refusal is a reply.
  [[nodiscard]] std::expected<std::string_view, LinkError> SendText(const TextRequest& request);
  // NotSupported, without traffic beyond the handshake, on a controller that understands ASCII frames only.
  [[nodiscard]] std::expected<BlockReply, LinkError> SendBlock(const BlockRequest& request);
  // Whether the next request to the unit goes out at once.
  [[nodiscard]] bool HasHandshake(std::uint8_t unit) const;
  [[nodiscard]] std::expected<void, LinkError> EnsureHandshake(std::uint8_t unit);
  // What a tool has asked the controller for by itself is held against what is known of it, too.
  [[nodiscard]] std::expected<void, LinkError> Recognise(std::uint8_t unit, const VersionInfo& version);
  [[nodiscard]] std::expected<void, LinkError> Recognise(std::uint8_t unit, std::uint32_t serialNumber);

  // Opens a port that partners call, and takes the first of them that answers as this unit and as the controller that
  // is meant. All others are dropped, each with a message that names it. Ends at `limit`.
  [[nodiscard]] std::expected<void, LinkError> AwaitCaller(std::uint8_t unit, Duration limit);

  // Who is asked when a controller wants its password first and none that it takes is known; nothing: nobody.
  void SetPasswordAsker(AskForPassword ask) { mAsk = std::move(ask); }
  // A user who did not give the password is not asked again before this.
  void BeginOperation() { mIsDeclined = false; }
  // Makes sure that requests which need the password are taken, for traffic that cannot be sent again. 0, or the code
  // with which access was refused.
  [[nodiscard]] std::expected<int, LinkError> EnsureAccess(std::uint8_t unit);
  // Why there was no access for the last request that was refused for want of it: a code.
  [[nodiscard]] int AccessRefusal() const { return mAccessRefusal == 0 ? kNeedsPasswordCode : mAccessRefusal; }

  // A number for the next request with a tag.
  [[nodiscard]] std::uint16_t NextTag() { return ++mTag; }
  // What is known of a unit. Passwords and identifications that tools come by are put here.
  [[nodiscard]] UnitState& Unit(std::uint8_t unit) { return mUnits[unit]; }
  // The speed has changed: no unit is synchronised any more.
  void LoseSynchronisation();
  // Raw traffic has passed: every unit needs its handshake again.
  void DoubtUnits() { mIsDoubtful = true; }
  // The unit was told to reset: it may be silent for a while, and another model (its boot loader) afterwards.
  void NoteRestart(std::uint8_t unit);
  // What being told to reset changes. A controller that refuses does not reset: it is treated as before.
  struct Patience {
    Instant restartUntil{};
    bool modelMayChange = false;
  };
  [[nodiscard]] Patience PatienceWith(std::uint8_t unit) const;
  void RestorePatience(std::uint8_t unit, const Patience& before);
  // How much longer a unit that was told to reset may be silent.
  [[nodiscard]] Duration RestartRest(std::uint8_t unit) const;
  // Another controller is meant from now on.
  void ForgetUnits();
  // Forgets every password, and ends the access that one has opened: that lasts as long as the connection, which is
  // closed.
  void ForgetPasswords();
  // Overwrites the frame of the last request, which held a password. Its reply stays.
  void WipeRequest() { Wipe(mRequestBuffers.frame); }
  // The other side has gone, as raw traffic found out.
  void NoteLoss();
  // The link is closed until it is opened from outside.
  void Shut() { mIsShut = true; }
  void Reopened() { mIsShut = false; }

  void Configure(const ExchangeSettings& settings) { mSettings = settings; }
  // Throws away what is on its way, or ends the exchange that is under way.
  void Abort(bool abort);

  [[nodiscard]] LinkQuality Quality() const;
  // An outcome in words; what was being done is the caller's to say.
  [[nodiscard]] LinkError Explain(ExchangeOutcome outcome) const { return Explain(outcome, mLast); }
  // The last answer took one try.
  [[nodiscard]] bool LastWasSmooth() const { return mLast.tries <= 1; }
  [[nodiscard]] bool IsOtherController() const { return mIsOtherController; }

 private:
  // What error texts tell of an exchange.
  struct Effort {
    int tries = 0;  // 0: none of its own, the handshake took them all
    Instant start{};
  };
  // One request is under way until the guard ends: a second one, from an event that the wait lets in, is refused.
  [[nodiscard]] auto BeUnderWay() {
    mIsUnderWay = true;
    return ScopeGuard([this] {
      mIsUnderWay = false;
      mLine.RequestAbort(false);
    });
  }
  [[nodiscard]] std::optional<LinkError> Refuse() const;
  [[nodiscard]] Exchange Begin(std::uint8_t unit, std::size_t wireBytes, std::optional<Instant> notAfter = {});
  // Counts the exchange and forgets who did not answer; an error unless it is done.
  [[nodiscard]] std::expected<void, LinkError> Conclude(const Exchange& exchange, ExchangeOutcome outcome);
  void EndChange(const Exchange& exchange, ExchangeOutcome outcome, const LinkError& error);
  [[nodiscard]] bool IsLongUnheard(std::uint8_t unit) const { return mPacer.Now() - mUnits[unit].heard > kLongSilence; }
  [[nodiscard]] bool MayBeRestarting(const Exchange& exchange) const;

  // Sending.
  [[nodiscard]] ExchangeOutcome RunWithAccess(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Run(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome RunOnConnection(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome TryUntilAnswered(Exchange& exchange);
  void Number(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome TryOnce(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome TakeAnswer(Exchange& exchange);
  [[nodiscard]] std::optional<ExchangeOutcome> EndBeforeRepeat(Exchange& exchange, ExchangeOutcome worst);
  [[nodiscard]] Duration WaitOf(const Exchange& exchange) const;
  [[nodiscard]] Duration ReserveOf(const Exchange& exchange) const;
  [[nodiscard]] bool MayReconnect(const Exchange& exchange);
  void LoseLink(Exchange& exchange);
  void NoteLossReason();

  // The handshake, and what became of a request (ProtocolClientHandshake.cpp). All of these act on behalf of an
  // exchange: for its unit and within its deadline.
  [[nodiscard]] ExchangeOutcome GetReady(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Reopen(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Handshake(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome RepeatHandshake(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Resynchronise(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome AskSynchronisation(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Introduce(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Identify(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome Ask(const Exchange& exchange, std::string_view text, const CommandFacts& facts,
                                    Exchange::Buffers& buffers);
  [[nodiscard]] ExchangeOutcome Compare(UnitState& unit, const Identity& found);
  [[nodiscard]] ExchangeOutcome ShutOutOther();
  [[nodiscard]] std::string NameOfOther(const UnitState& unit, const Identity& found) const;
  [[nodiscard]] std::expected<void, LinkError> Recognise(std::uint8_t unit, const Identity& found);
  [[nodiscard]] ExchangeOutcome WhatBecameOf(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome WhoAnswered(const Exchange& exchange);

  // Callers (ProtocolClientCallers.cpp).
  [[nodiscard]] ExchangeOutcome GetCaller(const Exchange& exchange);
  [[nodiscard]] std::expected<void, LinkError> AdmitCaller(std::uint8_t unit, Instant limit);
  void DropCaller(const std::string& name, ExchangeOutcome outcome);
  [[nodiscard]] LinkError NobodyCame(const PortError& error) const;
  [[nodiscard]] std::string WhyDropped(ExchangeOutcome outcome) const;

  // Getting access (ProtocolClientAccess.cpp).
  [[nodiscard]] ExchangeOutcome GetAccess(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome AskUntilGiven(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome GiveAskedFor(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome AskPassword(Exchange& exchange);
  [[nodiscard]] ExchangeOutcome GiveAccess(const Exchange& exchange);
  [[nodiscard]] ExchangeOutcome RefusePassword(std::uint8_t unit, int code);

  // Errors in words (ProtocolClientErrors.cpp).
  [[nodiscard]] LinkError Explain(ExchangeOutcome outcome, const Effort& spent) const;
  [[nodiscard]] LinkError ExplainSilence(const std::string& happened, const std::string& andWhence) const;

  Pacer& mPacer;
  Line& mLine;
  ExchangeSettings mSettings;
  Say mSay;
  AskForPassword mAsk;
  RoundTrip mRoundTrip;
  std::vector<UnitState> mUnits;
  RequestWriter mWriter;
  Exchange::Buffers mRequestBuffers;
  Exchange::Buffers mHandshakeBuffers;        // identification and access
  Exchange::Buffers mSynchronisationBuffers;  // SY
  SynchronisationReply mSynchronised;         // points into these

  std::uint16_t mTag;
  std::uint16_t mSequence = 0;
  unsigned mSequenceConnection = 0;
  std::minstd_rand mRandom;

  Effort mLast;            // of the last exchange of a caller
  int mAccessRefusal = 0;  // code with which access was refused in it; 0: it was not
  bool mIsUnderWay = false;
  bool mIsShut = true;
  bool mIsDoubtful = false;  // raw traffic has passed since the last request
  bool mIsOtherController = false;
  bool mIsDeclined = false;  // the user did not give the password that was asked for
  int mDropped = 0;          // callers, since one was taken
  std::string mLastDropped;  // name and reason
  PortError mLoss;           // why the link was lost or cannot be opened
  std::string mOtherName;    // who answered instead
  LinkQuality mQuality;
};

}  // namespace kv
