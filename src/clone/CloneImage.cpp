#include "clone/CloneImage.h"

#include <algorithm>

#include "base/PathText.h"

namespace kv {

std::expected<CloneImage, CloneOutcome> CloneImage::Open(const std::filesystem::path& file, const CloneWork& work) {
  auto info = InspectClone(file, work);
  if (!info) return std::unexpected(info.error());
  const std::string name = Utf8FromPath(file);
  if (!info->IsSound()) {
    return std::unexpected(CloneOutcome::OfFile(info->damages.front().In(name)));
  }
  auto stream = OpenForReading(file);
  if (!stream) return std::unexpected(CloneOutcome::OfFile(stream.error()));
  return CloneImage(name, *std::move(stream), *std::move(info));
}

void CloneImage::Begin(std::size_t segment) {
  const CloneInfoSegment& wanted = mInfo.segments[segment];
  mAddress = wanted.segment.start;
  mEnd = mAddress + wanted.segment.length;
  mFrame = {};
  mLines.reset();
  if (!wanted.hasFrames) return;
  mStream.clear();
  mStream.seekg(static_cast<std::streamoff>(wanted.position));
  mLines.emplace(mStream, mName);
}

bool CloneImage::NextFrame() {
  const std::uint64_t behind = std::uint64_t{mFrame.address} + mFrame.data.size();
  const auto line = mLines->Next();
  if (!line || !*line) return false;
  auto frame = ParseCloneFrame(**line);
  if (!frame) return false;
  const bool isInOrder = mFrame.data.empty() || frame->isEnd || frame->address >= behind || frame->address < mAddress;
  mFrame = *std::move(frame);
  if (mFrame.isEnd || mFrame.address < mAddress || mFrame.address >= mEnd) mLines.reset();
  return isInOrder;
}

std::expected<Bytes, CloneOutcome> CloneImage::Read(std::uint32_t count) {
  constexpr std::uint8_t kErased = 255;
  Bytes bytes(count, kErased);
  const std::uint64_t end = mAddress + count;
  while (mLines) {
    const std::uint64_t frameEnd = std::uint64_t{mFrame.address} + mFrame.data.size();
    const std::uint64_t first = std::max<std::uint64_t>(mAddress, mFrame.address);
    const std::uint64_t last = std::min(end, frameEnd);
    if (first < last) {
      const auto from = mFrame.data.begin() + static_cast<std::ptrdiff_t>(first - mFrame.address);
      std::copy_n(from, last - first, bytes.begin() + static_cast<std::ptrdiff_t>(first - mAddress));
    }
    if (!mFrame.data.empty() && frameEnd > end) break;  // the rest of it belongs to the next bytes
    if (!NextFrame()) {
      return std::unexpected(CloneOutcome::OfFile({mName, "", "it was changed while it was read; try again"}));
    }
  }
  mAddress = end;
  return bytes;
}

}  // namespace kv
