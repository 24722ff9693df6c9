#include "dataview/ui/RegionFrames.h"

#include <algorithm>

namespace kv::mdlDataTypesView {

void RegionFrames::Follow(std::span<const RegionRow> rows, std::span<const std::size_t> selectedRows) {
  for (auto& spans : mSpans) spans.clear();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const Region& region = rows[row].region;
    const bool isSelected = std::ranges::find(selectedRows, row) != selectedRows.end();
    mSpans[static_cast<std::size_t>(RowOfType(region.type) - 1)].push_back({region.from, region.to, isSelected});
  }
  for (auto& spans : mSpans) std::ranges::sort(spans, {}, &Span::from);
}

RegionFrames::Cell RegionFrames::At(OperandTypeCode type, std::int32_t address) const {
  const auto& spans = mSpans[static_cast<std::size_t>(RowOfType(type) - 1)];
  const auto behind = std::ranges::upper_bound(spans, address, {}, &Span::from);
  if (behind == spans.begin()) return {};
  const Span& span = *(behind - 1);
  if (address > span.to) return {};
  return {
      .isInRegion = true, .isFirst = address == span.from, .isLast = address == span.to, .isSelected = span.isSelected};
}

}  // namespace kv::mdlDataTypesView
