#pragma once

#include <expected>
#include <span>
#include <string>
#include <vector>

#include "clone/CloneCompare.h"
#include "clone/CloneInfo.h"
#include "clone/CloneOutcome.h"
#include "link/Channel.h"

namespace kv {

// Segments that a clone file names and has no line of: all of their bytes were 255. A restore sends nothing for them,
// so a target keeps there what it has, and restoring again does not change that. BeginRestore can erase them.
[[nodiscard]] std::vector<CloneSegment> ErasedSegments(const CloneInfo& info);

// Those of them in which the controller holds a byte that is not 255. Only reads.
[[nodiscard]] std::expected<std::vector<CloneSegment>, CloneOutcome> SegmentsThatStay(
    Channel& link, std::span<const CloneSegment> erased, const CloneWork& work = {});

// Those of them that a comparison with the controller has found different.
[[nodiscard]] std::vector<CloneSegment> SegmentsThatStayed(const CloneComparison& comparison);

// "AP, OS".
[[nodiscard]] std::string CodesText(std::span<const CloneSegment> segments);

// What a user is told about segments that stay, a sentence or two; the same words in window and command line.
[[nodiscard]] std::string StayText(std::span<const CloneSegment> staying);

}  // namespace kv
