#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

// A block message of docs/controller-protocol.md, section 7.
struct BlockMessage {
  enum Kind : std::uint8_t { Request = 1, Reply = 2 };

  std::uint8_t kind = Request;
  std::uint8_t unit = 0;
  std::uint8_t status = 0;  // 0 in a request
  std::uint16_t sequence = 0;
  std::uint16_t opCode = 0;
  std::uint32_t param1 = 0;
  std::uint32_t dataLength = 0;
  std::uint16_t param3 = 0;
  std::uint16_t param4 = 0;
  std::string_view payload;
  std::uint32_t crc = 0;  // of the whole message; DecodeBlock fills it in, EncodeBlock computes it anew
};

constexpr char kBlockStart = '\xB4';
constexpr std::size_t kBlockHeadSize = 28;

[[nodiscard]] std::string EncodeBlock(const BlockMessage& message);

// The size of the whole message that begins with these 28 bytes; nothing when they are not a good head (magic, version,
// kind, payload length and head check).
[[nodiscard]] std::optional<std::size_t> BlockSize(std::string_view head);

// Reads a whole message whose head is good; nothing when its CRC-32 does not hold. The payload stays in `bytes`.
[[nodiscard]] std::optional<BlockMessage> DecodeBlock(std::string_view bytes);

}  // namespace sim
