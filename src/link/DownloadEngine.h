#pragma once

#include <cstdint>
#include <span>

#include "base/Bytes.h"

namespace kv {

// The five fields of a block message, set before each send.
struct BlockFields {
  std::uint16_t opCode = 0;
  std::uint32_t param1 = 0;
  std::uint32_t dataLength = 0;
  std::uint16_t param3 = 0;
  std::uint16_t param4 = 0;

  bool operator==(const BlockFields&) const = default;
};

// Status codes with which a controller answers a block message; 128 + n is a refusal with code n.
inline constexpr int kBlockDone = 10;
inline constexpr int kBlockDoneProgramming = 11;
inline constexpr int kBlockTakesEffectWithReset = 100;
inline constexpr int kBlockBusy = 5;
inline constexpr int kBlockRefused = 128;

// Binary block messages to the controller, one at a time: set the fields, send, look at the reply.
class DownloadEngine {
 public:
  virtual ~DownloadEngine() = default;

  virtual void SetMessage(const BlockFields& fields) = 0;
  [[nodiscard]] virtual const BlockFields& Message() const = 0;

  // Sends the message, without data or with a data block of at most 1048576 bytes, and waits for its reply.
  // True when a reply arrived, whatever its status code; false leaves the reason in the channel's LastError().
  [[nodiscard]] virtual bool Send() = 0;
  [[nodiscard]] virtual bool SendWithData(std::span<const std::uint8_t> data) = 0;

  // Of the last send that succeeded; empty and 0 after one that failed.
  [[nodiscard]] virtual const Bytes& ReplyBytes() const = 0;
  [[nodiscard]] virtual int ReplyStatus() const = 0;
};

}  // namespace kv
