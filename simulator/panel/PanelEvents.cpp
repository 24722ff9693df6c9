// What becomes of a press: whether it may be, and what it does.

#include <algorithm>

#include "base/Numbers.h"
#include "simulator/panel/Panel.h"

namespace sim {
namespace {

using Action = PanelEvent::Action;

constexpr std::uint32_t kOldestStamp = 2000;  // milliseconds
constexpr std::size_t kMostDigits = 5;
constexpr std::size_t kFirstKeySlot = 32;

}  // namespace

// In the order of the protocol page.
Verdict Panel::Judge(const PanelEvent& event, const Around& around) const {
  const bool isOperate = event.action == Action::Operate;
  const bool isForbidden = isOperate ? mOperator.Lease() != 0 && event.key == 0 : !mOperator.IsGood(event.lease);
  if (isForbidden) return Verdict::NoLease;
  if (event.action == Action::Leave || event.action == Action::Up) return Verdict::Done;
  if (Stamp() - event.stamp > kOldestStamp) return Verdict::Late;
  if (around.inSystemMode) return Verdict::NotNow;
  if (around.operands.Bit(plant::kSomebodyThere)) return Verdict::OperatedLocally;
  if (isOperate) return Verdict::Done;
  if (event.action == Action::Hold) return mOperator.IsHeldDown() ? Verdict::Done : Verdict::NothingHeld;
  return JudgePress(event);
}

Verdict Panel::JudgePress(const PanelEvent& event) const {
  if (IsAnother(event)) return Verdict::SomethingElseThere;
  const Place* place = PlaceOf(event);
  if (place == nullptr) return Verdict::NothingThere;
  return (place->control.state & kDisabled) != 0 ? Verdict::NotNow : Verdict::Done;
}

// Whether the user saw something else than what is there now.
bool Panel::IsAnother(const PanelEvent& event) const {
  const bool isOtherScreen = event.epoch != mScreen.Epoch() || event.number > mScreen.Number();
  if (isOtherScreen || event.page != mScreen.Page() || mScreen.At(0).number > event.number) return true;
  if (event.key == PanelEvent::kAtPoint) return mScreen.HasAreaChangedAt(event.x, event.y, event.number);
  const std::size_t slot = kFirstKeySlot + event.key;
  return mDisplay.kind == Display::Kind::TextCells && slot < Screen::kSlots &&
         mScreen.At(slot).targetNumber > event.number;
}

// The one on top, where several lie at a point; null when nothing does.
const Panel::Place* Panel::PlaceOf(const PanelEvent& event) const {
  const bool isAtPoint = event.key == PanelEvent::kAtPoint;
  if (isAtPoint != (mDisplay.kind == Display::Kind::ColourDots)) return nullptr;
  const auto place = std::find_if(mPlaces.rbegin(), mPlaces.rend(), [&](const Place& candidate) {
    return isAtPoint ? candidate.box.Contains(event.x, event.y) : candidate.slot == kFirstKeySlot + event.key;
  });
  return place == mPlaces.rend() ? nullptr : &*place;
}

void Panel::Do(const PanelEvent& event, PlantOperands& operands) {
  switch (event.action) {
    case Action::Operate:
      EndLease(operands);
      mNewLease = ChanceWord();
      mOperator.Take(*mNewLease, event.name, mNow);
      break;
    case Action::Leave:
      EndLease(operands);
      break;
    case Action::Hold:
      mOperator.HoldOn(mNow);
      break;
    case Action::Up:
      LetGo(operands);
      break;
    case Action::Down:
    case Action::Tap:
      Press(event, operands);
      break;
  }
}

void Panel::Press(const PanelEvent& event, PlantOperands& operands) {
  LetGo(operands);
  const Order order = PlaceOf(event)->control.order;
  mOperator.Hold(event.action == Action::Tap ? Operator::Press::Tap : Operator::Press::Down, mNow);
  mHeld = order;
  mPlant.Wake(operands);
  Obey(order, operands);
}

void Panel::Obey(const Order& order, PlantOperands& operands) {
  switch (order.command) {
    case Command::None:
      break;
    case Command::Start:
      mPlant.Start(operands);
      break;
    case Command::Stop:
      Plant::Stop(operands);
      break;
    case Command::Acknowledge:
      Plant::Acknowledge(operands);
      break;
    case Command::NewBatch:
      Plant::BeginBatch(operands);
      break;
    case Command::ToggleRefill:
      operands.SetBit(plant::kRefills, !operands.Bit(plant::kRefills));
      break;
    case Command::Jog:
      operands.SetBit(order.argument, true);
      break;
    case Command::ShowPage:
      ShowPage(static_cast<PageNumber>(order.argument), operands);
      break;
    case Command::EditValue:
      mSetting = order.argument;
      mEntry = Entry{.setting = order.argument, .digits = {}};
      if (mDisplay.kind == Display::Kind::ColourDots) ShowPage(PageNumber::Entry, operands);
      break;
    case Command::Digit:
      Type(order.argument);
      break;
    case Command::DeleteDigit:
      if (mEntry && !mEntry->digits.empty()) mEntry->digits.pop_back();
      break;
    case Command::Confirm:
      Confirm(operands);
      break;
    case Command::Cancel:
      ShowPage(PageNumber::Recipe, operands);
      break;
    case Command::NextValue:
      mSetting = (mSetting + 1) % plant::kSettings;
      break;
    case Command::PreviousValue:
      mSetting = (mSetting + plant::kSettings - 1) % plant::kSettings;
      break;
  }
}

void Panel::ShowPage(PageNumber page, PlantOperands& operands) {
  if (page != PageNumber::Entry) mEntry.reset();
  if (page != mPage) LetGo(operands);
  mPage = page;
}

void Panel::Type(int digit) {
  if (!mEntry) mEntry = Entry{.setting = mSetting, .digits = {}};
  mEntry->isRefused = false;
  if (mEntry->digits.size() < kMostDigits) mEntry->digits += static_cast<char>('0' + digit);
}

// A value out of its range stays to be typed again; nothing typed leaves the value as it is.
void Panel::Confirm(PlantOperands& operands) {
  if (!mEntry) return;
  if (!mEntry->digits.empty()) {
    const plant::Setting& setting = plant::kSettingTable[mEntry->setting];
    const auto value = kv::ParseInteger(mEntry->digits).value_or(-1);
    if (value < setting.least || value > setting.most) {
      mEntry->isRefused = true;
      mEntry->digits.clear();
      return;
    }
    operands.SetWord(setting.word, static_cast<int>(value));
  }
  ShowPage(PageNumber::Recipe, operands);
}

}  // namespace sim
