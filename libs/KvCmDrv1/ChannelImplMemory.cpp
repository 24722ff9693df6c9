#include <algorithm>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/BlockFacts.h"
#include "base/Hex.h"
#include "link/BlockOperations.h"

namespace kv {
namespace {

std::string MemoryText(std::uint32_t address, std::size_t length, std::uint8_t unit) {
  return "reading " + std::to_string(length) + " bytes of memory at " + ToHex(address, 8) + " from unit " +
         std::to_string(unit);
}

}  // namespace

std::optional<Bytes> ChannelImpl::ReadMemoryBlock(std::uint32_t address, std::uint32_t length, std::uint8_t unit) {
  if (length < 1 || length > kMostMemoryPerRead || address > 0xFFFFFFFF - (length - 1)) {
    FailArgument(std::to_string(length) + " bytes; one request takes 1 to " + std::to_string(kMostMemoryPerRead) +
                     ", up to address FFFFFFFF",
                 MemoryText(address, length, unit));
    return std::nullopt;
  }
  const Instant start = mPacer.Now() + mClient.RestartRest(unit);
  if (const auto done = mClient.EnsureHandshake(unit); !done) {
    Fail(done.error(), MemoryText(address, length, unit));
    return std::nullopt;
  }
  const bool isAsciiOnly = mClient.Unit(unit).isAsciiOnly;
  PieceSize& piece = isAsciiOnly ? mTextPiece : mBlockPiece;

  // What the largest pieces would be allowed, for all of them together.
  const std::size_t pieces = (length + piece.Most() - 1) / piece.Most();
  const Instant notAfter = start + Longest(pieces, 3 * std::size_t{length} + 100 * pieces);

  Bytes bytes(length);
  for (std::uint32_t done = 0; done < length;) {
    const std::uint32_t count = std::min(piece.Size(), length - done);
    const bool hasCome = ReadPiece(isAsciiOnly, address + done, std::span(bytes).subspan(done, count), unit, notAfter);
    if (!NotePiece(piece, hasCome, count, notAfter)) return std::nullopt;
    if (hasCome) done += count;
  }
  Succeed();
  return bytes;
}

bool ChannelImpl::NotePiece(PieceSize& piece, bool hasCome, std::uint32_t count, Instant notAfter) const {
  const bool isWorthSmaller = mError.code == LinkErrorCode::Damaged && count > PieceSize::kSmallest;
  if (!hasCome && (!isWorthSmaller || mPacer.Now() >= notAfter)) return false;
  if (hasCome && mClient.LastWasSmooth()) {
    piece.Good();
  } else {
    piece.Damaged();
  }
  return true;
}

bool ChannelImpl::ReadPiece(bool isAsciiOnly, std::uint32_t address, std::span<std::uint8_t> bytes, std::uint8_t unit,
                            Instant notAfter) {
  constexpr std::size_t kEcho = 18;  // letters, tag, address, length
  const auto doing = [&] { return MemoryText(address, bytes.size(), unit); };
  const auto length = static_cast<std::uint32_t>(bytes.size());
  if (isAsciiOnly) {
    const std::uint16_t tag = mClient.NextTag();
    const std::string_view text = mWriter.ReadMemory(unit, tag, address, length);
    const auto reply = Ask({unit, text, TaggedRead(kEcho + 2 * bytes.size()), notAfter}, doing);
    if (!reply) return false;
    if (ReadMemoryBytes(*reply, tag, address, bytes)) return true;
  } else {
    const auto reply = mClient.SendBlock(
        {.unit = unit,
         .fields =
             {.opCode = BlockOperation::kMemory, .param1 = address, .dataLength = length, .param3 = 0, .param4 = 0},
         .payload = {},
         .replyPayload = bytes.size(),
         .notAfter = notAfter});
    if (!reply) {
      Fail(reply.error(), doing());
      return false;
    }
    if (FailedStatus(reply->status, doing)) return false;
    if (reply->payload.size() == bytes.size()) {
      std::ranges::copy(reply->payload, bytes.begin());
      return true;
    }
  }
  FailMalformed(doing());
  return false;
}

Duration ChannelImpl::Longest(std::size_t exchanges, std::size_t bytes) const {
  const Duration wait = static_cast<Duration::rep>(exchanges) * mSettings.timeOut;
  return mSettings.tries * (wait + mLine.WireTime(bytes));
}

DownloadEngine* ChannelImpl::GetDownloadEngine() {
  const std::string doing = "asking unit " + std::to_string(mSettings.unit) + " for block messages";
  if (const auto done = mClient.EnsureHandshake(mSettings.unit); !done) {
    Fail(done.error(), doing);
    return nullptr;
  }
  if (mClient.Unit(mSettings.unit).isAsciiOnly) {
    Fail(mClient.Explain(ExchangeOutcome::NotSupported), doing);
    return nullptr;
  }
  Succeed();
  return &mBlockEngine;
}

// Raw frames ask nobody who he is, so that is asked before they are sent.
SerialPortObject* ChannelImpl::GetSerialPort() {
  if (!mLine.IsOpen()) return nullptr;
  if (const auto done = mClient.EnsureHandshake(mSettings.unit); !done) {
    Fail(done.error(), "preparing raw frames for unit " + std::to_string(mSettings.unit));
    return nullptr;
  }
  return &mRawPort;
}

std::optional<BlockReply> ChannelImpl::AskBlock(const BlockFields& fields, std::string_view payload) {
  const std::uint8_t unit = mSettings.unit;
  const auto doing = [&] {
    return "block operation " + std::to_string(fields.opCode) + " (" + std::string(BlockFactsOf(fields.opCode).name) +
           ") with unit " + std::to_string(unit);
  };
  if (payload.size() > kMostBlockData) {
    FailArgument(
        std::to_string(payload.size()) + " bytes; one message takes " + std::to_string(kMostBlockData) + " at most",
        doing());
    return std::nullopt;
  }
  const auto reply = mClient.SendBlock(
      {.unit = unit, .fields = fields, .payload = payload, .replyPayload = LongestReplyOf(fields), .notAfter = {}});
  if (!reply) {
    Fail(reply.error(), doing());
    return std::nullopt;
  }
  Succeed();
  return *reply;
}

bool BlockEngine::SendWithData(std::span<const std::uint8_t> data) {
  const std::string_view payload(reinterpret_cast<const char*>(data.data()), data.size());
  mReply.clear();
  mStatus = 0;
  const std::optional<BlockReply> reply = mChannel.AskBlock(mMessage, payload);
  if (!reply) return false;
  mReply.assign(reply->payload.begin(), reply->payload.end());
  mStatus = reply->status;
  return true;
}

}  // namespace kv
