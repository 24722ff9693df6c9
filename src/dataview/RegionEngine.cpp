#include "dataview/RegionEngine.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "dataview/ChannelGuard.h"
#include "dataview/ViewContext.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/OsSupport.h"
#include "dataview/operands/RecordedValues.h"
#include "dataview/operands/RegionTransfer.h"
#include "dataview/operands/ValueEntry.h"
#include "dataview/operands/ValueRange.h"
#include "desktop/StopScope.h"
#include "link/LinkTexts.h"

namespace kv::mdlDataTypesView {
namespace {

// A controller that answers at once gives the pacer no turn; a long table must not keep the window from painting.
constexpr Duration kTurnInterval = std::chrono::milliseconds(20);
// A pass over a slow line takes seconds; a user who goes on working on line must not wait for its end.
constexpr Duration kInputInterval = std::chrono::milliseconds(200);

// The check before a write, and the forms of times, which only fail while they are converted.
bool IsWritableText(const Region& region, std::string_view model, const std::string& text) {
  return IsTimeType(region.type) ? IsLegalEntry(region.type, model, text) : IsValueInRange(region.type, text);
}

}  // namespace

void RegionEngine::Read() {
  const StopScope reading(mContext.parts.pacer);
  mContext.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] { mContext.SetMode(ViewMode::Idle); });
  const ChannelGuard channel(mContext);
  if (!channel || !IsSupported(*channel, mContext.state.regions.Regions())) return;
  SayRead(ReadPass(*channel), mContext.state.regions.Rows().size());
}

bool RegionEngine::IsInRange(std::span<const Region> regions) {
  const std::string fault = FirstFault(regions);
  if (fault.empty()) return true;
  mContext.SayError(fault + "; nothing was written.");
  mContext.ShowBox(kValueOutOfRangeMessage);
  return false;
}

void RegionEngine::Write(std::span<const Region> regions) {
  const StopScope writing(mContext.parts.pacer);
  mIsEnded = false;
  mContext.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] { mContext.SetMode(ViewMode::Idle); });
  const std::optional<PassOutcome> written = WriteAlone(regions);
  if (!written) return;
  if (!written->IsWhole()) return SayPartlyWritten(*written, regions);
  ReadBackWritten(*written, regions);
}

std::optional<PassOutcome> RegionEngine::WriteAlone(std::span<const Region> regions) {
  const ChannelGuard channel(mContext);
  if (!channel || !IsSupported(*channel, regions)) return std::nullopt;
  OperationScope writing((*channel).Changes(), WriteOperation(regions));
  PassOutcome outcome = WritePass(*channel, regions);
  if (outcome.isStopped) writing.End({ChangeResult::Stopped, RegionCountText(outcome.done) + " written before"});
  return outcome;
}

// With the values that the controller told last.
Operation RegionEngine::WriteOperation(std::span<const Region> regions) const {
  Operation operation{.tool = "Operand view", .what = "write " + RegionCountText(regions.size())};
  for (const Region& region : regions) {
    if (!IsWritableType(region.type)) continue;
    std::vector<std::string> before;
    for (std::int32_t address = region.from; address <= region.to; ++address) {
      before.push_back(mContext.state.operands.LastTold(region.type, address));
    }
    const std::string& model = mContext.Model();
    operation.operands.push_back({RegionText(region), RecordedAsShown(region.type, model, std::move(before)),
                                  RecordedValues(region.type, model, mContext.state.operands.Texts(region))});
  }
  return operation;
}

bool RegionEngine::IsSupported(Channel& channel, std::span<const Region> regions) {
  const auto osVersion = OsVersionOf(channel, mContext.Model());
  if (!osVersion) {
    mContext.SayLinkError(osVersion.error());
    return false;
  }
  if (AreRegionsSupported(mContext.Model(), *osVersion, regions)) return true;
  mContext.ShowBox(kRegionsNotSupportedMessage);
  mContext.SayError(std::string(kRegionsNotSupportedMessage));
  return false;
}

PassOutcome RegionEngine::ReadPass(Channel& channel) {
  PassOutcome outcome;
  mReplaced.clear();
  mIsEnded = false;
  mLastInput = mContext.Now();
  const std::size_t total = mContext.state.regions.Rows().size();
  for (std::size_t row = 0; row < total && GoOn(row, total, outcome); ++row) ReadRow(channel, row, outcome);
  outcome.replaced = mReplaced.size();
  mContext.history.Add({.title = "reading over edited values", .cells = std::exchange(mReplaced, {})});
  if (outcome.IsWhole() && outcome.done > 0) mContext.status.loss.reset();
  return outcome;
}

void RegionEngine::ReadRow(Channel& channel, std::size_t row, PassOutcome& outcome) {
  const Region region = mContext.state.regions.Rows()[row].region;
  if (!IsReadableFrom(mContext.Model(), region.type)) {
    ++outcome.unreadable;
    return;
  }
  const auto texts = ReadRegion(channel, mContext.Model(), region);
  if (!texts) return Fail(texts.error(), outcome);
  ++outcome.done;
  if (mContext.state.operands.EditedCount() > 0) NoteReplaced(region, *texts);
  const Instant now = mContext.Now();
  const Region changed = mContext.state.operands.SetRead(region, *texts, now);
  mContext.state.regions.SetReadAt(row, now);
  mContext.changes.AddOperands(changed.type, changed.from, changed.to);
  if (!changed.IsEmpty() || mContext.state.regions.Rows()[row].isFromFile) mContext.RefreshRow(row);
}

void RegionEngine::NoteReplaced(const Region& region, std::span<const std::string> texts) {
  for (std::int64_t i = 0; i < region.Count(); ++i) {
    const auto address = static_cast<std::int32_t>(region.from + i);
    if (mContext.state.operands.Origin(region.type, address) != CellOrigin::Edited) continue;
    mReplaced.push_back({.type = region.type,
                         .address = address,
                         .before = mContext.state.operands.Shown(region.type, address),
                         .after = {.text = texts[static_cast<std::size_t>(i)], .origin = CellOrigin::Read}});
  }
}

PassOutcome RegionEngine::WritePass(Channel& channel, std::span<const Region> regions) {
  PassOutcome outcome;
  for (std::size_t i = 0; i < regions.size() && GoOn(i, regions.size(), outcome); ++i) {
    if (IsWritableType(regions[i].type)) {
      WriteOne(channel, regions[i], outcome);
    } else if (outcome.readOnly++ == 0) {
      mContext.ShowBox(kReadOnlyRegionsMessage);
    }
  }
  if (outcome.IsWhole() && outcome.done > 0) mContext.status.loss.reset();
  return outcome;
}

void RegionEngine::WriteOne(Channel& channel, const Region& region, PassOutcome& outcome) {
  const auto written = WriteRegion(channel, mContext.Model(), region, mContext.state.operands.Texts(region));
  if (!written) return Fail(written.error(), outcome);
  ++outcome.done;
  const Region edited = EditedIn(region);
  mContext.state.operands.SetWritten(region, mContext.Now());
  mContext.changes.AddOperands(edited.type, edited.from, edited.to);
  mContext.RefreshRowsOf(region);
}

Region RegionEngine::EditedIn(const Region& region) const {
  const auto isEdited = [&](std::int32_t address) {
    return mContext.state.operands.Origin(region.type, address) == CellOrigin::Edited;
  };
  Region edited = region;
  while (!edited.IsEmpty() && !isEdited(edited.from)) ++edited.from;
  while (!edited.IsEmpty() && !isEdited(edited.to)) --edited.to;
  return edited;
}

bool RegionEngine::GoOn(std::size_t done, std::size_t total, PassOutcome& outcome) {
  mContext.status.done = done;
  mContext.status.total = total;
  mContext.TellProgress();
  if (mLastTurn == Instant::min() || mContext.Now() - mLastTurn >= kTurnInterval) {
    mContext.parts.pacer.Turn();
    mLastTurn = mContext.Now();
  }
  if (mContext.status.mode == ViewMode::Online && mContext.Now() - mLastInput >= kInputInterval) {
    mContext.TellChanges();  // values and their rows are not to be seconds apart
    mContext.parts.pacer.DoEvents();
    mLastInput = mContext.Now();
  }
  outcome.isStopped = outcome.isStopped || mIsEnded || mContext.parts.pacer.StopRequested();
  return outcome.IsWhole();
}

void RegionEngine::Fail(const LinkError& error, PassOutcome& outcome) {
  outcome.isStopped = error.code == LinkErrorCode::Stopped;
  outcome.error = error;
}

std::string RegionEngine::FirstFault(std::span<const Region> regions) const {
  for (const Region& region : regions) {
    if (!IsWritableType(region.type)) continue;
    const std::vector<std::string> texts = mContext.state.operands.Texts(region);
    const auto bad = std::ranges::find_if_not(
        texts, [&](const std::string& text) { return IsWritableText(region, mContext.Model(), text); });
    if (bad == texts.end()) continue;
    const std::string name = OperandText(region.type, region.from + (bad - texts.begin()));
    const std::string takes = " (it takes " + std::string(LegalEntries(region.type, mContext.Model())) + ")";
    return bad->empty() ? name + " has no value: read it, or enter one" : name + " cannot be \"" + *bad + "\"" + takes;
  }
  return {};
}

std::string RegionEngine::RegionCountText(std::size_t count) {
  return Counted(count, "region");
}

std::string RegionEngine::ReplacedText(std::size_t replaced) {
  if (replaced == 0) return {};
  return " " + Counted(replaced, "edited value was", "edited values were") +
         " replaced by what the controller holds; Undo brings " + (replaced == 1 ? "it" : "them") + " back.";
}

std::string RegionEngine::UnreadableText(std::size_t unreadable) const {
  if (unreadable == 0) return {};
  return " " + RegionCountText(unreadable) + " cannot be read from a controller of the model " + mContext.Model() + ".";
}

void RegionEngine::SayRead(const PassOutcome& outcome, std::size_t total) {
  const std::string read = RegionCountText(outcome.done) + " of " + std::to_string(total) + " read";
  const std::string replaced = ReplacedText(outcome.replaced);
  if (outcome.error && !outcome.isStopped) {
    return mContext.SayLinkError(*outcome.error, read + " before that; the others show what they showed." + replaced);
  }
  if (outcome.isStopped) return mContext.Say("Stopped. " + read + "; the others show what they showed." + replaced);
  mContext.Say(RegionCountText(outcome.done) + " read." + UnreadableText(outcome.unreadable) + replaced);
}

void RegionEngine::SayPartlyWritten(const PassOutcome& outcome, std::span<const Region> regions) {
  const std::size_t reached = outcome.done + outcome.readOnly;
  std::string text = outcome.done == 0 ? std::string("Nothing was written before that")
                                       : RegionCountText(outcome.done) + " written before that, up to " +
                                             RegionText(regions[reached - 1]);
  text += "; " + RegionCountText(regions.size() - reached) + " not.";
  if (outcome.error) return mContext.SayLinkError(*outcome.error, text);
  mContext.SayError("Stopped. " + text);
}

}  // namespace kv::mdlDataTypesView
