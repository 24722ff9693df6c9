#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <string_view>

#include "KvCmDrv1/ChangeGate.h"
#include "KvCmDrv1/ExchangeOutcome.h"
#include "KvCmDrv1/Trace.h"
#include "KvCmDrv1/ports/Port.h"
#include "KvCmDrv1/wire/MessageReceiver.h"
#include "desktop/Pacer.h"

namespace kv {

// Decides which of the messages that arrive answers the request that is waiting.
class ReplyMatcher {
 public:
  virtual ~ReplyMatcher() = default;
  // Called with each good frame and block message. True takes it as the answer; what is needed of it must be copied
  // now.
  virtual bool Accepts(const Received& received) = 0;
};

// How long one try waits for its answer.
struct TryLimits {
  Instant deadline;
  Instant utmost;       // for a reply that has begun when the deadline comes: its line may be slower than it says,
  Duration patience{};  // or pause for so long. To ask again meanwhile would only put a second reply behind it
  bool isLast = false;  // damage does not end it early, because nothing is sent again after it
};

// The line under the exchanges: a port, the receiver behind it, the trace and the counts. Sends bytes, waits for an
// answer, and nothing else: what is repeated and when is the exchange's business.
//
// A wait goes in slices of a few milliseconds with a turn of the pacer between them; what is answered at once costs no
// turn. A stop (of the pacer, or RequestAbort) is noticed with the next slice.
class Line {
 public:
  static constexpr Duration kSlice = std::chrono::milliseconds(5);

  Line(Pacer& pacer, Trace& trace, std::unique_ptr<Port> port);

  // Another port from now on; the one before is closed.
  void Replace(std::unique_ptr<Port> port);

  [[nodiscard]] std::expected<void, PortError> Open(Duration limit);
  void Close();
  // Ends the connection; where partners call, the port goes on listening.
  void DropPartner();
  [[nodiscard]] bool IsOpen() const { return mPort->IsOpen(); }
  // Number of the connection, raised with every Open that succeeds; 0 before the first.
  [[nodiscard]] unsigned ConnectionNumber() const { return mConnection; }

  // `now` is the time of the call here and below, which the caller knows: reading the clock is not free.
  //
  // Done when all bytes are with the port; Silence when the line did not take them until `deadline`. A reply that has
  // begun to arrive is kept when the bytes are the same request again: its rest may be on its way. NotRecorded, and
  // nothing sent, when the gate does not let a new request pass.
  enum class Sending { New, Again };
  [[nodiscard]] ExchangeOutcome Send(std::string_view bytes, Sending sending, Instant now, Instant deadline);

  // Done when the matcher took a message. Otherwise how much arrived until the limits, of which stray bytes end no try:
  // transmitters of two-wire lines send some when they switch on. Damaged also when as many bytes as a reply has were
  // none, and the line was quiet again: then it is asked again at once, unless this is the last try. All that arrives
  // goes through the receiver, so endless garbage costs no memory.
  [[nodiscard]] ExchangeOutcome Await(ReplyMatcher& matcher, Instant now, const TryLimits& limits);
  // When the bytes arrived that ended the last Await with Done.
  [[nodiscard]] Instant AnswerTime() const { return mAnswerTime; }

  // Throws away what has arrived. Lost when the other side has gone.
  [[nodiscard]] ExchangeOutcome DropInput();
  // Appends what has arrived, about `most` bytes, to `bytes` without looking at it, for raw traffic.
  [[nodiscard]] ExchangeOutcome TakeRaw(std::string& bytes, std::size_t most);
  // The same of the first that arrives within `span`, with turns of the pacer; Silence when nothing does.
  [[nodiscard]] ExchangeOutcome AwaitRaw(std::string& bytes, Duration span);

  // Lets `span` pass unless a stop is asked for; false then.
  [[nodiscard]] bool Pause(Duration span);

  void RequestAbort(bool abort) { mAbort = abort; }
  [[nodiscard]] bool StopAsked() const { return mAbort || mPacer.StopRequested(); }

  [[nodiscard]] Duration WireTime(std::size_t bytes) const {
    return mPort->ByteTime() * static_cast<Duration::rep>(bytes);
  }
  [[nodiscard]] std::uint64_t BytesSent() const { return mBytesSent; }
  [[nodiscard]] std::uint64_t BytesReceived() const { return mBytesReceived; }
  [[nodiscard]] Port& GetPort() { return *mPort; }
  [[nodiscard]] ChangeGate& Gate() { return mGate; }
  [[nodiscard]] const ChangeGate& Gate() const { return mGate; }
  [[nodiscard]] const Port& GetPort() const { return *mPort; }

 private:
  struct Wait;
  [[nodiscard]] bool IsArriving(const Wait& wait, Duration patience) const;
  [[nodiscard]] bool TakeMessages(ReplyMatcher& matcher, Wait& wait, bool isEnd = false);
  [[nodiscard]] ExchangeOutcome WithoutAnswer(const Wait& wait) const;
  [[nodiscard]] Port::Result ReadSlice(Duration slice);
  void TraceDialogue();

  Pacer& mPacer;
  Trace& mTrace;
  std::unique_ptr<Port> mPort;
  ChangeGate mGate;
  MessageReceiver mReceiver;
  std::string mArrived;
  unsigned mConnection = 0;
  bool mAbort = false;
  Instant mAnswerTime{};
  std::uint64_t mBytesSent = 0;
  std::uint64_t mBytesReceived = 0;
};

}  // namespace kv
