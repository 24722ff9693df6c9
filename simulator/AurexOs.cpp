#include "simulator/AurexOs.h"

#include <algorithm>

#include "base/Crc32.h"
#include "simulator/FlashMap.h"
#include "simulator/Inflate.h"
#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kHeaderSize = 16;
constexpr std::string_view kHeaderMagic = "OS\x64\x01";
constexpr std::size_t kSizes = 8;  // at the front of each topic
constexpr std::size_t kLargestChunk = 500;
constexpr std::uint16_t kHeaderTopic = 0;
constexpr std::uint16_t kFontsTopic = 16;

FlashArea AreaOf(const Model& model, std::uint16_t topic) {
  const FlashMap* map = FindFlashMap(model.osModel);
  if (map == nullptr) return {0, 0};
  return topic == kFontsTopic ? map->fonts : map->os;
}

std::uint16_t SequenceAfter(std::uint16_t sequence) {
  return sequence == 255 ? 1 : static_cast<std::uint16_t>(sequence + 1);
}

// 460 as "4.60".
std::string NumberText(unsigned version) {
  const std::string digits = std::to_string(1000 + version).substr(1);
  return digits.substr(0, 1) + "." + digits.substr(1);
}

}  // namespace

void AurexOs::Drop() {
  mAnnounced.reset();
  mLast.reset();
  mTopic.reset();
  mFree = 0;
  mCheck = 0;
  mBytes = 0;
  mTopics = 0;
  mChunks = 0;
  mHasOs = false;
  mProgrammed = false;
}

Result<void> AurexOs::Take(const OsChunk& chunk) {
  if (chunk.topic == kHeaderTopic) return TakeHeader(chunk.data);
  if (chunk.data.empty() || chunk.data.size() > kLargestChunk) return Refuse(Refusal::Malformed);
  if (!mAnnounced || mProgrammed) return Refuse(Refusal::NotTogether);
  if (mLast == chunk) return {};
  const auto taken = mTopic ? Continue(chunk) : Begin(chunk);
  if (!taken) return taken;
  mLast = chunk;
  ++mChunks;
  return {};
}

// "O", "S", 100, 1, O/S model (4), version (2), build (1), number of topics (1), CRC-32 (4).
Result<void> AurexOs::TakeHeader(std::string_view header) {
  if (header.size() != kHeaderSize || !header.starts_with(kHeaderMagic)) return Refuse(Refusal::NotTogether);
  const unsigned version = LittleAt(header, 8) & 0xFFFF;
  const auto build = static_cast<unsigned char>(header[10]);
  const auto topics = static_cast<unsigned char>(header[11]);
  const bool isRight =
      header.substr(4, 4) == mModel.osModel && version <= 999 && build <= 99 && topics >= 1 && topics <= kFontsTopic;
  if (!isRight) return Refuse(Refusal::NotTogether);
  Drop();
  mAnnounced = {.version = {NumberText(version), build}, .topics = topics, .check = LittleAt(header, 12)};
  return {};
}

Result<void> AurexOs::Begin(const OsChunk& chunk) {
  const int before = mLast ? mLast->topic : kHeaderTopic;
  const bool isNext = chunk.topic > before && chunk.topic <= kFontsTopic && chunk.sequence == 1;
  if (!isNext || mTopics == mAnnounced->topics || chunk.data.size() <= kSizes) return Refuse(Refusal::NotTogether);
  const Topic topic{.number = chunk.topic,
                    .base = chunk.address,
                    .plainSize = LittleAt(chunk.data, 0),
                    .sentSize = LittleAt(chunk.data, 4),
                    .stream = {}};
  const FlashArea area = AreaOf(mModel, topic.number);
  const bool fits =
      topic.base >= std::max(area.first, mFree) && topic.base < area.end && topic.plainSize <= area.end - topic.base;
  if (!fits) return Refuse(Refusal::OutsideMemory);
  const bool isWhole = topic.sentSize <= topic.plainSize && chunk.data.size() - kSizes <= topic.sentSize;
  if (!isWhole) return Refuse(Refusal::NotTogether);
  mTopic = topic;
  const auto added = Add(chunk.data);
  if (!added) mTopic.reset();
  return added;
}

Result<void> AurexOs::Continue(const OsChunk& chunk) {
  const bool isNext = chunk.topic == mTopic->number && chunk.sequence == SequenceAfter(mLast->sequence) &&
                      chunk.address == mTopic->base + mTopic->stream.size() &&
                      chunk.data.size() <= kSizes + mTopic->sentSize - mTopic->stream.size();
  return isNext ? Add(chunk.data) : Refuse(Refusal::NotTogether);
}

// Adds to the topic that is being received, and ends it when that makes it whole.
Result<void> AurexOs::Add(std::string_view data) {
  mTopic->stream += data;
  if (mTopic->stream.size() < kSizes + mTopic->sentSize) return {};
  const std::string_view sent = std::string_view(mTopic->stream).substr(kSizes);
  const bool isPacked = mTopic->sentSize < mTopic->plainSize;
  const auto plain = isPacked ? Inflate(sent, mTopic->plainSize) : std::optional(std::string(sent));
  if (!plain) {
    mTopic->stream.resize(mTopic->stream.size() - data.size());
    return Refuse(Refusal::NotTogether);
  }
  mCheck = kv::Crc32(*plain, mCheck);
  mBytes += plain->size();
  mFree = mTopic->base + mTopic->plainSize;
  mHasOs = mHasOs || mTopic->number < kFontsTopic;
  ++mTopics;
  mTopic.reset();
  return {};
}

Result<std::size_t> AurexOs::Program() {
  const bool isWhole = mAnnounced && !mTopic && mHasOs && mTopics == mAnnounced->topics && mCheck == mAnnounced->check;
  if (!isWhole || mProgrammed) return Refuse(Refusal::NotTogether);
  mProgrammed = true;
  return mBytes;
}

std::optional<OsVersion> AurexOs::NewVersion() const {
  return mProgrammed ? std::optional(mAnnounced->version) : std::nullopt;
}

}  // namespace sim
