#include "clone/CloneDiff.h"

#include <optional>
#include <vector>

#include "clone/CloneImage.h"

namespace kv {
namespace {

// Which segment of the second file is which of the first; each is taken once.
class Partners {
 public:
  explicit Partners(const CloneInfo& second) : mSecond(second), mIsTaken(second.segments.size(), false) {}

  // The kind does not count: a segment without lines has none.
  std::optional<std::size_t> Take(const CloneSegment& wanted) {
    for (std::size_t i = 0; i < mIsTaken.size(); ++i) {
      const CloneSegment& segment = mSecond.segments[i].segment;
      if (mIsTaken[i] || segment.code != wanted.code || segment.start != wanted.start) continue;
      if (segment.length != wanted.length) continue;
      mIsTaken[i] = true;
      return i;
    }
    return std::nullopt;
  }

  std::vector<CloneSegment> Rest() const {
    std::vector<CloneSegment> rest;
    for (std::size_t i = 0; i < mIsTaken.size(); ++i) {
      if (!mIsTaken[i]) rest.push_back(mSecond.segments[i].segment);
    }
    return rest;
  }

 private:
  const CloneInfo& mSecond;
  std::vector<bool> mIsTaken;
};

}  // namespace

std::expected<CloneComparison, CloneOutcome> DiffClones(const std::filesystem::path& firstFile,
                                                        const std::filesystem::path& secondFile,
                                                        const CloneWork& work) {
  auto first = CloneImage::Open(firstFile, work);
  if (!first) return std::unexpected(first.error());
  auto second = CloneImage::Open(secondFile, work);
  if (!second) return std::unexpected(second.error());

  if (BytesOf(first->Info()) + BytesOf(second->Info()) == 0) return std::unexpected(NothingToCompare());
  CloneComparison comparison;
  Partners partners(second->Info());
  const std::uint64_t total = BytesOf(first->Info());
  std::uint64_t done = 0;
  for (std::size_t i = 0; i < first->Info().segments.size(); ++i) {
    const CloneSegment& segment = first->Info().segments[i].segment;
    const auto partner = partners.Take(segment);
    if (!partner) {
      comparison.onlyInFirst.push_back(segment);
      done += segment.length;
      continue;
    }
    first->Begin(i);
    second->Begin(*partner);
    const auto comparePiece = [&](std::uint32_t offset, std::uint32_t count,
                                  AddressRanges& differing) -> std::expected<void, CloneOutcome> {
      const auto here = first->Read(count);
      if (!here) return std::unexpected(here.error());
      const auto there = second->Read(count);
      if (!there) return std::unexpected(there.error());
      AddDifferences(segment.start + offset, *here, *there, differing);
      return {};
    };
    auto difference = CompareSegment(segment, work, done, total, comparePiece);
    if (!difference) return std::unexpected(difference.error());
    comparison.segments.push_back(*std::move(difference));
  }
  comparison.onlyInSecond = partners.Rest();
  return comparison;
}

}  // namespace kv
