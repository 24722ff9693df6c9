#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/Time.h"
#include "simulator/BlockMessage.h"
#include "simulator/Seal.h"

namespace sim {

// Finds the good messages in what arrives, whatever noise stands between them ("Finding messages in noise" of
// docs/controller-protocol.md). What is damaged is dropped without a word.
class FrameReader {
 public:
  struct Message {
    std::variant<AsciiFrame, BlockMessage> content;
    std::string_view bytes;      // all of it, as it arrived
    std::uint64_t position = 0;  // of its first byte, counted from the first byte ever fed
  };

  // A controller that understands ASCII frames only takes block messages for noise.
  explicit FrameReader(bool understandsBlocks) : mUnderstandsBlocks(understandsBlocks) {}

  // Takes bytes that arrived at `at`. Next must have come back empty before. Ends the life of earlier messages.
  void Feed(std::string_view bytes, kv::Instant at);

  // The next good message; nothing when none is complete at `now`. Its views are good until the next call of Feed.
  [[nodiscard]] std::optional<Message> Next(kv::Instant now);

  // When the silence after an incomplete block message ends its chance; Next may find something then without new bytes.
  [[nodiscard]] std::optional<kv::Instant> Deadline() const;

  // Puts `damaged` in the place of the message that Next returned last, which has the same size, and reads it again.
  void ReadAgain(const Message& last, std::string_view damaged);

  void Clear();

 private:
  // Why there is no message at the start: what stood there was dropped, or more bytes are needed.
  enum class NoMessage { Dropped, Awaiting };
  using Look = std::expected<Message, NoMessage>;

  [[nodiscard]] Look LookForFrame();
  [[nodiscard]] Look LookForBlock();
  [[nodiscard]] Message Take(const std::variant<AsciiFrame, BlockMessage>& content, std::string_view bytes);
  void SkipNoise();
  void Drop(std::size_t count);
  [[nodiscard]] std::string_view Rest() const { return std::string_view(mBuffer).substr(mBegin); }

  bool mUnderstandsBlocks;
  std::string mBuffer;
  std::size_t mBegin = 0;             // of what has not been used up
  std::uint64_t mBufferPosition = 0;  // of the buffer's first byte
  std::size_t mAwaited = 0;  // bytes that the block message at the start needs before a look at it is worth while
  bool mAwaitsBlock = false;
  kv::Instant mLastArrival;
};

}  // namespace sim
