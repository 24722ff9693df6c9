#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "clone/CloneInfo.h"

namespace kv {

// How one segment differs between two sides; addresses are the controller's.
struct SegmentDifference {
  CloneSegment segment;
  AddressRanges differing;
};

// What a comparison found, in bytes of memory: how lines are cut and whether erased ones are stored does not count.
struct CloneComparison {
  std::vector<SegmentDifference> segments;  // on both sides, equal ones too, in the order of the first file
  std::vector<CloneSegment> onlyInFirst;    // code, start and length of both sides must agree to be the same segment
  std::vector<CloneSegment> onlyInSecond;

  [[nodiscard]] bool IsSame() const;
  [[nodiscard]] std::uint64_t DifferingBytes() const;
};

}  // namespace kv
