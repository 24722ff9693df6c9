#include "dataview/operands/Region.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "dataview/operands/OperandCatalogue.h"
#include "link/LinkTexts.h"

namespace kv::mdlDataTypesView {

bool DisjointRegions::ByPlace::operator()(const Region& one, const Region& other) const {
  return std::tie(one.type, one.from) < std::tie(other.type, other.from);
}

bool DisjointRegions::Add(const Region& region) {
  const auto after = mRegions.lower_bound(region);
  if (after != mRegions.end() && after->Overlaps(region)) return false;
  if (after != mRegions.begin() && std::prev(after)->Overlaps(region)) return false;
  mRegions.insert(after, region);
  return true;
}

bool FitsOneRequest(const Region& region) {
  return region.Count() >= 1 && region.Count() <= MaxOperandsPerRequest(region.type);
}

std::vector<Region> SplitRegion(const Region& region) {
  std::vector<Region> pieces;
  const std::int64_t most = MaxOperandsPerRequest(region.type);
  if (most < 1) return pieces;
  for (std::int64_t from = region.from; from <= region.to; from += most) {
    const auto last = static_cast<std::int32_t>(std::min<std::int64_t>(from + most - 1, region.to));
    pieces.push_back({.from = static_cast<std::int32_t>(from), .to = last, .type = region.type});
  }
  return pieces;
}

std::string RegionText(const Region& region) {
  const std::string_view name = TypeName(region.type);
  return RangeText(name.empty() ? "operands" : name, region.from, region.to);
}

std::string OperandText(OperandTypeCode type, std::int64_t address) {
  return RangeText(TypeName(type), address, address);
}

}  // namespace kv::mdlDataTypesView
