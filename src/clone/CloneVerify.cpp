#include "clone/CloneVerify.h"

#include "clone/CloneImage.h"

namespace kv {

std::expected<CloneComparison, CloneOutcome> VerifyClone(Channel& link, const std::filesystem::path& file,
                                                         const CloneWork& work) {
  auto image = CloneImage::Open(file, work);
  if (!image) return std::unexpected(image.error());
  CloneComparison comparison;
  const std::uint64_t total = BytesOf(image->Info());
  std::uint64_t done = 0;
  for (std::size_t i = 0; i < image->Info().segments.size(); ++i) {
    const CloneSegment& segment = image->Info().segments[i].segment;
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
    comparison.segments.push_back(*std::move(difference));
  }
  return comparison;
}

}  // namespace kv
