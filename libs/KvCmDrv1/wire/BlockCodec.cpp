#include "KvCmDrv1/wire/BlockCodec.h"

#include "base/Crc32.h"

namespace kv {
namespace {

constexpr std::uint8_t kVersion = 1;
constexpr std::uint8_t kRequest = 1;
constexpr std::uint8_t kReply = 2;

// Where the fields of a head stand.
constexpr std::size_t kAtVersion = 2;
constexpr std::size_t kAtKind = 3;
constexpr std::size_t kAtUnit = 4;
constexpr std::size_t kAtStatus = 5;
constexpr std::size_t kAtSequence = 6;
constexpr std::size_t kAtOpCode = 8;
constexpr std::size_t kAtParam1 = 10;
constexpr std::size_t kAtDataLength = 14;
constexpr std::size_t kAtParam3 = 18;
constexpr std::size_t kAtParam4 = 20;
constexpr std::size_t kAtPayloadLength = 22;
constexpr std::size_t kAtHeadCheck = 26;

void Put(std::string& bytes, std::size_t at, std::uint32_t value, std::size_t count) {
  PutLittleEndian(bytes.data() + at, value, count);
}

std::uint32_t DoubleWord(std::string_view bytes, std::size_t at) {
  return LittleEndianAt<std::uint32_t>(bytes, at);
}

std::uint16_t Word(std::string_view bytes, std::size_t at) {
  return LittleEndianAt<std::uint16_t>(bytes, at);
}

std::uint8_t Byte(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

}  // namespace

void EncodeBlockRequest(const BlockMessage& request, std::string& bytes) {
  const std::size_t checked = kBlockHead + request.payload.size();
  bytes.assign(kBlockHead, '\0');
  bytes[0] = kBlockStart;
  bytes[1] = kBlockSecond;
  Put(bytes, kAtVersion, kVersion, 1);
  Put(bytes, kAtKind, kRequest, 1);
  Put(bytes, kAtUnit, request.unit, 1);
  Put(bytes, kAtSequence, request.sequence, 2);
  Put(bytes, kAtOpCode, request.fields.opCode, 2);
  Put(bytes, kAtParam1, request.fields.param1, 4);
  Put(bytes, kAtDataLength, request.fields.dataLength, 4);
  Put(bytes, kAtParam3, request.fields.param3, 2);
  Put(bytes, kAtParam4, request.fields.param4, 2);
  Put(bytes, kAtPayloadLength, static_cast<std::uint32_t>(request.payload.size()), 4);
  const std::uint32_t headCheck = Crc32(std::string_view(bytes).substr(0, kAtHeadCheck));
  Put(bytes, kAtHeadCheck, headCheck & 0xFFFFU, 2);
  bytes += request.payload;
  bytes.resize(checked + kBlockCheck);
  const std::string_view unchecked = std::string_view(bytes).substr(kAtHeadCheck, checked - kAtHeadCheck);
  Put(bytes, checked, Crc32(unchecked, headCheck), kBlockCheck);
}

std::optional<std::size_t> ReplyPayloadLength(std::string_view head) {
  if (head.size() < kBlockHead || head[0] != kBlockStart || head[1] != kBlockSecond) return std::nullopt;
  if (Byte(head, kAtVersion) != kVersion || Byte(head, kAtKind) != kReply) return std::nullopt;
  if (Word(head, kAtHeadCheck) != (Crc32(head.substr(0, kAtHeadCheck)) & 0xFFFFU)) return std::nullopt;
  const std::uint32_t length = DoubleWord(head, kAtPayloadLength);
  if (length > kMaxReplyPayload) return std::nullopt;
  return length;
}

std::optional<BlockMessage> DecodeBlockReply(std::string_view bytes) {
  const std::size_t checked = bytes.size() - kBlockCheck;
  if (DoubleWord(bytes, checked) != Crc32(bytes.substr(0, checked))) return std::nullopt;
  return BlockMessage{.unit = Byte(bytes, kAtUnit),
                      .status = Byte(bytes, kAtStatus),
                      .sequence = Word(bytes, kAtSequence),
                      .fields = {.opCode = Word(bytes, kAtOpCode),
                                 .param1 = DoubleWord(bytes, kAtParam1),
                                 .dataLength = DoubleWord(bytes, kAtDataLength),
                                 .param3 = Word(bytes, kAtParam3),
                                 .param4 = Word(bytes, kAtParam4)},
                      .payload = bytes.substr(kBlockHead, checked - kBlockHead)};
}

}  // namespace kv
