#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <vector>

#include "clone/CloneInfo.h"
#include "link/LinkLimits.h"

namespace kv {

// How one segment differs between two sides; addresses are the controller's.
struct SegmentDifference {
  CloneSegment segment;
  AddressRanges differing = {};
  bool hasFrames = true;  // false: the first file has no line of it, see ErasedSegments.h
};

// What a comparison found, in bytes of memory: how lines are cut and whether erased ones are stored does not count.
struct CloneComparison {
  std::vector<SegmentDifference> segments;  // on both sides, equal ones too, in the order of the first file
  std::vector<CloneSegment> onlyInFirst;    // code, start and length of both sides must agree to be the same segment
  std::vector<CloneSegment> onlyInSecond;

  [[nodiscard]] bool IsSame() const;
  [[nodiscard]] std::uint64_t DifferingBytes() const;
};

// What of a clone file is compared with a controller: the values of operands (OP, DT), or program and settings.
enum class ComparedKinds { All, Program, Values };
// The segments of these kinds that the file names.
[[nodiscard]] std::vector<std::string> CodesOf(const CloneInfo& info, ComparedKinds kinds);

// How the two kinds of memory came out of a comparison with a controller. A program that runs changes the values of its
// operands (OP, DT) by itself, so that a difference there means something else than one in the program or its settings.
struct KindVerdict {
  bool isValues = false;    // OP and DT; else all other segments
  std::string codes;        // "HW, FT, AP"
  std::uint64_t bytes = 0;  // that differ

  [[nodiscard]] std::string Text() const;  // a sentence
};

// Of the kinds that were compared, program and settings first.
[[nodiscard]] std::vector<KindVerdict> VerdictsByKind(const CloneComparison& comparison);

// For the two comparisons. Adds the places at which two stretches of one length, both from `address` on, differ.
void AddDifferences(std::uint32_t address, std::span<const std::uint8_t> first, std::span<const std::uint8_t> second,
                    AddressRanges& differing);

// Why two sides cannot be called the same when there is not a byte to compare.
[[nodiscard]] CloneOutcome NothingToCompare();

// Bytes of all segments that the file names.
[[nodiscard]] std::uint64_t BytesOf(const CloneInfo& info);

// Compares a segment piece by piece: `readPiece(offset, count, differing)` compares one of them. `done` counts the
// bytes of all segments and goes on.
template <typename ReadPiece>
[[nodiscard]] std::expected<SegmentDifference, CloneOutcome> CompareSegment(const CloneSegment& segment,
                                                                            const CloneWork& work, std::uint64_t& done,
                                                                            std::uint64_t total, ReadPiece readPiece) {
  SegmentDifference difference{.segment = segment};
  for (std::uint32_t offset = 0; offset < segment.length;) {
    if (work.IsStopped()) return std::unexpected(CloneOutcome::OfStop());
    const std::uint32_t count = std::min(kMostMemoryPerRead, segment.length - offset);
    const std::expected<void, CloneOutcome> compared = readPiece(offset, count, difference.differing);
    if (!compared) return std::unexpected(compared.error());
    offset += count;
    done += count;
    work.Report(segment.code, done, total);
  }
  return difference;
}

}  // namespace kv
