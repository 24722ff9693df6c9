#include "dataview/RegionEngine.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "dataview/ChannelLease.h"
#include "dataview/ViewDesk.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/OsSupport.h"
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
  const StopScope reading(mDesk.parts.pacer);
  mDesk.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] { mDesk.SetMode(ViewMode::Idle); });
  const ChannelLease channel(mDesk);
  if (!channel || !IsSupported(*channel, mDesk.state.regions.Regions())) return;
  SayRead(ReadPass(*channel), mDesk.state.regions.Rows().size());
}

bool RegionEngine::IsInRange(std::span<const Region> regions) {
  const std::string fault = FirstFault(regions);
  if (fault.empty()) return true;
  mDesk.SayError(fault + "; nothing was written.");
  mDesk.ShowBox(kValueOutOfRangeMessage);
  return false;
}

void RegionEngine::Write(std::span<const Region> regions) {
  const StopScope writing(mDesk.parts.pacer);
  mDesk.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] { mDesk.SetMode(ViewMode::Idle); });
  const std::optional<PassOutcome> written = WriteAlone(regions);
  if (!written) return;
  if (!written->IsWhole()) return SayPartlyWritten(*written, regions);
  ReadBackWritten(*written, regions);
}

std::optional<PassOutcome> RegionEngine::WriteAlone(std::span<const Region> regions) {
  const ChannelLease channel(mDesk);
  if (!channel || !IsSupported(*channel, regions)) return std::nullopt;
  return WritePass(*channel, regions);
}

bool RegionEngine::IsSupported(Channel& channel, std::span<const Region> regions) {
  const auto osVersion = OsVersionOf(channel, mDesk.Model());
  if (!osVersion) {
    mDesk.SayLinkError(osVersion.error());
    return false;
  }
  if (AreRegionsSupported(mDesk.Model(), *osVersion, regions)) return true;
  mDesk.ShowBox(kRegionsNotSupportedMessage);
  mDesk.SayError(std::string(kRegionsNotSupportedMessage));
  return false;
}

PassOutcome RegionEngine::ReadPass(Channel& channel) {
  PassOutcome outcome;
  mReplaced.clear();
  mIsEnded = false;
  mLastInput = mDesk.Now();
  const std::size_t total = mDesk.state.regions.Rows().size();
  for (std::size_t row = 0; row < total && GoOn(row, total, outcome); ++row) ReadRow(channel, row, outcome);
  outcome.replaced = mReplaced.size();
  mDesk.history.Add({.title = "reading over edited values", .cells = std::exchange(mReplaced, {})});
  if (outcome.IsWhole() && outcome.done > 0) mDesk.status.loss.reset();
  return outcome;
}

void RegionEngine::ReadRow(Channel& channel, std::size_t row, PassOutcome& outcome) {
  const Region region = mDesk.state.regions.Rows()[row].region;
  if (!IsReadableFrom(mDesk.Model(), region.type)) {
    ++outcome.unreadable;
    return;
  }
  const auto texts = ReadRegion(channel, mDesk.Model(), region);
  if (!texts) return Fail(texts.error(), outcome);
  ++outcome.done;
  if (mDesk.state.operands.EditedCount() > 0) NoteReplaced(region, *texts);
  const Instant now = mDesk.Now();
  const Region changed = mDesk.state.operands.SetRead(region, *texts, now);
  mDesk.state.regions.SetReadAt(row, now);
  mDesk.changes.AddOperands(changed.type, changed.from, changed.to);
  if (!changed.IsEmpty() || mDesk.state.regions.Rows()[row].isFromFile) mDesk.RefreshRow(row);
}

void RegionEngine::NoteReplaced(const Region& region, std::span<const std::string> texts) {
  for (std::int64_t i = 0; i < region.Count(); ++i) {
    const auto address = static_cast<std::int32_t>(region.from + i);
    if (mDesk.state.operands.Origin(region.type, address) != CellOrigin::Edited) continue;
    mReplaced.push_back({.type = region.type,
                         .address = address,
                         .before = mDesk.state.operands.Shown(region.type, address),
                         .after = {.text = texts[static_cast<std::size_t>(i)], .origin = CellOrigin::Read}});
  }
}

PassOutcome RegionEngine::WritePass(Channel& channel, std::span<const Region> regions) {
  PassOutcome outcome;
  for (std::size_t i = 0; i < regions.size() && GoOn(i, regions.size(), outcome); ++i) {
    if (IsWritableType(regions[i].type)) {
      WriteOne(channel, regions[i], outcome);
    } else if (outcome.readOnly++ == 0) {
      mDesk.ShowBox(kReadOnlyRegionsMessage);
    }
  }
  if (outcome.IsWhole() && outcome.done > 0) mDesk.status.loss.reset();
  return outcome;
}

void RegionEngine::WriteOne(Channel& channel, const Region& region, PassOutcome& outcome) {
  const auto written = WriteRegion(channel, mDesk.Model(), region, mDesk.state.operands.Texts(region));
  if (!written) return Fail(written.error(), outcome);
  ++outcome.done;
  const Region edited = EditedIn(region);
  mDesk.state.operands.SetWritten(region, mDesk.Now());
  mDesk.changes.AddOperands(edited.type, edited.from, edited.to);
  mDesk.RefreshRowsOf(region);
}

Region RegionEngine::EditedIn(const Region& region) const {
  const auto isEdited = [&](std::int32_t address) {
    return mDesk.state.operands.Origin(region.type, address) == CellOrigin::Edited;
  };
  Region edited = region;
  while (!edited.IsEmpty() && !isEdited(edited.from)) ++edited.from;
  while (!edited.IsEmpty() && !isEdited(edited.to)) --edited.to;
  return edited;
}

bool RegionEngine::GoOn(std::size_t done, std::size_t total, PassOutcome& outcome) {
  mDesk.status.done = done;
  mDesk.status.total = total;
  mDesk.TellProgress();
  if (mLastTurn == Instant::min() || mDesk.Now() - mLastTurn >= kTurnInterval) {
    mDesk.parts.pacer.Turn();
    mLastTurn = mDesk.Now();
  }
  if (mDesk.status.mode == ViewMode::Online && mDesk.Now() - mLastInput >= kInputInterval) {
    mDesk.TellChanges();  // values and their rows are not to be seconds apart
    mDesk.parts.pacer.DoEvents();
    mLastInput = mDesk.Now();
  }
  outcome.isStopped = outcome.isStopped || mIsEnded || mDesk.parts.pacer.StopRequested();
  return outcome.IsWhole();
}

void RegionEngine::Fail(const LinkError& error, PassOutcome& outcome) {
  outcome.isStopped = error.code == LinkErrorCode::Stopped;
  outcome.error = error;
}

std::string RegionEngine::FirstFault(std::span<const Region> regions) const {
  for (const Region& region : regions) {
    if (!IsWritableType(region.type)) continue;
    const std::vector<std::string> texts = mDesk.state.operands.Texts(region);
    const auto bad = std::ranges::find_if_not(
        texts, [&](const std::string& text) { return IsWritableText(region, mDesk.Model(), text); });
    if (bad == texts.end()) continue;
    const std::string name = OperandText(region.type, region.from + (bad - texts.begin()));
    const std::string takes = " (it takes " + std::string(LegalEntries(region.type, mDesk.Model())) + ")";
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
  return " " + RegionCountText(unreadable) + " cannot be read from a controller of the model " + mDesk.Model() + ".";
}

void RegionEngine::SayRead(const PassOutcome& outcome, std::size_t total) {
  const std::string read = RegionCountText(outcome.done) + " of " + std::to_string(total) + " read";
  const std::string replaced = ReplacedText(outcome.replaced);
  if (outcome.error && !outcome.isStopped) {
    return mDesk.SayLinkError(*outcome.error, read + " before that; the others show what they showed." + replaced);
  }
  if (outcome.isStopped) return mDesk.Say("Stopped. " + read + "; the others show what they showed." + replaced);
  mDesk.Say(RegionCountText(outcome.done) + " read." + UnreadableText(outcome.unreadable) + replaced);
}

void RegionEngine::SayPartlyWritten(const PassOutcome& outcome, std::span<const Region> regions) {
  const std::size_t reached = outcome.done + outcome.readOnly;
  std::string text = outcome.done == 0 ? std::string("Nothing was written before that")
                                       : RegionCountText(outcome.done) + " written before that, up to " +
                                             RegionText(regions[reached - 1]);
  text += "; " + RegionCountText(regions.size() - reached) + " not.";
  if (outcome.error) return mDesk.SayLinkError(*outcome.error, text);
  mDesk.SayError("Stopped. " + text);
}

}  // namespace kv::mdlDataTypesView
