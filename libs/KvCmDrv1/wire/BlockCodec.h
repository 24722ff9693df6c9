#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/LittleEndian.h"
#include "link/DownloadEngine.h"

namespace kv {

inline constexpr char kBlockStart = static_cast<char>(0xB4);
inline constexpr char kBlockSecond = 0x4B;
inline constexpr std::size_t kBlockHead = 28;  // bytes before the payload
inline constexpr std::size_t kBlockCheck = 4;  // bytes after it
inline constexpr std::size_t kMaxReplyPayload = 8192;

// A block message; `payload` points into the bytes that were read or are to be sent.
struct BlockMessage {
  std::uint8_t unit = 0;
  std::uint8_t status = 0;
  std::uint16_t sequence = 0;
  BlockFields fields;
  std::string_view payload;
};

// Puts the bytes of a request into `bytes`, in place of what was there. The payload is kMostBlockData bytes at
// most.
void EncodeBlockRequest(const BlockMessage& request, std::string& bytes);

// The length of the payload that the head of a reply announces; nothing when `head` (kBlockHead bytes) is not the head
// of a reply.
[[nodiscard]] std::optional<std::size_t> ReplyPayloadLength(std::string_view head);

// The reply in `bytes`, whose head has been found good and which is as long as that announced; nothing when its check
// does not hold.
[[nodiscard]] std::optional<BlockMessage> DecodeBlockReply(std::string_view bytes);

}  // namespace kv
