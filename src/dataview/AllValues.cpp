#include "dataview/AllValues.h"

#include <utility>

#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "dataview/ChannelGuard.h"
#include "dataview/GridEdits.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewContext.h"
#include "dataview/WriteQuestion.h"
#include "dataview/files/GridFile.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/OsSupport.h"
#include "dataview/operands/RegionTransfer.h"
#include "desktop/StopScope.h"

namespace kv::mdlDataTypesView {
namespace {

void AppendPieces(std::vector<Region>& regions, const Region& region) {
  const std::vector<Region> pieces = SplitRegion(region);
  regions.insert(regions.end(), pieces.begin(), pieces.end());
}

// Operands that would be written, and were entered by the user.
std::int64_t CountEdited(const OperandStore& operands, const std::vector<Region>& regions) {
  std::int64_t edited = 0;
  for (const Region& region : regions) {
    if (!IsWritableType(region.type)) continue;
    for (std::int32_t address = region.from; address <= region.to; ++address) {
      edited += operands.Origin(region.type, address) == CellOrigin::Edited ? 1 : 0;
    }
  }
  return edited;
}

// Shows on the user's context how far the work on another one is.
class ProgressOn final : public GridListener {
 public:
  explicit ProgressOn(ViewContext& shown) : mShown(shown) {}
  void Follow(const ViewStatus& working) { mWorking = &working; }

  void GridsChanged(const GridChanges&) override {}
  void StatusChanged() override {
    mShown.status.done = mWorking->done;
    mShown.status.total = mWorking->total;
    mShown.TellStatus();
  }

 private:
  ViewContext& mShown;
  const ViewStatus* mWorking = nullptr;
};

}  // namespace

void AllValues::Read() {
  const StopScope reading(mContext.parts.pacer);
  if (!SaveTemporary()) return;
  const ScopeGuard removed([&] { RemoveGrids(TemporaryGridFiles(mContext.parts.shared.paths)); });
  mContext.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] { mContext.SetMode(ViewMode::Idle); });
  const ChannelGuard channel(mContext);
  if (!channel) return;
  if (const auto regions = ReadableRegions(*channel)) ReadFrom(*channel, *regions);
}

// An older O/S has fewer operands: it is asked for those alone.
std::optional<std::vector<Region>> AllValues::ReadableRegions(Channel& channel) {
  const std::string& model = mContext.Model();
  const auto osVersion = OsVersionOf(channel, model);
  if (!osVersion) {
    mContext.SayLinkError(osVersion.error());
    return std::nullopt;
  }
  std::vector<Region> regions;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    if (!IsReadableFrom(model, type)) continue;
    AppendPieces(regions, {.from = 0, .to = OperandCountWithOs(type, model, *osVersion) - 1, .type = type});
  }
  return regions;
}

void AllValues::ReadFrom(Channel& channel, const std::vector<Region>& regions) {
  ProgressOn progress(mContext);
  ViewContext aside(mContext.parts, progress);
  progress.Follow(aside.status);
  aside.state.operands = OperandStore(mContext.Model());
  std::vector<RegionRow> rows;
  for (const Region& region : regions) rows.push_back(NewRegionRow(region));
  aside.state.regions.Assign(std::move(rows));

  const PassOutcome outcome = RegionEngine(aside).ReadPass(channel);
  if (outcome.IsWhole() && outcome.done > 0) mContext.status.loss.reset();
  if (outcome.done > 0) mRead = std::move(aside.state.operands);
  SayRead(outcome, regions.size());
}

void AllValues::SayRead(const PassOutcome& outcome, std::size_t total) {
  const std::string show =
      " Your regions and values are as they were; Show All Read Values puts into the grid what was read.";
  const std::string part = std::to_string(outcome.done) + " of " + std::to_string(total) + " requests were answered";
  if (outcome.IsWhole()) return mContext.Say("All values read." + show);
  const std::string what = outcome.done > 0 ? part + "." + show : "Nothing was read.";
  if (outcome.isStopped) return mContext.Say("Stopped. " + what);
  mContext.SayLinkError(*outcome.error, what);
}

void AllValues::Take() {
  if (!mRead) return;
  const std::size_t changed = mEdits.TakeRead(*mRead, "showing all read values");
  mContext.Say(Counted(changed, "cell shows", "cells show") + " what was read last.");
}

void AllValues::Write() {
  const std::vector<Region> regions = FilledRegions();
  if (regions.empty()) return mContext.Say("There are no values in the grid to write.");
  if (!mEngine.IsInRange(regions) || !IsWanted(regions) || !SaveTemporary()) return;
  const ScopeGuard removed([&] { RemoveGrids(TemporaryGridFiles(mContext.parts.shared.paths)); });
  mEngine.Write(regions);
}

bool AllValues::IsWanted(const std::vector<Region>& regions) {
  std::int64_t count = 0;
  for (const Region& region : regions) count += IsWritableType(region.type) ? region.Count() : 0;
  if (count == 0) return true;  // it is told that nothing can be written
  MessageBox question = WriteQuestion(static_cast<std::size_t>(count), mContext.CurrentLink());
  question.title = mContext.Caption();
  const std::int64_t edited = CountEdited(mContext.state.operands, regions);
  if (edited < count) {
    question.text += "\n\n" + Counted(static_cast<std::uint64_t>(edited), "of them was", "of them were") +
                     " changed here; " + std::to_string(count - edited) + " stand as they were read or written last.";
  }
  question.text += OldValuesText(CountOldValues(mContext.state.operands, regions));
  if (mContext.parts.prompts.Show(question) == PromptAnswer::Yes) return true;
  mContext.Say("Nothing was written.");
  return false;
}

std::vector<Region> AllValues::FilledRegions() const {
  const OperandStore& store = mContext.state.operands;
  std::vector<Region> regions;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    const std::int32_t count = store.CountOf(type);
    for (std::int32_t from = 0; from < count; ++from) {
      std::int32_t end = from;
      while (end < count && store.Origin(type, end) != CellOrigin::None) ++end;
      AppendPieces(regions, {.from = from, .to = end - 1, .type = type});
      from = end;
    }
  }
  return regions;
}

bool AllValues::SaveTemporary() {
  const SharedState& shared = mContext.parts.shared;
  const auto saved = SaveTemporaryGrids(shared.paths, mContext.state, shared.CurrentSession);
  if (saved) return true;
  mContext.SayError("Nothing was read or written, because the grids could not be kept safe before it: " +
                    saved.error().Text() + ". Make room on the disk, or see to the rights of the program's folder.");
  mContext.ShowBox(mContext.status.message);
  return false;
}

}  // namespace kv::mdlDataTypesView
