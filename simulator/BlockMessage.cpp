#include "simulator/BlockMessage.h"

#include <array>

#include "base/Crc32.h"
#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr char kSecondMagic = '\x4B';
constexpr char kVersion = 1;
constexpr std::size_t kCrcSize = 4;
constexpr std::size_t kHeadCheckAt = 26;
constexpr std::uint32_t kMostInRequest = 1048576;
constexpr std::uint32_t kMostInReply = 8192;

// Where the fields stand.
constexpr std::size_t kVersionAt = 2;
constexpr std::size_t kKindAt = 3;
constexpr std::size_t kUnitAt = 4;
constexpr std::size_t kStatusAt = 5;
constexpr std::size_t kSequenceAt = 6;
constexpr std::size_t kOpCodeAt = 8;
constexpr std::size_t kParam1At = 10;
constexpr std::size_t kDataLengthAt = 14;
constexpr std::size_t kParam3At = 18;
constexpr std::size_t kParam4At = 20;
constexpr std::size_t kPayloadLengthAt = 22;

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

std::uint16_t WordAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint16_t>(ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8);
}

}  // namespace

std::string EncodeBlock(const BlockMessage& message) {
  std::array<char, kBlockHeadSize> head{kBlockStart, kSecondMagic, kVersion};
  char* place = head.data() + kKindAt;
  place = PutLittle(place, message.kind, 1);
  place = PutLittle(place, message.unit, 1);
  place = PutLittle(place, message.status, 1);
  place = PutLittle(place, message.sequence, 2);
  place = PutLittle(place, message.opCode, 2);
  place = PutLittle(place, message.param1, 4);
  place = PutLittle(place, message.dataLength, 4);
  place = PutLittle(place, message.param3, 2);
  place = PutLittle(place, message.param4, 2);
  place = PutLittle(place, static_cast<std::uint32_t>(message.payload.size()), 4);
  const std::uint32_t headCheck = kv::Crc32({head.data(), kHeadCheckAt});
  PutLittle(place, headCheck & 0xFFFF, 2);

  std::string bytes;
  bytes.reserve(head.size() + message.payload.size() + kCrcSize);
  bytes.append(head.data(), head.size());
  bytes += message.payload;
  AppendLittle(bytes, kv::Crc32(std::string_view(bytes).substr(kHeadCheckAt), headCheck), kCrcSize);
  return bytes;
}

std::optional<std::size_t> BlockSize(std::string_view head) {
  if (head.size() < kBlockHeadSize || head[0] != kBlockStart || head[1] != kSecondMagic) return std::nullopt;
  if (head[kVersionAt] != kVersion) return std::nullopt;
  const std::uint8_t kind = ByteAt(head, kKindAt);
  if (kind != BlockMessage::Request && kind != BlockMessage::Reply) return std::nullopt;
  const std::uint32_t length = LittleAt(head, kPayloadLengthAt);
  if (length > (kind == BlockMessage::Request ? kMostInRequest : kMostInReply)) return std::nullopt;
  if (WordAt(head, kHeadCheckAt) != (kv::Crc32(head.substr(0, kHeadCheckAt)) & 0xFFFF)) return std::nullopt;
  return kBlockHeadSize + length + kCrcSize;
}

std::optional<BlockMessage> DecodeBlock(std::string_view bytes) {
  const std::size_t crcAt = bytes.size() - kCrcSize;
  BlockMessage message;
  message.crc = LittleAt(bytes, crcAt);
  if (message.crc != kv::Crc32(bytes.substr(0, crcAt))) return std::nullopt;
  message.kind = ByteAt(bytes, kKindAt);
  message.unit = ByteAt(bytes, kUnitAt);
  message.status = ByteAt(bytes, kStatusAt);
  message.sequence = WordAt(bytes, kSequenceAt);
  message.opCode = WordAt(bytes, kOpCodeAt);
  message.param1 = LittleAt(bytes, kParam1At);
  message.dataLength = LittleAt(bytes, kDataLengthAt);
  message.param3 = WordAt(bytes, kParam3At);
  message.param4 = WordAt(bytes, kParam4At);
  message.payload = bytes.substr(kBlockHeadSize, crcAt - kBlockHeadSize);
  return message;
}

}  // namespace sim
