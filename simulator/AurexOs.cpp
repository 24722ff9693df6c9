#include "simulator/AurexOs.h"

#include <algorithm>

namespace sim {
namespace {

constexpr std::size_t kHeaderSize = 16;
constexpr std::string_view kHeaderMagic = "OS\x64\x01";
constexpr std::size_t kLargestChunk = 500;
constexpr std::uint16_t kHeaderTopic = 0;
constexpr std::uint16_t kOsTopic = 1;
constexpr std::uint16_t kFontsTopic = 2;

std::uint16_t SequenceAfter(std::uint16_t sequence) {
  return sequence == 255 ? 1 : static_cast<std::uint16_t>(sequence + 1);
}

}  // namespace

void AurexOs::Drop() {
  mVersion.reset();
  mLast.reset();
  mBytes = 0;
  mChunks = 0;
  mHasOs = false;
  mProgrammed = false;
}

Result<void> AurexOs::Take(const OsChunk& chunk) {
  if (chunk.topic == kHeaderTopic) return TakeHeader(chunk.data);
  if (chunk.data.empty() || chunk.data.size() > kLargestChunk) return Refuse(Refusal::Malformed);
  if (!mVersion || mProgrammed || chunk.topic > kFontsTopic) return Refuse(Refusal::NotTogether);
  if (mLast == chunk) return {};
  const bool continues = mLast && mLast->topic == chunk.topic;
  if (chunk.sequence != (continues ? SequenceAfter(mLast->sequence) : 1)) return Refuse(Refusal::NotTogether);
  mLast = chunk;
  mBytes += chunk.data.size();
  ++mChunks;
  mHasOs = mHasOs || chunk.topic == kOsTopic;
  return {};
}

// "O", "S", 100, 1, model (4), version digits (3), five zero bytes.
Result<void> AurexOs::TakeHeader(std::string_view header) {
  if (header.size() != kHeaderSize || !header.starts_with(kHeaderMagic)) return Refuse(Refusal::NotTogether);
  const std::string_view digits = header.substr(8, 3);
  const bool isRight = header.substr(4, 4) == mModel.osModel &&
                       std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }) &&
                       header.substr(11) == std::string(5, '\0');
  if (!isRight) return Refuse(Refusal::NotTogether);
  Drop();
  mVersion = OsVersion{std::string(digits.substr(0, 1)) + "." + std::string(digits.substr(1)), 0};
  return {};
}

Result<std::size_t> AurexOs::Program() {
  if (!mHasOs || mProgrammed) return Refuse(Refusal::NotTogether);
  mProgrammed = true;
  return mBytes;
}

std::optional<OsVersion> AurexOs::NewVersion() const {
  return mProgrammed ? mVersion : std::nullopt;
}

}  // namespace sim
