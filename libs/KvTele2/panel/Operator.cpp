#include "KvTele2/panel/Operator.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "KvTele2/panel/ScreenText.h"
#include "link/ErrorMeaning.h"

namespace kv::panel {
namespace {

using Result = PressReport::Result;

std::uint16_t PageNumber(const ScreenModel& model) {
  const PageItem* page = model.Page();
  return page != nullptr ? page->number : std::uint16_t{0};
}

// "button \"Start\" on page 2".
std::string WordsOf(const TouchItem& touch, const PanelPlace& place, const ScreenModel& model) {
  std::string words;
  for (const PanelKey& key : model.Panel().keys) {
    if (place.key == key.id) words = "key " + ReadableText(key.name) + ", ";
  }
  return words + TouchText(touch) + " on page " + std::to_string(PageNumber(model));
}

// A controller takes no name that others could not read: "?" is what it gets for each byte that is no character, and
// for nobody.
std::string ReadableName(std::string name) {
  constexpr std::string_view kNoCharacters = "\x7F\x81\x8D\x8F\x90\x9D";
  std::ranges::replace_if(
      name, [&](char c) { return static_cast<unsigned char>(c) < ' ' || kNoCharacters.contains(c); }, '?');
  return name.empty() ? "?" : name.substr(0, kLongestOperator);
}

}  // namespace

void Operator::AskToOperate(std::string name, bool takesOver) {
  if (mMode != PanelMode::View) return;
  mMode = PanelMode::Asking;
  mName = ReadableName(std::move(name));
  mTakesOver = takesOver;
  mWhyViewing.clear();
}

void Operator::Leave() {
  mLeaving = mLease;
  mWhyViewing.clear();
  DropPresses(PressRefusal::OnlyViewing);
  View();
}

void Operator::View() {
  mMode = PanelMode::View;
  mLease = 0;
  mHeld.reset();
}

void Operator::LoseLease(const std::string& why) {
  mLeaving = 0;
  if (mMode == PanelMode::View) return;
  mWhyViewing = why;
  DropPresses(PressRefusal::OnlyViewing);
  View();
}

PressRefusal Operator::Press(const PanelPlace& place, const ScreenNow& screen) {
  Pressed pressed;
  const PressRefusal refusal = Judge(place, screen, pressed);
  if (refusal == PressRefusal::None) {
    mWaiting.push_back(std::move(pressed));
  } else {
    Report({.result = Result::NotDone,
            .place = place,
            .what = {},
            .text = std::string(RefusalText(refusal)),
            .refusal = refusal});
  }
  return refusal;
}

PressRefusal Operator::Judge(const PanelPlace& place, const ScreenNow& screen, Pressed& pressed) const {
  using enum PressRefusal;
  if (mMode != PanelMode::Operate) return OnlyViewing;
  if (screen.age > kOldScreen) return OldScreen;
  pressed = {.place = place,
             .epoch = screen.model.Revision().epoch,
             .page = PageNumber(screen.model),
             .made = screen.now,
             .isOpen = true};
  const PressRefusal refusal = Identify(pressed, screen.model);
  return refusal == None && mWaiting.size() >= kMostWaiting ? TooMany : refusal;
}

// What lies there, when that is known. Of what was still on its way when it was pressed the user has seen what was
// drawn then: where something has been drawn since, it is another thing than he saw.
PressRefusal Operator::Identify(Pressed& pressed, const ScreenModel& model) const {
  using enum PressRefusal;
  const std::optional<std::uint16_t> slot = SlotAt(pressed.place, model);
  if (!slot) return model.IsWhole() ? NothingThere : None;
  const auto& touch = *model.Get<TouchItem>(*slot);
  if (touch.isDisabled) return Disabled;
  const std::vector<const Known*> lay = LayThere(pressed);
  const auto isSame = [&](const Known* known) {
    const bool isSameMachine = known->page == pressed.page || touch.role == TouchRole::PageLink;
    return isSameMachine && known->touch.IsSameTarget(touch);
  };
  if (!std::ranges::all_of(lay, isSame)) return JustChanged;
  const auto isOver = [&](const PixelRect& drawn) { return pressed.place.key || !drawn.Inside(touch.area).IsEmpty(); };
  if (lay.empty() && std::ranges::any_of(pressed.drawnSince, isOver)) return Changed;
  pressed.slot = *slot;
  pressed.seen = touch;
  pressed.isOpen = false;
  return None;
}

// The uppermost; null: nothing.
const Operator::Known* Operator::LayAt(const PanelPlace& place, Instant at) const {
  const Known* top = nullptr;
  for (const Known& known : mKnown) {
    const bool isThere =
        place.key ? known.slot == kFirstKeySlot + *place.key : known.touch.area.Holds(place.x, place.y);
    if (isThere && at >= known.since && at < known.until && (top == nullptr || known.slot > top->slot)) top = &known;
  }
  return top;
}

// Whoever presses has seen the screen of some moment since kSettles ago. What lay there at each of them is the same as
// now, or nothing. On another page the same words may stand for another machine; a link moves none.
std::vector<const Operator::Known*> Operator::LayThere(const Pressed& pressed) const {
  std::vector<Instant> moments{pressed.made - kSettles};
  for (const Known& known : mKnown) {
    for (const Instant change : {known.since, known.until}) {
      if (change > moments.front() && change <= pressed.made) moments.push_back(change);
    }
  }
  std::vector<const Known*> lay;
  for (const Instant at : moments) {
    if (const Known* known = LayAt(pressed.place, at)) lay.push_back(known);
  }
  return lay;
}

void Operator::DropPresses(PressRefusal why) {
  for (const Pressed& pressed : std::exchange(mWaiting, {})) {
    Report({.result = Result::NotDone,
            .place = pressed.place,
            .what = pressed.isOpen ? std::string() : TouchText(pressed.seen),
            .text = std::string(RefusalText(why)),
            .refusal = why});
  }
}

std::optional<std::uint16_t> Operator::SlotAt(const PanelPlace& place, const ScreenModel& model) const {
  return place.key ? model.MeaningOf(*place.key) : model.AreaAt(place.x, place.y);
}

bool Operator::IsStillThere(const Pressed& pressed, const ScreenModel& model) const {
  const auto* touch = model.Get<TouchItem>(pressed.slot);
  return touch != nullptr && touch->IsSameTarget(pressed.seen) && SlotAt(pressed.place, model) == pressed.slot;
}

// A finger that moves within what it presses goes on pressing it.
bool Operator::IsOn(const Pressed& pressed, const std::optional<PanelPlace>& now, const ScreenModel& model) const {
  return now && now->key == pressed.place.key && (now->key || SlotAt(*now, model) == pressed.slot);
}

// Letting go goes first, then new presses, then holding on.
std::optional<Operator::Due> Operator::Next(const std::optional<PanelPlace>& pressedNow, const ScreenNow& screen) {
  if (mLeaving != 0) {
    Due due{.event = MakeEvent(PanelAction::Leave, screen), .place = {}, .what = {}};
    due.event.lease = std::exchange(mLeaving, std::uint16_t{0});
    return due;
  }
  if (mMode == PanelMode::Asking) {
    if (screen.model.Page() == nullptr || screen.age > kOldScreen) return std::nullopt;
    Due due{.event = MakeEvent(PanelAction::Operate, screen), .place = {}, .what = {}};
    due.event.operatorName = mName;
    due.event.takesOver = mTakesOver;
    return due;
  }
  if (mMode != PanelMode::Operate) return std::nullopt;
  if (mHeld) {
    const bool isHeldYet = screen.now - mHeld->renewed < kLetsGo && screen.age <= kOldScreen;
    const bool isThere = screen.model.Get<TouchItem>(mHeld->slot) != nullptr && PageNumber(screen.model) == mHeld->page;
    if (!isHeldYet && IsOn(*mHeld, pressedNow, screen.model)) {
      Report({.result = Result::Done,
              .action = PanelAction::Up,
              .place = mHeld->place,
              .what = TouchText(mHeld->seen),
              .text = "The controller has let go of what was held: nothing was heard of it for half a second. Press "
                      "anew."});
    }
    if (!isHeldYet || !isThere || !IsOn(*mHeld, pressedNow, screen.model))
      return MakeDue(PanelAction::Up, *mHeld, screen);
  }
  if (auto press = NextPress(pressedNow, screen)) return press;
  const bool isDue = mHeld && screen.now - mHeld->renewed >= kRenewal;
  return isDue ? std::optional(MakeDue(PanelAction::Hold, *mHeld, screen)) : std::nullopt;
}

// The last press may be pressed still; the ones before have been let go, or nothing could have been pressed after them.
std::optional<Operator::Due> Operator::NextPress(const std::optional<PanelPlace>& pressedNow, const ScreenNow& screen) {
  if (mWaiting.empty()) return std::nullopt;
  if (const PressRefusal refusal = WhyNotSent(mWaiting.front(), screen); refusal != PressRefusal::None) {
    DropPresses(refusal);
    return std::nullopt;
  }
  if (mWaiting.front().isOpen) return std::nullopt;
  mSent = std::move(mWaiting.front());
  mWaiting.pop_front();
  mSent->isDown = mWaiting.empty() && IsOn(*mSent, pressedNow, screen.model);
  return MakeDue(mSent->isDown ? PanelAction::Down : PanelAction::Tap, *mSent, screen);
}

PressRefusal Operator::WhyNotSent(Pressed& pressed, const ScreenNow& screen) const {
  using enum PressRefusal;
  if (screen.age > kOldScreen) return OldScreen;
  if (screen.now - pressed.made > kLongestWait) return TooSlow;
  if (screen.model.Revision().epoch != pressed.epoch) return Changed;
  if (const std::uint16_t page = PageNumber(screen.model); page != pressed.page) {
    if (pressed.isOpen || pressed.seen.role != TouchRole::PageLink) return Changed;
    pressed.page = page;  // a link of both pages, perhaps, which moves nothing
    pressed.isOpen = true;
  }
  if (pressed.isOpen) return Identify(pressed, screen.model);
  return IsStillThere(pressed, screen.model) ? None : Changed;
}

Operator::Due Operator::MakeDue(PanelAction action, const Pressed& pressed, const ScreenNow& screen) const {
  Due due{.event = MakeEvent(action, screen),
          .place = pressed.place,
          .what = WordsOf(pressed.seen, pressed.place, screen.model)};
  due.event.page = pressed.page;
  due.event.key = pressed.place.key;
  if (!pressed.place.key) {
    due.event.x = static_cast<std::uint16_t>(std::max(pressed.place.x, 0));
    due.event.y = static_cast<std::uint16_t>(std::max(pressed.place.y, 0));
  }
  return due;
}

// What is there now is what the user saw, or nothing is pressed: the number named is that of the newest screen.
PanelEvent Operator::MakeEvent(PanelAction action, const ScreenNow& screen) const {
  PanelEvent event;
  event.action = action;
  event.seen = screen.model.Revision();
  event.page = PageNumber(screen.model);
  event.stamp = screen.stamp;
  event.lease = mLease;
  event.since = screen.model.Revision().number;
  event.connection = screen.connection;
  return event;
}

std::optional<Instant> Operator::NextDue(Instant now) const {
  const bool isPressDue = !mWaiting.empty() && !mWaiting.front().isOpen;
  if (mLeaving != 0 || mMode == PanelMode::Asking || isPressDue) return now;
  std::optional<Instant> due = mHeld ? std::optional(mHeld->renewed + kRenewal) : std::nullopt;
  if (mWaiting.empty()) return due;
  const Instant givenUp = mWaiting.front().made + kLongestWait;  // the rest of the screen comes before, or never
  return due ? std::min(*due, givenUp) : givenUp;
}

void Operator::NoteAnswer(const Due& due, const PanelChanges& changes, Instant began) {
  const PanelAction action = due.event.action;
  const bool isDone = changes.verdict == PanelVerdict::Done;
  if (action == PanelAction::Leave) return;
  if (action == PanelAction::Operate && mMode == PanelMode::Asking) {
    mLease = isDone ? changes.lease : std::uint16_t{0};
    mMode = mLease != 0 ? PanelMode::Operate : PanelMode::View;
    mWhyViewing = VerdictText(changes.verdict, action);
  } else if (action == PanelAction::Operate) {
    mLeaving = isDone ? changes.lease : std::uint16_t{0};  // it was called off meanwhile
    return;
  }
  if (action == PanelAction::Up) mHeld.reset();
  if (action == PanelAction::Hold && isDone && mHeld) mHeld->renewed = began;
  if (action == PanelAction::Hold && !isDone) mHeld.reset();
  if (action == PanelAction::Down && isDone && mMode == PanelMode::Operate && changes.isHeld) {
    mHeld = std::exchange(mSent, std::nullopt);
    mHeld->renewed = began;
  }
  const bool isPress = action == PanelAction::Down || action == PanelAction::Tap;
  if (isPress) mSent.reset();
  if (isDone && !isPress && action != PanelAction::Operate) return;
  Report({.result = isDone ? Result::Done : Result::NotDone,
          .action = action,
          .place = due.place,
          .what = due.what,
          .text = std::string(VerdictText(changes.verdict, action)),
          .verdict = changes.verdict});
  if (!isDone) DropPresses(PressRefusal::Changed);
}

void Operator::NoteFailure(const Due& due, const LinkError& error) {
  const PanelAction action = due.event.action;
  mSent.reset();
  if (action == PanelAction::Down || action == PanelAction::Hold || action == PanelAction::Up) mHeld.reset();
  if (action == PanelAction::Operate && mMode == PanelMode::Asking) {
    mWhyViewing = error.Text();
    View();
  }
  if (action == PanelAction::Leave) return;
  const bool isHolding = action == PanelAction::Hold || action == PanelAction::Up;
  const bool isCertain = isHolding || MeansNotExecuted(error);
  Report({.result = isCertain ? Result::NotDone : Result::Unsure,
          .action = action,
          .place = due.place,
          .what = due.what,
          .text = (isHolding ? "The controller lets go of what was held by itself.\n" : "") + error.Text(),
          .link = error.code});
  DropPresses(PressRefusal::TooSlow);
}

void Operator::NoteChanges(const PanelChanges& changes, const ScreenModel& model) {
  if (mMode != PanelMode::Operate) return;
  if (!changes.isLeaseGood && changes.lease == 0) {
    const std::string other = ReadableText(model.OperatorName());
    LoseLease(changes.isLeaseElsewhere
                  ? (other.empty() ? "Somebody else" : other) + " has taken the panel over."
                  : "Operating has ended: the controller had not heard of it for three seconds, or "
                    "was restarted. Switch to Operate once more.");
    return;
  }
  if (!mHeld || changes.isHeld) return;
  const Pressed held = *std::exchange(mHeld, std::nullopt);
  if (held.seen.role != TouchRole::HeldButton) return;
  Report({.result = Result::Done,
          .action = PanelAction::Up,
          .place = held.place,
          .what = TouchText(held.seen),
          .text = "The controller has let go by itself: of what was held, nothing is pressed any more."});
}

void Operator::NoteScreen(const ScreenDelta& delta, const std::vector<PixelRect>& drawn, const ScreenModel& model,
                          Instant now) {
  std::erase_if(mKnown, [now](const Known& known) { return known.until < now - kSettles - kLongestWait; });
  for (Pressed& pressed : mWaiting) std::ranges::copy(drawn, std::back_inserter(pressed.drawnSince));
  const auto end = [this, now](std::optional<std::uint16_t> slot) {
    for (Known& known : mKnown) {
      if (!slot || known.slot == slot) known.until = std::min(known.until, now);
    }
  };
  if (delta.isAll) end(std::nullopt);
  for (const std::uint16_t slot : delta.changed) {
    const auto* touch = model.Get<TouchItem>(slot);
    const bool isAsBefore =
        touch != nullptr && std::ranges::any_of(mKnown, [&](const Known& known) {
          return known.slot == slot && known.until == Instant::max() && known.touch.IsSameTarget(*touch);
        });
    if (isAsBefore) continue;
    end(slot);
    if (touch != nullptr) mKnown.push_back({.slot = slot, .page = PageNumber(model), .touch = *touch, .since = now});
  }
}

std::vector<PressReport> Operator::TakeReports() {
  return std::exchange(mReports, {});
}

}  // namespace kv::panel
