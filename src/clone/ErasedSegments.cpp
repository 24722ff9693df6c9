#include "clone/ErasedSegments.h"

#include <algorithm>

#include "base/AnsiText.h"
#include "clone/CloneLines.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

// Ends at the first byte that is not erased.
std::expected<bool, CloneOutcome> HoldsData(Channel& link, const CloneSegment& segment, const CloneWork& work) {
  for (std::uint32_t offset = 0; offset < segment.length; offset += kMostMemoryPerRead) {
    if (work.IsStopped()) return std::unexpected(CloneOutcome::OfStop());
    const std::uint32_t count = std::min(kMostMemoryPerRead, segment.length - offset);
    const auto bytes = link.ReadMemoryBlock(segment.start + offset, count, link.UnitID());
    if (!bytes) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
    if (HasData(*bytes)) return true;
    work.Report(segment.code, offset + count, segment.length);
  }
  return false;
}

}  // namespace

std::vector<CloneSegment> ErasedSegments(const CloneInfo& info) {
  std::vector<CloneSegment> erased;
  for (const CloneInfoSegment& each : info.segments) {
    if (!each.hasFrames && each.segment.length > 0) erased.push_back(each.segment);
  }
  return erased;
}

std::expected<std::vector<CloneSegment>, CloneOutcome> SegmentsThatStay(Channel& link,
                                                                        std::span<const CloneSegment> erased,
                                                                        const CloneWork& work) {
  std::vector<CloneSegment> staying;
  for (const CloneSegment& segment : erased) {
    const auto holdsData = HoldsData(link, segment, work);
    if (!holdsData) return std::unexpected(holdsData.error());
    if (*holdsData) staying.push_back(segment);
  }
  return staying;
}

std::vector<CloneSegment> SegmentsThatStayed(const CloneComparison& comparison) {
  std::vector<CloneSegment> staying;
  for (const SegmentDifference& each : comparison.segments) {
    if (!each.hasFrames && !each.differing.IsEmpty()) staying.push_back(each.segment);
  }
  return staying;
}

std::string CodesText(std::span<const CloneSegment> segments) {
  std::string text;
  for (const CloneSegment& segment : segments) text += (text.empty() ? "" : ", ") + AnsiToUtf8(segment.code);
  return text;
}

std::string StayText(std::span<const CloneSegment> staying) {
  return "All bytes of " + CodesText(staying) +
         " were erased (255) when the clone was made, so the file has no line of it. The controller holds data there, "
         "which a restore leaves as it is.";
}

}  // namespace kv
