#include "simulator/panel/Screen.h"

#include <algorithm>
#include <utility>

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

void AppendRecord(std::string& records, std::uint16_t number, const Screen::Slot& slot) {
  AppendLittle(records, number, 2);
  AppendLittle(records, static_cast<std::uint32_t>(slot.kind), 1);
  AppendLittle(records, static_cast<std::uint32_t>(slot.body.size()), 1);
  records += slot.body;
}

constexpr std::size_t kRecordHead = 4;

// That something looks pressed makes no other thing of it.
bool IsSameTarget(std::string before, std::string after) {
  constexpr std::size_t kState = 9;
  if (before.size() <= kState || before.size() != after.size()) return false;
  before[kState] = static_cast<char>(before[kState] & ~kPressed);
  after[kState] = static_cast<char>(after[kState] & ~kPressed);
  return before == after;
}

}  // namespace

void Screen::ShowPage(std::uint16_t page, Colour background, std::string_view name) {
  for (std::size_t slot = kFirstOfPage; slot < kSlots; ++slot) Forget(slot);
  Forget(0);
  mPage = page;
  Put(0, RecordKind::Page, PageBody(page, background, name));
}

void Screen::Put(std::size_t slot, RecordKind kind, std::string body) {
  Slot& place = mSlots[slot];
  if (place.kind == kind && place.body == body) return;
  mOrder.erase(place.number);
  ++mNumber;
  const bool wasArea = place.kind == RecordKind::TouchArea;
  const bool isSame = wasArea && kind == place.kind && IsSameTarget(place.body, body);
  if (!isSame) place.targetNumber = mNumber;
  if (wasArea && !isSame) {
    place.formerArea = BoxOfTouchArea(place.body);
    place.formerNumber = mNumber;
  }
  place.kind = kind;
  place.number = mNumber;
  place.body = std::move(body);
  mOrder.emplace(mNumber, static_cast<std::uint16_t>(slot));
}

void Screen::Forget(std::size_t slot) {
  if (mSlots[slot].number == 0) return;
  mOrder.erase(mSlots[slot].number);
  mSlots[slot] = {};
}

Screen::Changes Screen::Since(std::uint16_t epoch, std::uint32_t number, std::size_t room) const {
  Changes changes;
  changes.beginsAnew = epoch != mEpoch || number > mNumber;
  changes.number = changes.beginsAnew ? 0 : number;
  for (auto next = mOrder.upper_bound(changes.number); next != mOrder.end(); ++next) {
    const Slot& slot = mSlots[next->second];
    changes.hasMore = changes.records.size() + kRecordHead + slot.body.size() > room;
    if (changes.hasMore) return changes;
    AppendRecord(changes.records, next->second, slot);
    changes.number = next->first;
  }
  changes.number = mNumber;
  return changes;
}

bool Screen::HasAreaChangedAt(int x, int y, std::uint32_t number) const {
  return std::any_of(mSlots.begin() + kFirstOfPage, mSlots.end(), [&](const Slot& slot) {
    if (slot.formerNumber > number && slot.formerArea.Contains(x, y)) return true;
    return slot.kind == RecordKind::TouchArea && slot.targetNumber > number && BoxOfTouchArea(slot.body).Contains(x, y);
  });
}

}  // namespace sim
