#include "dataview/RegionTable.h"

#include <algorithm>
#include <utility>

#include "dataview/OperandStore.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"

namespace kv::mdlDataTypesView {
namespace {

// The operands of one selected row; from > to when it has none there.
Region SelectedRegion(const GridSelection& selection, OperandTypeCode type, std::int32_t count) {
  return {.from = std::max(selection.left, 1) - 1, .to = std::min(selection.right - 1, count - 1), .type = type};
}

template <typename Code>
bool IsOffered(std::span<const Code> offered, Code code) {
  return std::ranges::find(offered, code) != offered.end();
}

FormatCode UsualFormat(SizeCode size) {
  return size == SizeCode::Bit1 ? FormatCode::Binary : FormatCode::Decimal;
}

}  // namespace

RegionRow NewRegionRow(const Region& region) {
  const SizeCode size = OwnSize(region.type);
  return {.region = region, .description = {}, .size = size, .format = UsualFormat(size), .values = {}, .readAt = {}};
}

std::vector<Region> RegionTable::Regions() const {
  std::vector<Region> regions;
  regions.reserve(mRows.size());
  for (const RegionRow& row : mRows) regions.push_back(row.region);
  return regions;
}

RegionTable::AddResult RegionTable::AddSelection(const GridSelection& selection, const HiddenRows& hidden,
                                                 const OperandStore& store) {
  AddResult result;
  const GridSelection wanted = selection.Normalised();
  const std::int32_t bottom = std::min(wanted.bottom, kOperandTypeCount);
  for (std::int32_t row = std::max(wanted.top, 1); row <= bottom; ++row) {
    if (hidden.IsHidden(row)) continue;
    const OperandTypeCode type = TypeOfRow(row);
    AddType(SelectedRegion(wanted, type, store.CountOf(type)), store, result);
  }
  return result;
}

void RegionTable::AddType(const Region& region, const OperandStore& store, AddResult& result) {
  if (region.IsEmpty()) return;
  if (region.from == 0 && region.to == store.CountOf(region.type) - 1) {
    result.removed += std::erase_if(mRows, [&](const RegionRow& row) { return row.region.type == region.type; });
  }
  if (std::ranges::any_of(mRows, [&](const RegionRow& row) { return region.Overlaps(row.region); })) {
    result.overlap = true;
    return;
  }
  for (const Region& piece : SplitRegion(region)) {
    mRows.push_back(NewRegionRow(piece));
    RefreshValues(mRows.size() - 1, store);
    ++result.added;
  }
}

void RegionTable::Remove(std::span<const std::size_t> rows) {
  std::vector<bool> isGone(mRows.size());
  for (const std::size_t row : rows) {
    if (row < isGone.size()) isGone[row] = true;
  }
  std::size_t index = 0;
  std::erase_if(mRows, [&](const RegionRow&) { return isGone[index++]; });
}

bool RegionTable::SetDescription(std::size_t row, std::string_view text) {
  if (row >= mRows.size()) return false;
  mRows[row].description = text;
  return true;
}

bool RegionTable::SetSize(std::size_t row, SizeCode size) {
  if (row >= mRows.size() || !IsOffered(SizesOffered(mRows[row].region.type), size)) return false;
  mRows[row].size = size;
  if (!IsOffered(FormatsOffered(size), mRows[row].format)) mRows[row].format = UsualFormat(size);
  return true;
}

bool RegionTable::SetFormat(std::size_t row, FormatCode format) {
  if (row >= mRows.size() || !IsOffered(FormatsOffered(mRows[row].size), format)) return false;
  mRows[row].format = format;
  return true;
}

void RegionTable::SetReadAt(std::size_t row, Instant when) {
  if (row < mRows.size()) mRows[row].readAt = when;
}

bool RegionTable::RefreshValues(std::size_t row, const OperandStore& store) {
  if (row >= mRows.size()) return false;
  RegionRow& shown = mRows[row];
  if (const auto oldest = store.OldestReadAt(shown.region)) shown.readAt = oldest;
  const std::vector<std::string> texts = store.Texts(shown.region);
  // An operand that is not known would be shown as 0, which it may not be.
  const bool isKnown = std::ranges::none_of(texts, &std::string::empty);
  std::string values = isKnown ? DisplayRow(shown.region.type, texts, shown.size, shown.format) : std::string();
  const bool wasFromFile = std::exchange(shown.isFromFile, false);
  if (values == shown.values) return wasFromFile;
  shown.values = std::move(values);
  return true;
}

}  // namespace kv::mdlDataTypesView
