// Reading back what has been written. It comes after the write, which sends what it sends, no more and no less.
#include <utility>

#include "dataview/ChannelGuard.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewContext.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/ReadBack.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::mdlDataTypesView {
namespace {

std::string Joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : "; ") + text;
  return all;
}

std::string ReadOnlyText(std::size_t count) {
  if (count == 0) return {};
  return " " + RegionEngine::RegionCountText(count) + " of types that cannot be written left out.";
}

std::string MovingText(const std::vector<std::string>& moving) {
  if (moving.empty()) return {};
  return " " + Joined(moving) + ": a running timer's current value changes by itself, so that it cannot be compared.";
}

std::string UncomparedText(std::size_t count, const std::string& model) {
  if (count == 0) return {};
  return " " + RegionEngine::RegionCountText(count) + " cannot be read back from a controller of the model " + model +
         ".";
}

}  // namespace

void RegionEngine::ReadBackWritten(const PassOutcome& written, std::span<const Region> regions) {
  if (written.done == 0) return mContext.Say("Nothing was written." + ReadOnlyText(written.readOnly));
  const ChannelGuard channel(mContext);
  if (channel) return SayCompared(written, ComparePass(*channel, regions));
  mContext.SayError(RegionCountText(written.done) + " written, but not read back. " + mContext.status.message);
}

ComparedRegions RegionEngine::ComparePass(Channel& channel, std::span<const Region> regions) {
  std::vector<std::vector<std::string>> written;  // regions may overlap, and what is read takes the place of it
  for (const Region& region : regions) written.push_back(mContext.state.operands.Texts(region));
  ComparedRegions found;
  mReplaced.clear();
  for (std::size_t i = 0; i < regions.size() && GoOn(i, regions.size(), found.pass); ++i) {
    if (IsWritableType(regions[i].type)) CompareOne(channel, regions[i], written[i], found);
  }
  mContext.history.Add({.title = "reading back other values", .cells = std::exchange(mReplaced, {})});
  return found;
}

void RegionEngine::CompareOne(Channel& channel, const Region& region, std::span<const std::string> written,
                              ComparedRegions& found) {
  if (!IsReadableFrom(mContext.Model(), region.type)) {
    ++found.pass.unreadable;
    return;
  }
  const auto read = ReadBack(channel, mContext.Model(), region, written);
  if (!read) return Fail(read.error(), found.pass);
  ++found.pass.done;
  const bool moves = MovesByItself(region.type);
  for (const ValueDifference& each : read->differences) {
    if (moves) break;
    mReplaced.push_back({.type = region.type,
                         .address = each.address,
                         .before = {.text = each.written, .origin = CellOrigin::Edited},
                         .after = {.text = each.readBack, .origin = CellOrigin::Read}});
  }
  const Region changed = mContext.state.operands.SetRead(region, read->texts, mContext.Now());
  mContext.changes.AddOperands(changed.type, changed.from, changed.to);
  mContext.RefreshRowsOf(region);
  if (read->differences.empty()) return;
  (moves ? found.moving : found.differences).push_back(DifferenceText(region.type, read->differences));
}

void RegionEngine::SayCompared(const PassOutcome& written, const ComparedRegions& found) {
  const PassOutcome& pass = found.pass;
  const std::string rest =
      MovingText(found.moving) + UncomparedText(pass.unreadable, mContext.Model()) + ReadOnlyText(written.readOnly);
  std::string text = RegionCountText(written.done) + " written";
  if (!found.differences.empty()) text += ", but " + Joined(found.differences);
  const std::string read = std::to_string(pass.done) + " of them read back";
  if (pass.error && !pass.isStopped) {
    return mContext.SayLinkError(*pass.error, text + "; " + read + " before that, the others not." + rest);
  }
  if (pass.isStopped) text += "; stopped: " + read + ", the others not";
  if (!found.differences.empty()) {
    return mContext.SayRefusal(text + ".\nLikely cause: " + std::string(kDifferenceCause) + ".\nWhat to do: " +
                               std::string(kDifferenceCure) + "; Undo brings back what was written." + rest);
  }
  const bool isWhole = pass.done == written.done && found.moving.empty();
  if (isWhole) text += " and read back";
  if (!isWhole && !pass.isStopped && pass.done > 0) text += ", " + read;
  mContext.Say(text + "." + rest);
}

}  // namespace kv::mdlDataTypesView
