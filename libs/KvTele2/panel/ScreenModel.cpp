#include "KvTele2/panel/ScreenModel.h"

#include <algorithm>
#include <utility>

namespace kv::panel {

ScreenModel::ScreenModel(PanelDescription panel) : mPanel(std::move(panel)), mSlots(kMostPanelSlots) {}

std::expected<ScreenDelta, std::string> ScreenModel::Take(const PanelChanges& changes) {
  if (changes.isCut) return ScreenDelta{};  // what is had stays what it was
  if (std::optional<std::string> fault = Fault(changes)) return std::unexpected(*std::move(fault));
  std::vector<SlotItem> items;
  items.reserve(changes.records.size());
  for (const PanelRecord& record : changes.records) {
    std::optional<SlotItem> item = ReadItem(record, mPanel);
    if (!item) {
      return std::unexpected("slot " + std::to_string(record.slot) +
                             " of the screen holds what cannot be there (kind " + std::to_string(record.kind) + ", " +
                             std::to_string(record.body.size()) + " bytes)");
    }
    items.push_back(*std::move(item));
  }

  ScreenDelta delta{.isAll = changes.beginsAnew, .changed = {}};
  if (changes.beginsAnew) Empty(0);
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::uint16_t slot = changes.records[i].slot;
    if (slot == kPageSlot) {
      Empty(kFirstSlotOfPage);
      delta.isAll = true;
    }
    Put(slot, std::move(items[i]));
    delta.changed.push_back(slot);
  }
  mRevision = changes.upTo;
  mIsWhole = !changes.hasMore;
  return delta;
}

// Each change of a slot has a number of its own, so there cannot be more of them than numbers.
std::optional<std::string> ScreenModel::Fault(const PanelChanges& changes) const {
  const bool isKnown = !changes.beginsAnew && mRevision.epoch != 0;
  if (isKnown && changes.upTo.epoch != mRevision.epoch) return "the screen is another one, and does not begin anew";
  const std::uint32_t before = isKnown ? mRevision.number : 0;
  if (changes.upTo.number < before) return "the screen is older than what was told before";
  if (changes.upTo.number - before < changes.records.size()) return "the screen has more changes than it counts";
  if (changes.hasMore && changes.records.empty()) return "the screen has more changes and tells none of them";
  return std::nullopt;
}

void ScreenModel::Put(std::uint16_t slot, SlotItem item) {
  mSlots[slot] = std::move(item);
  mLastUsed = std::max(mLastUsed, slot);
}

void ScreenModel::Empty(std::uint16_t from) {
  if (from > mLastUsed) return;
  std::fill(mSlots.begin() + from, mSlots.begin() + mLastUsed + 1, SlotItem{});
  mLastUsed = from == 0 ? 0 : static_cast<std::uint16_t>(from - 1);
}

std::string ScreenModel::OperatorName() const {
  const auto* item = Get<OperatorItem>(kOperatorSlot);
  return item != nullptr ? item->name : std::string();
}

std::optional<std::uint16_t> ScreenModel::AreaAt(int x, int y) const {
  if (mPanel.kind != PanelKind::Colour) return std::nullopt;
  for (std::uint16_t slot = mLastUsed; slot >= kFirstItemSlot; --slot) {
    const auto* touch = Get<TouchItem>(slot);
    if (touch != nullptr && touch->area.Holds(x, y)) return slot;
  }
  return std::nullopt;
}

std::optional<std::uint16_t> ScreenModel::MeaningOf(std::uint8_t key) const {
  if (mPanel.kind != PanelKind::Text) return std::nullopt;
  const auto slot = static_cast<std::uint16_t>(kFirstKeySlot + key);
  return Get<TouchItem>(slot) != nullptr ? std::optional(slot) : std::nullopt;
}

}  // namespace kv::panel
