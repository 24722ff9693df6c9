#include "KvCmDrv1/wire/MessageReceiver.h"

#include <algorithm>

namespace kv {
namespace {

// Where the next message may begin, from `from` on; the size of `bytes` when nowhere.
std::size_t NextStart(std::string_view bytes, std::size_t from) {
  const auto begins = [](char byte) { return byte == kFrameStart || byte == kBlockStart; };
  const auto found = std::find_if(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(), begins);
  return static_cast<std::size_t>(found - bytes.begin());
}

// How many characters of a frame stand at the front of `bytes`. Nearly always it is all up to the CR, which two quick
// looks tell; only what is damaged is walked character by character.
std::size_t StretchLength(std::string_view bytes) {
  const std::string_view line = bytes.substr(0, bytes.find(kFrameEnd));
  if (IsPlain(line)) return line.size();
  return static_cast<std::size_t>(std::ranges::find_if_not(line, IsFrameCharacter) - line.begin());
}

// Magic, version and kind of a reply.
constexpr std::string_view kReplyHead("\xB4\x4B\x01\x02", 4);

// Characters from the first "/" on without CR that are too many: one more than the page allows.
constexpr std::size_t kTooMany = 1108;

}  // namespace

void MessageReceiver::Feed(std::string_view bytes, Instant now) {
  if (bytes.empty()) return;
  if (mStart != 0) {
    mBytes.erase(0, mStart);
    mStart = 0;
  }
  mBytes += bytes;
  mLastArrival = now;
}

std::optional<Received> MessageReceiver::Next(Instant now, bool isEnd) {
  const std::string_view pending = Pending();
  if (pending.empty()) return std::nullopt;
  if (const std::size_t start = NextStart(pending, 0); start != 0) return UseUp(start, Received::Kind::Noise);
  return pending.front() == kFrameStart ? NextFrame(pending) : NextBlock(pending, now, isEnd);
}

void MessageReceiver::Clear() {
  mBytes.clear();
  mStart = 0;
  mLooked = 0;
}

std::optional<Received> MessageReceiver::NextFrame(std::string_view pending) {
  const std::string_view looked = pending.substr(0, kTooMany);
  mLooked += StretchLength(looked.substr(mLooked));
  const std::size_t length = mLooked;
  if (length == looked.size()) {
    if (looked.size() < kTooMany) return std::nullopt;
    return UseUp(NextStart(pending, 1), Received::Kind::TooLong);
  }
  if (looked[length] != kFrameEnd) return UseUp(length, Received::Kind::Noise);

  const std::optional<AsciiFrame> frame = FindFrame(looked.substr(0, length));
  Received received = UseUp(length + 1, frame ? Received::Kind::Frame : Received::Kind::BadCheck);
  if (frame) received.frame = *frame;
  return received;
}

std::optional<Received> MessageReceiver::NextBlock(std::string_view pending, Instant now, bool isEnd) {
  // A first byte that is wrong settles the head at once: there is nothing to wait for.
  const std::string_view begun = pending.substr(0, kReplyHead.size());
  if (!kReplyHead.starts_with(begun)) return UseUp(1, Received::Kind::BadHead);

  const auto incomplete = [this](bool isGivenUp) -> std::optional<Received> {
    if (isGivenUp) return UseUp(1, Received::Kind::Cut);
    return std::nullopt;
  };
  const bool isIdle = begun.size() < kReplyHead.size() && now - mLastArrival >= kIdle;
  if (pending.size() < kBlockHead) return incomplete(isEnd || isIdle);
  const std::optional<std::size_t> length = ReplyPayloadLength(pending);
  if (!length) return UseUp(1, Received::Kind::BadHead);
  const std::size_t whole = kBlockHead + *length + kBlockCheck;
  if (pending.size() < whole) return incomplete(isEnd);

  const std::optional<BlockMessage> block = DecodeBlockReply(pending.substr(0, whole));
  if (!block) return UseUp(1, Received::Kind::BadCheck);
  Received received = UseUp(whole, Received::Kind::Block);
  received.block = *block;
  return received;
}

Received MessageReceiver::UseUp(std::size_t count, Received::Kind kind) {
  const std::string_view bytes = std::string_view(mBytes).substr(mStart, count);
  mStart += count;
  mLooked -= std::min(mLooked, count);
  return {.kind = kind, .bytes = bytes, .frame = {}, .block = {}};
}

}  // namespace kv
