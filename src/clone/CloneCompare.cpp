#include "clone/CloneCompare.h"

#include <algorithm>

namespace kv {

bool CloneComparison::IsSame() const {
  return onlyInFirst.empty() && onlyInSecond.empty() && DifferingBytes() == 0;
}

std::uint64_t CloneComparison::DifferingBytes() const {
  std::uint64_t bytes = 0;
  for (const SegmentDifference& segment : segments) bytes += segment.differing.Bytes();
  return bytes;
}

void AddDifferences(std::uint32_t address, std::span<const std::uint8_t> first, std::span<const std::uint8_t> second,
                    AddressRanges& differing) {
  if (std::ranges::equal(first, second)) return;
  for (std::size_t i = 0; i < first.size(); ++i) {
    if (first[i] != second[i]) differing.Add(address + static_cast<std::uint32_t>(i), 1);
  }
}

std::uint64_t BytesOf(const CloneInfo& info) {
  std::uint64_t bytes = 0;
  for (const CloneInfoSegment& segment : info.segments) bytes += segment.segment.length;
  return bytes;
}

}  // namespace kv
