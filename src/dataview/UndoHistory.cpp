#include "dataview/UndoHistory.h"

#include <algorithm>

namespace kv::mdlDataTypesView {
namespace {

bool IsSameRow(const RegionRow& one, const RegionRow& other) {
  return one.region == other.region && one.size == other.size && one.format == other.format &&
         one.description == other.description;
}

std::vector<RegionRow> WithoutValues(std::span<const RegionRow> rows) {
  std::vector<RegionRow> copies(rows.begin(), rows.end());
  for (RegionRow& row : copies) row.values = {};
  return copies;
}

std::size_t BytesOf(const std::vector<RegionRow>& rows) {
  std::size_t bytes = rows.size() * sizeof(RegionRow);
  for (const RegionRow& row : rows) bytes += row.description.size();
  return bytes;
}

}  // namespace

RowsChange DifferenceOf(std::span<const RegionRow> before, std::span<const RegionRow> after) {
  const auto [firstBefore, firstAfter] = std::ranges::mismatch(before, after, IsSameRow);
  const auto at = static_cast<std::size_t>(firstBefore - before.begin());
  before = before.subspan(at);
  after = after.subspan(at);
  while (!before.empty() && !after.empty() && IsSameRow(before.back(), after.back())) {
    before = before.first(before.size() - 1);
    after = after.first(after.size() - 1);
  }
  return {.at = at, .before = WithoutValues(before), .after = WithoutValues(after)};
}

std::size_t UndoStep::Bytes() const {
  std::size_t bytes = sizeof(UndoStep) + cells.size() * sizeof(CellChange) + BytesOf(rows.before) + BytesOf(rows.after);
  for (const CellChange& cell : cells) bytes += cell.before.text.size() + cell.after.text.size();
  return bytes;
}

void UndoHistory::Add(UndoStep step) {
  if (step.IsNone()) return;
  for (; mSteps.size() > mDone; mSteps.pop_back()) mBytes -= mSteps.back().Bytes();
  mBytes += step.Bytes();
  mSteps.push_back(std::move(step));
  while (mBytes > mLimit && mSteps.size() > 1) {
    mBytes -= mSteps.front().Bytes();
    mSteps.pop_front();
  }
  mDone = mSteps.size();
}

const UndoStep* UndoHistory::TakeBack() {
  return mDone > 0 ? &mSteps[--mDone] : nullptr;
}

const UndoStep* UndoHistory::DoAgain() {
  return mDone < mSteps.size() ? &mSteps[mDone++] : nullptr;
}

void UndoHistory::Clear() {
  mSteps.clear();
  mDone = 0;
  mBytes = 0;
}

std::string UndoHistory::UndoText() const {
  return mDone > 0 ? "Undo " + mSteps[mDone - 1].title : std::string();
}

std::string UndoHistory::RedoText() const {
  return mDone < mSteps.size() ? "Redo " + mSteps[mDone].title : std::string();
}

}  // namespace kv::mdlDataTypesView
