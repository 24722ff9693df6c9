#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "KvTele2/panel/ScreenItems.h"
#include "link/PanelLink.h"

namespace kv::panel {

// What was changed by one reply.
struct ScreenDelta {
  bool isAll = false;                  // another page, or everything anew: `changed` need not name what is gone
  std::vector<std::uint16_t> changed;  // slots with a new state
};

// A controller's screen as far as it has been told: slots with items, and which revision that is.
//
//   empty -> filling (a reply with more to come) -> whole -> filling | whole ...
class ScreenModel {
 public:
  explicit ScreenModel(PanelDescription panel);

  // Takes in what a reply has told. All of it or, where it does not keep to what a screen can be, nothing: the error
  // is what is wrong with it.
  [[nodiscard]] std::expected<ScreenDelta, std::string> Take(const PanelChanges& changes);

  [[nodiscard]] const PanelDescription& Panel() const { return mPanel; }
  [[nodiscard]] const PanelRevision& Revision() const { return mRevision; }
  // Everything up to the revision of the last reply is here, and that had nothing more.
  [[nodiscard]] bool IsWhole() const { return mIsWhole; }

  [[nodiscard]] const SlotItem& Slot(std::uint16_t slot) const { return mSlots[slot]; }
  [[nodiscard]] std::uint16_t SlotCount() const { return static_cast<std::uint16_t>(mSlots.size()); }
  // Those behind this one are empty.
  [[nodiscard]] std::uint16_t LastUsedSlot() const { return mLastUsed; }
  template <typename Item>
  [[nodiscard]] const Item* Get(std::uint16_t slot) const {
    return slot < mSlots.size() ? std::get_if<Item>(&mSlots[slot]) : nullptr;
  }

  // Nothing before the first page has been told.
  [[nodiscard]] const PageItem* Page() const { return Get<PageItem>(kPageSlot); }
  // Who has the lease, Windows-1252; empty: nobody.
  [[nodiscard]] std::string OperatorName() const;
  // The slot of what a finger meets at this dot, the uppermost of those that overlap; nothing: there is nothing.
  [[nodiscard]] std::optional<std::uint16_t> AreaAt(int x, int y) const;
  // The slot of what a key means on this page; nothing: it means nothing.
  [[nodiscard]] std::optional<std::uint16_t> MeaningOf(std::uint8_t key) const;

 private:
  [[nodiscard]] std::optional<std::string> Fault(const PanelChanges& changes) const;
  void Put(std::uint16_t slot, SlotItem item);
  void Empty(std::uint16_t from);

  PanelDescription mPanel;
  PanelRevision mRevision;
  std::vector<SlotItem> mSlots;
  std::uint16_t mLastUsed = 0;
  bool mIsWhole = false;
};

}  // namespace kv::panel
