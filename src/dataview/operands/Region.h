#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// Operands of one type, `from` to `to`, both inclusive; none when `to` is less. One region is one request to the
// controller.
struct Region {
  std::int32_t from = 0;
  std::int32_t to = 0;
  OperandTypeCode type = OperandTypeCode::MB;

  [[nodiscard]] constexpr std::int64_t Count() const { return std::int64_t{to} - from + 1; }
  [[nodiscard]] constexpr bool IsEmpty() const { return to < from; }
  [[nodiscard]] constexpr bool Contains(OperandTypeCode ofType, std::int32_t address) const {
    return type == ofType && address >= from && address <= to;
  }
  // Whether the two have an operand in common.
  [[nodiscard]] constexpr bool Overlaps(const Region& other) const {
    return type == other.type && !IsEmpty() && !other.IsEmpty() && from <= other.to && other.from <= to;
  }
  bool operator==(const Region&) const = default;
};

// Regions that do not overlap, in the order of types and addresses.
class DisjointRegions {
 public:
  // Adds a region that is not empty; false, and nothing is added, when it overlaps with one that is there.
  bool Add(const Region& region);

 private:
  struct ByPlace {
    bool operator()(const Region& one, const Region& other) const;
  };
  std::set<Region, ByPlace> mRegions;
};

// Whether one request carries the region: 1 to MaxOperandsPerRequest operands.
[[nodiscard]] bool FitsOneRequest(const Region& region);

// The region split into consecutive ones that fit one request each, in address order. None for an empty region and for
// a code that is no type.
[[nodiscard]] std::vector<Region> SplitRegion(const Region& region);

// "MI 0..59", "MI 5"; "operands 5" for a code that is no type.
[[nodiscard]] std::string RegionText(const Region& region);
// "MI 5"
[[nodiscard]] std::string OperandText(OperandTypeCode type, std::int64_t address);

}  // namespace kv::mdlDataTypesView
