#include "dataview/GridEdits.h"

#include <algorithm>
#include <utility>

#include "base/Texts.h"
#include "dataview/ViewContext.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/ValueEntry.h"
#include "dataview/operands/ValueRange.h"

namespace kv::mdlDataTypesView {
namespace {

// All cells of the grid, type by type.
template <typename Visit>
void ForEachCell(const OperandStore& store, Visit visit) {
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    for (std::int32_t address = 0; address < store.CountOf(type); ++address) visit(type, address);
  }
}

bool AreSameRegions(std::span<const RegionRow> one, std::span<const RegionRow> other) {
  return std::ranges::equal(one, other, {}, &RegionRow::region, &RegionRow::region);
}

}  // namespace

// ---- the operand grid ----

std::string GridEdits::EntryFault(OperandTypeCode type, std::int32_t address, std::string_view text) const {
  const std::string name = OperandText(type, address);
  const OperandStore& store = mContext.state.operands;
  if (!store.IsCell(type, address)) return "A " + store.Model() + " has no " + name + ".";
  if (!IsWritableType(type)) return name + " cannot be changed: only the controller sets operands of this type.";
  if (text.empty() || IsLegalEntry(type, store.Model(), text)) return {};
  return name + " cannot be \"" + std::string(text) + "\": it takes " + std::string(LegalEntries(type, store.Model())) +
         ".";
}

void GridEdits::Enter(OperandTypeCode type, std::int32_t address, std::string_view text) {
  const CellText before = mContext.state.operands.Shown(type, address);
  const std::string entry = EntryText(type, mContext.Model(), text);
  if (before.text == entry) return;
  mContext.state.operands.Edit(type, address, entry);
  FinishCells({.title = "typing " + OperandText(type, address),
               .cells = {{.type = type,
                          .address = address,
                          .before = before,
                          .after = mContext.state.operands.Shown(type, address)}}});
}

bool GridEdits::Assign(std::span<const CellAssignment> cells, const std::string& title) {
  for (const CellAssignment& cell : cells) {
    if (!IsWritableType(cell.type) || IsLegalTransfer(cell.type, mContext.Model(), cell.text)) continue;
    const std::string fault = EntryFault(cell.type, cell.address, cell.text);
    if (fault.empty()) continue;
    mContext.SayError(fault + " Nothing was changed.");
    mContext.ShowBox(kValueOutOfRangeMessage);
    return false;
  }
  UndoStep step{.title = title};
  std::size_t readOnly = 0;
  std::size_t readOnline = 0;
  for (const CellAssignment& cell : cells) {
    OperandStore& store = mContext.state.operands;
    const CellText before = store.Shown(cell.type, cell.address);
    if (before.text == cell.text) continue;
    if (!IsWritableType(cell.type)) {
      ++readOnly;
      continue;
    }
    if (mContext.IsReadOnline(cell.type, cell.address)) {
      ++readOnline;
      continue;
    }
    store.Edit(cell.type, cell.address, cell.text);
    step.cells.push_back(
        {.type = cell.type, .address = cell.address, .before = before, .after = store.Shown(cell.type, cell.address)});
  }
  std::string told = Counted(step.cells.size(), "cell") + " changed by " + title + ".";
  if (readOnly > 0)
    told += " " + Counted(readOnly, "cell") + " of types that only the controller sets left as they were.";
  if (readOnline > 0) told += " " + Counted(readOnline, "cell") + " of regions that are watched left as they were.";
  FinishCells(std::move(step));
  mContext.Say(told);
  return true;
}

std::size_t GridEdits::TakeRead(const OperandStore& read, const std::string& title) {
  UndoStep step{.title = title};
  OperandStore& store = mContext.state.operands;
  ForEachCell(read, [&](OperandTypeCode type, std::int32_t address) {
    const Instant readAt = read.ReadAt(type, address);
    if (readAt == Instant::min() || readAt <= store.ReadAt(type, address)) return;
    const CellText before = store.Shown(type, address);
    const std::string& text = read.Text(type, address);
    store.SetRead({.from = address, .to = address, .type = type}, {&text, 1}, readAt);
    const CellText after = store.Shown(type, address);
    if (before != after) step.cells.push_back({.type = type, .address = address, .before = before, .after = after});
  });
  const std::size_t count = step.cells.size();
  FinishCells(std::move(step));
  return count;
}

void GridEdits::FinishCells(UndoStep step) {
  CellSpans spans;
  for (const CellChange& cell : step.cells) spans.Add(cell.type, cell.address, cell.address);
  mContext.CellsChanged(spans);
  mContext.history.Add(std::move(step));
}

std::vector<CellChange> GridEdits::EmptyOperands() {
  std::vector<CellChange> cells;
  ForEachCell(mContext.state.operands, [&](OperandTypeCode type, std::int32_t address) {
    CellText before = mContext.state.operands.Shown(type, address);
    if (before.origin == CellOrigin::None) return;
    cells.push_back({.type = type, .address = address, .before = std::move(before), .after = {}});
  });
  mContext.state.operands.Clear();
  mContext.changes.operandsReplaced = true;
  return cells;
}

// ---- the regions table ----

void GridEdits::AddRegions(const GridSelection& selection) {
  const std::vector<RegionRow> before = Rows();
  const auto result =
      mContext.state.regions.AddSelection(selection, mContext.state.settings.hidden, mContext.state.operands);
  FinishRows({.title = "adding regions"}, before);
  if (result.added > 0) mContext.Say(Counted(result.added, "region") + " added.");
  if (!result.overlap) return;
  mContext.SayError(std::string(kRegionOverlapMessage));
  mContext.ShowBox(kRegionOverlapMessage);
}

void GridEdits::RemoveRegions(std::span<const std::size_t> rows) {
  const std::vector<RegionRow> before = Rows();
  mContext.state.regions.Remove(rows);
  FinishRows({.title = "removing regions"}, before);
  mContext.Say(Counted(before.size() - mContext.state.regions.Rows().size(), "region") + " removed.");
}

void GridEdits::NewRegions() {
  if (!mContext.AskYesNo(kValuesWillBeDeletedQuestion)) return;
  ReplaceRegions({}, Values::Removed, "starting anew");
  mContext.Say("All regions and values were removed; Undo brings them back.");
}

void GridEdits::ReplaceRegions(std::vector<RegionRow> rows, Values values, const std::string& title) {
  const std::vector<RegionRow> before = Rows();
  UndoStep step{.title = title};
  if (values == Values::Removed) step.cells = EmptyOperands();
  mContext.state.regions.Assign(std::move(rows));
  FinishRows(std::move(step), before);
  mContext.RowsReplaced();  // also when the same regions come again: what they showed is gone
}

bool GridEdits::SetDescription(std::size_t row, std::string_view text) {
  return ChangeRow(row, "describing a region", [&] { return mContext.state.regions.SetDescription(row, text); });
}

bool GridEdits::SetSize(std::size_t row, SizeCode size) {
  return ChangeRow(row, "changing a size", [&] { return mContext.state.regions.SetSize(row, size); });
}

bool GridEdits::SetFormat(std::size_t row, FormatCode format) {
  return ChangeRow(row, "changing a format", [&] { return mContext.state.regions.SetFormat(row, format); });
}

template <typename Change>
bool GridEdits::ChangeRow(std::size_t row, const std::string& title, Change change) {
  if (row >= mContext.state.regions.Rows().size()) return false;
  const RegionRow before = mContext.state.regions.Rows()[row];
  if (!change()) return false;
  UndoStep step{.title = title};
  step.rows = DifferenceOf({&before, 1}, mContext.state.regions.Rows().subspan(row, 1));
  if (step.rows.IsNone()) return true;
  step.rows.at = row;
  mContext.RowSettingsChanged(row);
  mContext.history.Add(std::move(step));
  return true;
}

void GridEdits::SetHidden(const HiddenRows& hidden) {
  const HiddenRows before = std::exchange(mContext.state.settings.hidden, hidden);
  if (hidden == before) return;
  mContext.changes.operandsReplaced = true;
  mContext.history.Add({.title = hidden == HiddenRows() ? "showing all rows" : "hiding rows",
                        .hiddenBefore = before,
                        .hiddenAfter = hidden});
}

std::vector<RegionRow> GridEdits::Rows() const {
  const auto rows = mContext.state.regions.Rows();
  return {rows.begin(), rows.end()};
}

void GridEdits::FinishRows(UndoStep step, const std::vector<RegionRow>& before) {
  step.rows = DifferenceOf(before, mContext.state.regions.Rows());
  if (!step.rows.IsNone()) mContext.RowsReplaced();
  mContext.history.Add(std::move(step));
}

// ---- taking back and doing again ----

void GridEdits::Undo() {
  const UndoStep* step = mContext.history.TakeBack();
  if (step == nullptr) return;
  Apply(*step, true);
  mContext.Say("Taken back: " + step->title + ".");
}

void GridEdits::Redo() {
  const UndoStep* step = mContext.history.DoAgain();
  if (step == nullptr) return;
  Apply(*step, false);
  mContext.Say("Done again: " + step->title + ".");
}

void GridEdits::Apply(const UndoStep& step, bool isBack) {
  CellSpans spans;
  for (const CellChange& cell : step.cells) {
    const CellText& from = isBack ? cell.after : cell.before;
    const CellText& to = isBack ? cell.before : cell.after;
    if (!mContext.state.operands.Restore(cell.type, cell.address, from, to)) continue;
    spans.Add(cell.type, cell.address, cell.address);
  }
  if (const auto& hidden = isBack ? step.hiddenBefore : step.hiddenAfter) {
    mContext.state.settings.hidden = *hidden;
    mContext.changes.operandsReplaced = true;
  }
  if (!step.rows.IsNone()) SpliceRows(step.rows, isBack);
  mContext.CellsChanged(spans);
}

void GridEdits::SpliceRows(const RowsChange& change, bool isBack) {
  const std::vector<RegionRow>& from = isBack ? change.after : change.before;
  std::vector<RegionRow> to = isBack ? change.before : change.after;
  std::vector<RegionRow> rows = Rows();
  const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(change.at);
  const auto end = begin + static_cast<std::ptrdiff_t>(from.size());
  const bool areSameRegions = AreSameRegions(from, to);
  for (std::size_t i = 0; areSameRegions && i < to.size(); ++i) to[i].readAt = rows[change.at + i].readAt;
  rows.insert(rows.erase(begin, end), to.begin(), to.end());
  mContext.state.regions.Assign(std::move(rows));
  if (!areSameRegions) return mContext.RowsReplaced();
  for (std::size_t i = 0; i < to.size(); ++i) mContext.RowSettingsChanged(change.at + i);
}

}  // namespace kv::mdlDataTypesView
