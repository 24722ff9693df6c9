#include "simulator/FrameReader.h"

#include <algorithm>
#include <chrono>

namespace sim {
namespace {

// TCP and serial lines deliver the bytes of one message without such a pause.
constexpr kv::Duration kSilence = std::chrono::milliseconds(100);

// More characters than this without a CR cannot become a frame any more.
constexpr std::size_t kMostWithoutEnd = 1107;

bool IsFrameCharacter(char byte) {
  return byte >= 0x20 && byte <= 0x7E;
}

}  // namespace

void FrameReader::Feed(std::string_view bytes, kv::Instant at) {
  mBuffer.erase(0, mBegin);
  mBufferPosition += mBegin;
  mBegin = 0;
  mBuffer += bytes;
  mLastArrival = at;
}

std::optional<FrameReader::Message> FrameReader::Next(kv::Instant now) {
  while (true) {
    mAwaitsBlock = false;
    SkipNoise();
    const std::string_view rest = Rest();
    if (rest.empty()) return std::nullopt;
    const bool isBlock = rest.front() == kBlockStart;
    const Look look = isBlock ? LookForBlock() : LookForFrame();
    if (look) return *look;
    if (look.error() == NoMessage::Dropped) continue;
    if (!isBlock) return std::nullopt;
    mAwaitsBlock = true;
    if (now < mLastArrival + kSilence) return std::nullopt;
    Drop(1);
  }
}

std::optional<kv::Instant> FrameReader::Deadline() const {
  if (!mAwaitsBlock) return std::nullopt;
  return mLastArrival + kSilence;
}

void FrameReader::ReadAgain(const Message& last, std::string_view damaged) {
  mBegin = static_cast<std::size_t>(last.position - mBufferPosition);
  mBuffer.replace(mBegin, damaged.size(), damaged);
}

void FrameReader::Clear() {
  mBufferPosition += mBuffer.size();
  mBuffer.clear();
  mBegin = 0;
  mAwaited = 0;
  mAwaitsBlock = false;
}

FrameReader::Look FrameReader::LookForFrame() {
  const std::string_view rest = Rest();
  const auto stop = std::find_if_not(rest.begin() + 1, rest.end(), IsFrameCharacter);
  const auto length = static_cast<std::size_t>(stop - rest.begin());
  if (stop == rest.end()) {
    if (length <= kMostWithoutEnd) return std::unexpected(NoMessage::Awaiting);
    Drop(std::min(rest.find(kFrameStart, 1), length));
    return std::unexpected(NoMessage::Dropped);
  }
  if (*stop != kFrameEnd) {
    Drop(length);
    return std::unexpected(NoMessage::Dropped);
  }
  // A frame that was cut stands before the good one, so the last start is tried first.
  const std::size_t size = length + 1;
  for (std::size_t start = rest.rfind(kFrameStart, length);
       start != std::string_view::npos && size - start <= kLongestFrame;
       start = start == 0 ? std::string_view::npos : rest.rfind(kFrameStart, start - 1)) {
    const std::string_view stretch = rest.substr(start, size - start);
    if (const auto frame = DecodeFrame(stretch)) return Take(*frame, stretch);
  }
  Drop(size);
  return std::unexpected(NoMessage::Dropped);
}

FrameReader::Look FrameReader::LookForBlock() {
  const std::string_view rest = Rest();
  if (rest.size() < std::max(mAwaited, kBlockHeadSize)) return std::unexpected(NoMessage::Awaiting);
  const auto size = BlockSize(rest);
  if (size && rest.size() < *size) {
    mAwaited = *size;
    return std::unexpected(NoMessage::Awaiting);
  }
  if (size) {
    const std::string_view whole = rest.substr(0, *size);
    if (const auto block = DecodeBlock(whole)) return Take(*block, whole);
  }
  Drop(1);
  return std::unexpected(NoMessage::Dropped);
}

FrameReader::Message FrameReader::Take(const std::variant<AsciiFrame, BlockMessage>& content, std::string_view bytes) {
  const auto offset = static_cast<std::size_t>(bytes.data() - mBuffer.data());
  mBegin = offset + bytes.size();
  mAwaited = 0;
  return {content, bytes, mBufferPosition + offset};
}

void FrameReader::SkipNoise() {
  const std::string_view rest = Rest();
  const auto start = std::find_if(rest.begin(), rest.end(), [this](char byte) {
    return byte == kFrameStart || (mUnderstandsBlocks && byte == kBlockStart);
  });
  if (start != rest.begin()) Drop(static_cast<std::size_t>(start - rest.begin()));
}

void FrameReader::Drop(std::size_t count) {
  mBegin += count;
  mAwaited = 0;
}

}  // namespace sim
