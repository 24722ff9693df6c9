#include "simulator/panel/Panel.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "simulator/LittleEndian.h"
#include "simulator/panel/ColourPages.h"
#include "simulator/panel/TextPages.h"

namespace sim {
namespace {

bool IsTaken(const Operator& who) {
  return who.Lease() != 0;
}

}  // namespace

Panel::Panel(const Display& display, std::uint64_t chance)
    : mDisplay(display),
      mChance(chance),
      mFirstStamp(static_cast<std::uint32_t>(mChance.Next())),
      mScreen(ChanceWord()) {}

void Panel::Restart(PlantOperands& operands) {
  EndLease(operands);
  std::uint16_t epoch = ChanceWord();
  while (epoch == mScreen.Epoch()) epoch = ChanceWord();
  mScreen = Screen(epoch);
  mPlant = Plant();
  mPage = PageNumber::Overview;
  mEntry.reset();
  mSetting = 0;
  mPlaces.clear();
}

void Panel::Advance(kv::Instant now, PlantOperands& operands, bool programRuns, bool inSystemMode) {
  const bool isOtherwise = programRuns != mProgramRuns || inSystemMode != mInSystemMode;
  if (isOtherwise || (mHeld && operands.Bit(plant::kSomebodyThere))) LetGo(operands);
  mProgramRuns = programRuns;
  mInSystemMode = inSystemMode;
  const auto pass = [&](kv::Instant until) {
    if (programRuns) mPlant.Advance(operands, until - mNow);
    mNow = std::max(mNow, until);
  };
  for (auto end = mOperator.NextEnd(); end && end->at <= now; end = mOperator.NextEnd()) {
    pass(std::max(mNow, end->at));
    if (end->of == Operator::End::Of::Hold) {
      LetGo(operands);
    } else {
      EndLease(operands);
    }
  }
  pass(std::max(mNow, now));
}

// Ends what acts while it is held; what has acted stays done.
void Panel::LetGo(PlantOperands& operands) {
  mOperator.LetGo();
  if (mHeld && mHeld->command == Command::Jog) operands.SetBit(mHeld->argument, false);
  mHeld.reset();
}

void Panel::EndLease(PlantOperands& operands) {
  LetGo(operands);
  mOperator.Leave();
}

void Panel::EndLease(std::uint16_t lease, PlantOperands& operands) {
  if (mOperator.IsGood(lease)) EndLease(operands);
}

std::string Panel::Describe(std::uint32_t fontsCrc, std::uint32_t imagesCrc) const {
  const bool isText = mDisplay.kind == Display::Kind::TextCells;
  std::string data;
  AppendLittle(data, static_cast<std::uint32_t>(mDisplay.kind), 1);
  AppendLittle(data, isText ? kPanelKeys.size() : 0, 1);
  AppendLittle(data, static_cast<std::uint32_t>(mDisplay.width), 2);
  AppendLittle(data, static_cast<std::uint32_t>(mDisplay.height), 2);
  AppendLittle(data, isText ? kTextPages : kColourPages, 2);
  AppendLittle(data, isText ? 0 : fontsCrc, 4);
  AppendLittle(data, isText ? 0 : imagesCrc, 4);
  for (std::size_t id = 0; isText && id < kPanelKeys.size(); ++id) {
    const std::string_view name = kPanelKeys[id].name;
    AppendLittle(data, static_cast<std::uint32_t>(id), 1);
    AppendLittle(data, static_cast<std::uint32_t>(kPanelKeys[id].lamp) & 255, 1);
    AppendLittle(data, static_cast<std::uint32_t>(name.size()), 1);
    data += name;
  }
  return data;
}

Result<std::string> Panel::TellChanges(std::string_view data, std::size_t limit, const Around& around) {
  const auto request = ReadChangesRequest(data, limit);
  if (!request) return Refuse(request.error());
  if (mOperator.IsGood(request->lease)) mOperator.Renew(mNow);
  Draw(around);
  const auto changes = mScreen.Since(request->epoch, request->number, request->most - ChangesHead::kSize);
  return Answer(changes, around, Verdict::Done, request->lease);
}

Result<std::string> Panel::TakeEvent(std::string_view data, std::size_t limit, const Around& around) {
  const auto event = ReadPanelEvent(data, limit);
  if (!event) return Refuse(event.error());
  if (mOperator.IsGood(event->lease)) mOperator.Renew(mNow);
  Draw(around);  // an event is judged by what the screen shows now
  const Verdict verdict = Judge(*event, around);
  if (verdict == Verdict::Done) {
    Do(*event, around.operands);
    Draw(around);
  }
  const auto changes = mScreen.Since(event->epoch, event->since, event->most - ChangesHead::kSize);
  return Answer(changes, around, verdict, mNewLease.value_or(event->lease));
}

std::string Panel::Answer(const Screen::Changes& changes, const Around& around, Verdict verdict,
                          std::uint16_t lease) const {
  const bool isGood = mOperator.IsGood(lease);
  const auto flag = [](bool isSet, ChangesHead::Flag bit) { return isSet ? static_cast<int>(bit) : 0; };
  const int flags = flag(changes.hasMore, ChangesHead::HasMore) | flag(around.inSystemMode, ChangesHead::SystemMode) |
                    flag(around.operands.Bit(plant::kSomebodyThere), ChangesHead::OperatedLocally) |
                    flag(isGood, ChangesHead::LeaseIsGood) |
                    flag(!isGood && IsTaken(mOperator), ChangesHead::SomebodyElses) |
                    flag(changes.beginsAnew, ChangesHead::BeginsAnew) |
                    flag(isGood && mOperator.HoldsSomething(), ChangesHead::IsHeld);
  const ChangesHead head{.epoch = mScreen.Epoch(),
                         .number = changes.number,
                         .stamp = Stamp(),
                         .page = mScreen.Page(),
                         .flags = static_cast<std::uint8_t>(flags),
                         .verdict = verdict,
                         .lease = isGood ? lease : std::uint16_t{0}};
  return WriteChangesHead(head) + changes.records;
}

std::uint32_t Panel::Stamp() const {
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(mNow.time_since_epoch()).count();
  return mFirstStamp + static_cast<std::uint32_t>(milliseconds);
}

std::uint16_t Panel::ChanceWord() {
  return static_cast<std::uint16_t>(1 + mChance.Below(UINT16_MAX));
}

}  // namespace sim
