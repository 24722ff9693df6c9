#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "base/Time.h"

namespace kv {

// What the receiver found at the front of what has arrived.
struct Received {
  enum class Kind {
    Frame,     // a good ASCII frame
    Block,     // a good block message of kind reply
    BadCheck,  // a whole frame or block message whose check does not hold
    BadHead,   // the start of a block message that cannot be one
    Cut,       // a block message that is given up
    TooLong,   // more characters without CR than any frame has
    Noise,     // bytes that belong to nothing
  };

  Kind kind = Kind::Noise;
  std::string_view bytes;  // what was used up
  AsciiFrame frame;        // of a Frame
  BlockMessage block;      // of a Block

  [[nodiscard]] bool IsGood() const { return kind == Kind::Frame || kind == Kind::Block; }
};

// Finds frames and replies in what arrives on the line, whatever stands between them. Pure: it is fed bytes and the
// time at which they came, and asked what they are.
//
//   receiver.Feed(bytes, now);
//   while (auto received = receiver.Next(now)) ...
//
// Keeps at most one message that is incomplete: 1107 characters of a frame or 8224 bytes of a block message. A block
// message whose head holds is kept however long it pauses: it is a reply, and a mobile network may pause for longer
// than a whole one takes.
class MessageReceiver {
 public:
  // Up to three bytes that could begin a block message are given up when no other has arrived for this long.
  static constexpr Duration kIdle = std::chrono::milliseconds(100);

  void Feed(std::string_view bytes, Instant now);

  // The next find; nothing while what is there is empty or incomplete. Its texts are good until the next call of Feed,
  // Next or Clear. `isEnd`: nobody waits any longer, so a block message that is incomplete is none, and what it has
  // swallowed is looked at.
  [[nodiscard]] std::optional<Received> Next(Instant now, bool isEnd = false);

  void Clear();
  [[nodiscard]] bool IsEmpty() const { return mStart == mBytes.size(); }
  // What is not used up yet.
  [[nodiscard]] std::string_view Pending() const { return std::string_view(mBytes).substr(mStart); }

 private:
  [[nodiscard]] std::optional<Received> NextFrame(std::string_view pending);
  [[nodiscard]] std::optional<Received> NextBlock(std::string_view pending, Instant now, bool isEnd);
  [[nodiscard]] Received UseUp(std::size_t count, Received::Kind kind);

  std::string mBytes;
  std::size_t mStart = 0;   // where the unread bytes begin
  std::size_t mLooked = 0;  // how many of these are known to be characters of a frame: none is looked at twice
  Instant mLastArrival{};
};

}  // namespace kv
