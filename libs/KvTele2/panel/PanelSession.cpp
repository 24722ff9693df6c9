#include "KvTele2/panel/PanelSession.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "KvTele2/panel/ScreenText.h"
#include "base/AnsiText.h"
#include "base/ScopeGuard.h"
#include "link/ControllerErrorText.h"
#include "link/ErrorMeaning.h"

namespace kv::panel {
namespace {

constexpr Duration kBetweenTries = std::chrono::seconds(1);

std::size_t BytesOf(const PanelChanges& changes) {
  constexpr std::size_t kRecordHead = 4;
  std::size_t bytes = 0;
  for (const PanelRecord& record : changes.records) bytes += kRecordHead + record.body.size();
  return bytes;
}

// Of what is worth a record: the words of the others are never asked for.
std::string OperationText(const Operator::Due& due) {
  switch (due.event.action) {
    case PanelAction::Operate:
      return due.event.takesOver ? "take over the panel" : "operate the panel";
    case PanelAction::Down:
      return "press and hold " + due.what;
    default:
      return "press " + due.what;
  }
}

}  // namespace

struct PanelSession::Screen {
  Screen(PanelDescription panel, const ScreenResources& resources)
      : model(std::move(panel)), drawing(model, resources) {}

  ScreenModel model;
  Drawing drawing;
};

PanelSession::PanelSession(const PanelParts& parts)
    : mPacer(parts.pacer),
      mLink(parts.link),
      mResources(parts.resources),
      mChanges(parts.changes),
      mUnit(parts.unit),
      mTool(parts.tool) {}

PanelSession::~PanelSession() = default;

bool PanelSession::Step(const std::optional<PanelPlace>& pressedNow) {
  if (mIsStepping || mPausedAt) return false;
  mIsStepping = true;
  const ScopeGuard done([this] { mIsStepping = false; });
  return Exchange(pressedNow);
}

bool PanelSession::Exchange(const std::optional<PanelPlace>& pressedNow) {
  if (mScreen && SendDue(pressedNow)) return true;
  const Instant now = mPacer.Now();
  if (!mIsShown || mState.sight == PanelSight::NoPanel || now < mNextTry) return false;
  if (mMustDescribe) {
    Describe();
    return true;
  }
  if (!mRhythm || now < mRhythm->NextAsk()) return false;
  Ask();
  return true;
}

bool PanelSession::SendDue(const std::optional<PanelPlace>& pressedNow) {
  std::optional<Operator::Due> due = mOperator.Next(pressedNow, Now());
  if (!due) return false;
  due->event.most = mRhythm ? mRhythm->Piece() : kLeastPanelPiece;
  const PanelAction action = due->event.action;
  const bool isRecorded = action == PanelAction::Operate || action == PanelAction::Down || action == PanelAction::Tap;
  const OperationScope scope(isRecorded ? mChanges : nullptr,
                             {.tool = mTool, .what = isRecorded ? OperationText(*due) : std::string()});
  const Instant began = mPacer.Now();
  const std::optional<PanelChanges> changes = mLink.Send(due->event, mUnit);
  if (mRhythm) mRhythm->NoteInput(mPacer.Now());
  if (changes) {
    TakeIn(*changes, began, &*due);
  } else {
    mOperator.NoteFailure(*due, mLink.LastError());
    FailLink(true);
  }
  return true;
}

void PanelSession::Describe() {
  const std::optional<PanelDescription> panel = mLink.Describe(mUnit);
  const std::optional<PanelLinkCost> cost = panel ? mLink.Cost(mUnit) : std::nullopt;
  mNextTry = mPacer.Now() + (cost ? Duration{} : kBetweenTries);
  if (!cost) return FailLink(false);
  NoteConnection();
  mMustDescribe = false;
  mRhythm.emplace(*cost);
  mState.reason.clear();
  if (mScreen && mScreen->model.Panel() == *panel) return;
  mOperator.LoseLease("The panel is another one now.");
  mScreen = std::make_unique<Screen>(*panel, mResources);
  mAsOf.reset();
  (void)DrawChanged();
}

void PanelSession::Ask() {
  const PanelChangesRequest request{.have = mAsksAnew ? PanelRevision{} : mScreen->model.Revision(),
                                    .most = mRhythm->Piece(),
                                    .lease = mOperator.Lease()};
  const Instant began = mPacer.Now();
  const std::optional<PanelChanges> changes = mLink.Changes(request, mUnit);
  if (changes) return TakeIn(*changes, began, nullptr);
  FailLink(false);
}

// `due` is the event that was answered; null: changes were asked for.
void PanelSession::TakeIn(const PanelChanges& changes, Instant began, const Operator::Due* due) {
  const Instant now = mPacer.Now();
  NoteConnection();
  const std::uint16_t epochBefore = mScreen->model.Revision().epoch;
  const auto delta = mScreen->model.Take(changes);
  mAsksAnew = !delta;
  if (changes.isCut) {
    mRhythm->NoteAnswer(began, now, 0, true);
  } else if (delta) {
    mScreen->drawing.Note(*delta);
    mOperator.NoteScreen(*delta, DrawChanged(), mScreen->model, now);
    mAsOf = began;
    mStamp = changes.stamp;
    mState.reason.clear();
    mMustDescribe = mMustDescribe || (epochBefore != 0 && epochBefore != changes.upTo.epoch);
    mRhythm->NoteAnswer(began, now, BytesOf(changes), changes.hasMore);
  } else {
    mState.reason = "The controller has sent a screen that cannot be: " + delta.error() + ".";
    mRhythm->NoteFailure(now);
  }
  mState.isSystemMode = changes.isSystemMode;
  mState.isOperatedAtPanel = changes.isOperatedAtPanel;
  mState.isOperatedByOther = changes.isLeaseElsewhere;
  if (due != nullptr) mOperator.NoteAnswer(*due, changes, began);
  const bool namedLease = due == nullptr || due->event.lease != 0 || changes.lease != 0;
  if (namedLease) mOperator.NoteChanges(changes, mScreen->model);
}

void PanelSession::FailLink(bool isEvent) {
  const LinkError& error = mLink.LastError();
  const bool hasNone = error.code == LinkErrorCode::Refused && error.controllerCode == kNotOnThisModelCode;
  if (hasNone && !mScreen) mState.sight = PanelSight::NoPanel;
  if (!isEvent || MayMeanLostLink(error.code)) mState.reason = error.Text();
  if (mRhythm) mRhythm->NoteFailure(mPacer.Now());
  if (MayMeanLostLink(error.code)) mOperator.LoseLease("The link was lost. Operating ended with it.");
}

// To operate was asked for on the connection before.
void PanelSession::NoteConnection() {
  const unsigned now = mLink.Connection();
  if (std::exchange(mConnection, now) != now) {
    mOperator.LoseLease("The link was lost and stands again. Operating ended with it.");
  }
}

// What that was.
std::vector<PixelRect> PanelSession::DrawChanged() {
  std::vector<PixelRect> drawn = mScreen->drawing.Draw();
  std::ranges::copy(drawn, std::back_inserter(mChangedAreas));
  constexpr std::size_t kMostAreas = 256;  // of somebody who does not take them
  if (mChangedAreas.size() > kMostAreas) mChangedAreas.assign(1, mScreen->drawing.Dots().Bounds());
  return drawn;
}

ScreenNow PanelSession::Now() const {
  return {.model = mScreen->model, .now = mPacer.Now(), .age = Age(), .stamp = mStamp, .connection = mConnection};
}

// The controller has ended the lease by now.
bool PanelSession::IsPausedForLong() const {
  return mPausedAt && mPacer.Now() - *mPausedAt > Operator::kLeaseEnds;
}

// Of what was never told it is as old as can be.
Duration PanelSession::Age() const {
  return mAsOf ? mPacer.Now() - *mAsOf : Duration::max();
}

std::optional<Duration> PanelSession::NextStep() const {
  if (mPausedAt) return std::nullopt;
  const Instant now = mPacer.Now();
  std::optional<Instant> due = mScreen ? mOperator.NextDue(now) : std::nullopt;
  // A wish to operate waits for a screen that is not old.
  if (due && mOperator.Mode() == PanelMode::Asking && Age() > Operator::kOldScreen) due.reset();
  if (mIsShown && mState.sight != PanelSight::NoPanel) {
    const Instant ask = mMustDescribe || !mRhythm ? mNextTry : std::max(mRhythm->NextAsk(), mNextTry);
    due = due ? std::min(*due, ask) : ask;
  }
  if (!due) return std::nullopt;
  return std::max(*due - now, Duration{});
}

void PanelSession::Show(bool isShown) {
  if (std::exchange(mIsShown, isShown) == isShown) return;
  if (!isShown) return mOperator.DropPresses(PressRefusal::LookedAway);
  if (mRhythm) mRhythm->NoteLook(mPacer.Now());
}

void PanelSession::Pause() {
  if (mPausedAt) return;
  DropPresses();
  if (mOperator.IsHolding()) Step(std::nullopt);  // lets go
  mPausedAt = mPacer.Now();
}

void PanelSession::Resume() {
  if (!mPausedAt) return;
  if (IsPausedForLong()) {
    mOperator.LoseLease(
        "Operating has ended: the panel was left for more than three seconds. Switch to Operate once more.");
  }
  mPausedAt.reset();
  mState.sight = PanelSight::Starting;  // a tool may have made another controller of it
  if (mRhythm) mRhythm->NoteLook(mPacer.Now());
}

void PanelSession::AskNow() {
  if (mRhythm) mRhythm->NoteLook(mPacer.Now());
}

void PanelSession::LoseLink(const std::string& why) {
  mState.reason = why;
  mOperator.LoseLease("The link was lost. Operating ended with it.");
}

PressRefusal PanelSession::Press(const PanelPlace& place) {
  if (!mScreen) return PressRefusal::OnlyViewing;
  return mOperator.Press(place, Now());
}

void PanelSession::DropPresses() {
  mOperator.DropPresses(PressRefusal::LookedAway);
}

void PanelSession::AskToOperate(const std::string& name, bool takesOver) {
  mOperator.AskToOperate(Utf8ToAnsi(name), takesOver);
}

void PanelSession::Leave() {
  mOperator.Leave();
}

PanelState PanelSession::State() const {
  PanelState state = mState;
  state.mode = IsPausedForLong() ? PanelMode::View : mOperator.Mode();
  state.whyViewing = mOperator.WhyViewing();
  state.held = mOperator.Held();
  if (mAsOf) {
    state.age = Age();
    state.sight = state.age > Operator::kOldScreen ? PanelSight::Old : PanelSight::Live;
  }
  if (mPausedAt && state.sight != PanelSight::NoPanel) state.sight = PanelSight::Paused;
  if (!mScreen) return state;
  state.operatorName = ReadableText(mScreen->model.OperatorName());
  state.isWhole = mScreen->model.IsWhole();
  if (const PageItem* page = mScreen->model.Page()) {
    state.page = page->number;
    state.pageName = ReadableText(page->name);
  }
  return state;
}

const PanelDescription* PanelSession::Panel() const {
  return mScreen ? &mScreen->model.Panel() : nullptr;
}

const ScreenModel* PanelSession::Model() const {
  return mScreen ? &mScreen->model : nullptr;
}

const Picture* PanelSession::Dots() const {
  return mScreen ? &mScreen->drawing.Dots() : nullptr;
}

std::vector<PixelRect> PanelSession::TakeChanged() {
  return std::exchange(mChangedAreas, {});
}

std::vector<Drawing::Missing> PanelSession::MissingResources() const {
  return mScreen ? mScreen->drawing.MissingResources() : std::vector<Drawing::Missing>{};
}

void PanelSession::ShowBlinking(bool isSeen) {
  if (!mScreen) return;
  mScreen->drawing.ShowBlinking(isSeen);
  (void)DrawChanged();
}

bool PanelSession::HasBlinking() const {
  return mScreen && mScreen->drawing.HasBlinking();
}

void PanelSession::Redraw() {
  if (!mScreen) return;
  mScreen->drawing.NoteAll();
  (void)DrawChanged();
}

}  // namespace kv::panel
