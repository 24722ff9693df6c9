#include "clone/CloneVerify.h"

#include <algorithm>

#include "clone/CloneImage.h"

namespace kv {

std::expected<CloneComparison, CloneOutcome> VerifyClone(Channel& link, const std::filesystem::path& file,
                                                         const CloneWork& work, const std::vector<std::string>& codes) {
  const auto isWanted = [&](const CloneSegment& segment) {
    return codes.empty() || std::ranges::find(codes, segment.code) != codes.end();
  };
  auto image = CloneImage::Open(file, work);
  if (!image) return std::unexpected(image.error());
  CloneComparison comparison;
  std::uint64_t total = 0;
  for (const CloneInfoSegment& each : image->Info().segments) total += isWanted(each.segment) ? each.segment.length : 0;
  if (total == 0) return std::unexpected(NothingToCompare());
  std::uint64_t done = 0;
  for (std::size_t i = 0; i < image->Info().segments.size(); ++i) {
    const CloneSegment& segment = image->Info().segments[i].segment;
    if (!isWanted(segment)) continue;
    image->Begin(i);
    const auto comparePiece = [&](std::uint32_t offset, std::uint32_t count,
                                  AddressRanges& differing) -> std::expected<void, CloneOutcome> {
      const auto wanted = image->Read(count);
      if (!wanted) return std::unexpected(wanted.error());
      const auto held = link.ReadMemoryBlock(segment.start + offset, count, link.UnitID());
      if (!held) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
      AddDifferences(segment.start + offset, *wanted, *held, differing);
      return {};
    };
    auto difference = CompareSegment(segment, work, done, total, comparePiece);
    if (!difference) return std::unexpected(difference.error());
    difference->hasFrames = image->Info().segments[i].hasFrames;
    comparison.segments.push_back(*std::move(difference));
  }
  return comparison;
}

}  // namespace kv
