#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "KvCmDrv1/Line.h"
#include "KvCmDrv1/RoundTrip.h"
#include "KvCmDrv1/UnitState.h"
#include "KvCmDrv1/wire/CommandFacts.h"
#include "KvCmDrv1/wire/Replies.h"
#include "KvCmDrv1/wire/Requests.h"
#include "link/Channel.h"
#include "link/ControllerErrorText.h"

namespace kv {

// How exchanges go about on this link.
struct ExchangeSettings {
  Duration timeOut = std::chrono::seconds(1);  // for one reply, without the time on the wire
  int tries = 3;
  bool reconnects = true;                     // a lost link is reopened within the request's deadline
  std::uint8_t unit = 1;                      // that the link is for
  std::optional<std::uint32_t> serialNumber;  // of that unit; nothing: whoever answers first
};

struct TextRequest {
  std::uint8_t unit = 1;
  std::string_view text;  // complete, with tag and check where the command has them
  CommandFacts facts;
  std::optional<Instant> notAfter;  // an earlier deadline than the request's own
};

struct BlockRequest {
  std::uint8_t unit = 1;
  BlockFields fields;
  std::string_view payload;
  std::size_t replyPayload = 0;  // bytes expected
  std::optional<Instant> notAfter;
};

struct BlockReply {
  int status = 0;
  std::string_view payload;  // good until the next exchange
};

// Gets one request through to a controller and its answer back, whatever the line does meanwhile, or says why not.
//
//   Idle -> Ready           the link is open, this unit was met on it, and the exchange is in step where it must be
//   Ready -> Sent           one write
//   Sent -> Answered        a reply with the right unit, seal or sequence number, tag or newer counter
//   Sent -> Ready           silence or damage; a read, a placing request or a block message goes out again
//   Sent -> Asking          silence or damage; a request that must not be done twice: SY is asked what became of it
//   Asking -> Answered      it was done, and SY tells the answer
//   Asking -> Ready         it was not done: it goes out again
//   Asking -> Unsure        nobody knows
//   any -> Reopening        the link is lost: reopened with growing pauses, the unit met again
//   Reopening -> Ready      a read, or a request that had not gone out
//   Reopening -> Asking     any other, which is never sent again over a new connection
//   any meeting -> OtherController   serial number or model are not what they were; the link stays closed from then on
//   Answered -> Sent        refused for want of the password, and there is access now: once more
//   any -> Stopped          the pacer's stop request, or AbortComm
//
// All of it ends within tries x (time on the wire + time-out), and what is left of the time that a reset takes. What
// arrives late is told apart by tag, counter, seal and sequence number, never by time. The last try waits for as long
// as the time-out allows, the ones before for as long as replies on this link have been taking.
//
// A unit is met by asking SY, ID and IN. It has to be met again on a new connection, when a request ended without its
// answer, after a long silence, after raw traffic, and when its counter or its power-up number show a restart: behind
// each of these somebody may have put another controller on the same line.
class Exchange {
 public:
  using Say = std::function<void(const std::string& message)>;
  // The password of a unit; `wasWrong`: the one before was refused.
  using AskForPassword = std::function<std::optional<std::string>(std::uint8_t unit, bool wasWrong)>;

  Exchange(Pacer& pacer, Line& line, const ExchangeSettings& settings, Say say);

  // The reply text without its seal, good until the next exchange; a refusal is a reply.
  [[nodiscard]] std::expected<std::string_view, LinkError> SendText(const TextRequest& given);
  // NotSupported, without traffic beyond meeting the unit, on a controller that understands ASCII frames only.
  [[nodiscard]] std::expected<BlockReply, LinkError> SendBlock(const BlockRequest& request);
  [[nodiscard]] bool HasMet(std::uint8_t unit) const;
  // Makes sure that the unit has been met on this connection.
  [[nodiscard]] std::expected<void, LinkError> MeetUnit(std::uint8_t unit);
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
  // The speed has changed: no unit is in step any more.
  void LoseStep();
  // Raw traffic has passed: every unit has to be met again.
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
  // The other side has gone, as raw traffic found out.
  void NoteLoss() { LoseLink(); }
  // The link is closed until it is opened from outside.
  void Shut() { mIsShut = true; }
  void Reopened() { mIsShut = false; }

  void Configure(const ExchangeSettings& settings) { mSettings = settings; }
  // Throws away what is on its way, or ends the exchange that is under way.
  void Abort(bool abort);

  [[nodiscard]] LinkQuality Quality() const;
  // An outcome in words; what was being done is the caller's to say.
  [[nodiscard]] LinkError Explain(Outcome outcome) const;
  // Tries, damage or silence were needed to get the last answer.
  [[nodiscard]] bool LastWasSmooth() const { return mTriesUsed <= 1; }
  [[nodiscard]] bool IsOtherController() const { return mIsOtherController; }

 private:
  // Bytes of one request under way and of its answer, used again and again.
  struct Buffers {
    std::string frame;
    std::string reply;
  };
  class TextJudge;
  class BlockJudge;
  // One request under way: a second one, from an event that the wait lets in, is refused meanwhile.
  class UnderWay {
   public:
    explicit UnderWay(Exchange& exchange) : mExchange(exchange) {
      exchange.mIsUnderWay = true;
      exchange.mWentOut = false;
      exchange.mTriesUsed = 0;
      exchange.mLosses = 0;
      exchange.mAccessRefusal = 0;
    }
    ~UnderWay() {
      mExchange.mIsUnderWay = false;
      mExchange.mLine.RequestAbort(false);
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

   private:
    Exchange& mExchange;
  };

  [[nodiscard]] std::optional<LinkError> Refuse() const;
  void Begin(std::uint8_t unit, std::size_t wireBytes, std::optional<Instant> notAfter);
  void Conclude(std::uint8_t unit, Outcome outcome);
  [[nodiscard]] bool IsLongUnheard(std::uint8_t unit, Instant now) const {
    return now - mUnits[unit].heard > kLongSilence;
  }
  [[nodiscard]] bool MayBeRestarting(std::uint8_t unit) const;

  // Getting ready (ExchangeSteps.cpp).
  [[nodiscard]] Outcome GetReady(std::uint8_t unit, bool needsStep);
  [[nodiscard]] Outcome Reopen(std::uint8_t unit);
  [[nodiscard]] Outcome Meet(std::uint8_t unit);
  [[nodiscard]] Outcome MeetAgain(std::uint8_t unit);
  [[nodiscard]] Outcome FindStep(std::uint8_t unit);
  [[nodiscard]] Outcome AskStep(std::uint8_t unit);
  [[nodiscard]] Outcome Introduce(std::uint8_t unit);
  [[nodiscard]] Outcome Identify(std::uint8_t unit);
  [[nodiscard]] Outcome Ask(const TextRequest& request, Buffers& buffers);
  [[nodiscard]] Outcome Compare(UnitState& unit, const Identity& found);
  [[nodiscard]] std::string NameOfOther(const UnitState& unit, const Identity& found) const;

  // Callers (ExchangeCallers.cpp).
  [[nodiscard]] Outcome GetCaller(std::uint8_t unit);
  [[nodiscard]] std::expected<void, LinkError> AdmitCaller(std::uint8_t unit, Instant limit);
  [[nodiscard]] Outcome TryCaller(std::uint8_t unit, Instant end);
  [[nodiscard]] bool IsReplaced();
  void DropCaller(const std::string& name, Outcome outcome);
  [[nodiscard]] LinkError NobodyCame(const PortError& error) const;
  [[nodiscard]] std::string WhyDropped(Outcome outcome) const;

  [[nodiscard]] std::expected<void, LinkError> Recognise(std::uint8_t unit, const Identity& found);
  [[nodiscard]] Outcome WhatBecameOf(const TextRequest& request);
  [[nodiscard]] Outcome WhoAnswered(const TextRequest& request);
  [[nodiscard]] bool MayGoOn();

  // Getting access (ExchangeAccess.cpp).
  [[nodiscard]] Outcome RunWithAccess(std::uint8_t unit, const std::function<Outcome()>& run);
  [[nodiscard]] Outcome GetAccess(std::uint8_t unit);
  [[nodiscard]] Outcome AskUntilGiven(std::uint8_t unit);
  [[nodiscard]] Outcome GiveAskedFor(std::uint8_t unit);
  [[nodiscard]] Outcome AskPassword(std::uint8_t unit);
  [[nodiscard]] Outcome GiveAccess(std::uint8_t unit);
  [[nodiscard]] Outcome RefusePassword(std::uint8_t unit, int code);

  // Sending.
  [[nodiscard]] Outcome RunText(const TextRequest& request);
  [[nodiscard]] Outcome TryText(const TextRequest& request, Buffers& buffers);
  [[nodiscard]] Outcome RunBlock(const BlockRequest& request);
  [[nodiscard]] Outcome TryBlock(const BlockRequest& request);
  struct Try {
    std::string_view frame;
    std::size_t replyBytes;  // at most
    bool isSlow;
    Duration reserve;
    int number;
  };
  [[nodiscard]] Outcome OneTry(ReplyJudge& judge, const Try& one);
  [[nodiscard]] Duration WaitOf(bool isSlow, int tryNumber) const;
  [[nodiscard]] Duration ReserveOf(const CommandFacts& facts) const;
  void LoseLink();
  void NoteLossReason();
  [[nodiscard]] LinkError ExplainRequest(Outcome outcome) const;
  [[nodiscard]] LinkError ExplainSilence(const std::string& happened, const std::string& andWhence) const;

  Pacer& mPacer;
  Line& mLine;
  ExchangeSettings mSettings;
  Say mSay;
  AskForPassword mAsk;
  RoundTrip mRoundTrip;
  std::vector<UnitState> mUnits;
  RequestWriter mWriter;
  Buffers mMain;         // the request itself
  Buffers mMeeting;      // identification and access
  Buffers mStep;         // finding step
  StepReply mStepReply;  // points into mStep

  std::uint16_t mTag;
  std::uint16_t mSequence = 0;
  unsigned mSequenceConnection = 0;
  std::minstd_rand mRandom;

  // Of the request under way.
  Instant mStart{};
  Instant mDeadline{};
  Instant mTryStart{};
  bool mIsUnderWay = false;
  bool mWentOut = false;  // any of it has reached the line since it was refused last
  int mTriesUsed = 0;
  int mLosses = 0;
  std::uint16_t mCounterBefore = 0;
  std::uint16_t mPowerUpBefore = 0;
  int mBlockStatus = 0;
  int mAccessRefusal = 0;  // code with which access was refused last; 0: it was not

  bool mIsShut = true;
  bool mIsDoubtful = false;  // raw traffic has passed since the last request
  bool mIsOtherController = false;
  bool mIsDeclined = false;   // the user did not give the password that was asked for
  bool mIsAdmitting = false;  // a caller is asked who it is
  int mDropped = 0;           // callers, since one was taken
  std::string mLastDropped;   // name and reason
  PortError mLoss;            // why the link was lost or cannot be opened
  std::string mOtherName;     // who answered instead
  LinkQuality mQuality;
};

}  // namespace kv
