// The host on line: the controller's panel, its exchanges, and who operates it.

#include <algorithm>
#include <array>
#include <utility>

#include "KvTele2/HostCommands.h"
#include "KvTele2/TelepanelHost.h"
#include "base/DateText.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "desktop/RemainingTime.h"
#include "desktop/UserName.h"
#include "link/ErrorMeaning.h"

namespace kv {
namespace {

using panel::PanelMode;
using panel::PanelSight;

constexpr auto kPanelCommands = std::to_array<std::string_view>(
    {command::kOperate, command::kViewOnly, command::kScale, command::kFullScreen, command::kCopyPicture,
     command::kSavePicture, command::kCopyTexts, command::kFindText});
constexpr const char* kPictureFilter = "Pictures (*.png)|*.png";
constexpr const char* kDoneText = "You operate the panel now. What you press acts on the machine.";

// "K670-67-C30, serial number 4711, project Bakery, 192.168.1.20:20300, unit 1".
std::string MachineText(const HostState& state) {
  const ControllerFacts& facts = *state.controller;
  std::string text = facts.model;
  if (!facts.serialNumber.empty()) text += ", serial number " + facts.serialNumber;
  if (!facts.project.empty()) text += ", project " + facts.project;
  return text + ", " + state.link;
}

std::string NameOf(const panel::PanelState& state) {
  return state.operatorName.empty() ? "Somebody else" : state.operatorName;
}

std::string OperateQuestion(const HostState& state, const panel::PanelState& panel) {
  std::string text =
      "The panel of this machine is about to be operated from here:\r\n\r\n" + HeadingText(state) + "\r\n" +
      MachineText(state) +
      "\r\n\r\nWhat you press on the screen acts on the machine at once. It may start to move, and nobody "
      "who stands beside it is warned.";
  if (panel.isOperatedByOther) text += "\r\n" + NameOf(panel) + " operates it now, and can only look on from then on.";
  return text + "\r\n\r\nOperate it?";
}

}  // namespace

std::string TelepanelHost::WhyPanelDisabled(std::string_view id) const {
  if (std::ranges::find(kPanelCommands, id) == kPanelCommands.end()) return {};
  if (!mPanel) return mChannel ? "The controller has no panel." : "No controller is on line.";
  if (!mState.hasPanel) return "The controller has not told anything of a panel yet.";
  const PanelMode mode = mPanel->State().mode;
  if (id == command::kOperate && !IsOnline()) return "The controller does not answer.";
  if (id == command::kOperate && mode != PanelMode::View) return "You operate the panel already.";
  if (id == command::kViewOnly && mode == PanelMode::View) return "The panel is only viewed already.";
  return {};
}

// Whether there is one, and of which size, its first step tells.
void TelepanelHost::OpenPanel() {
  PanelLink* link = mChannel ? mChannel->Panel() : nullptr;
  mPanel.reset();
  mFetch.reset();
  mResources.Clear();
  mPanelMode = PanelMode::View;
  if (!link) return;
  mPanel = std::make_shared<panel::PanelSession>(panel::PanelParts{
      .pacer = mServices.pacer, .link = *link, .resources = mResources, .changes = mChannel->Changes(), .unit = mUnit});
}

// So that the right page is shown from the start.
void TelepanelHost::DescribePanel() {
  if (MayStepPanel()) MakePanelStep(std::nullopt);
}

bool TelepanelHost::MayStepPanel() const {
  return mPanel && IsOnline() && !mIsAsking && !mState.isWithTool && !mNext;
}

std::optional<Duration> TelepanelHost::NextPanelStep() {
  if (!MayStepPanel() || mIsInTool) return std::nullopt;
  return HasToFetch() ? std::optional(Duration{}) : mPanel->NextStep();
}

void TelepanelHost::StepPanel(const std::optional<panel::PanelPlace>& pressedNow) {
  if (!MayStepPanel() || mIsInTool) return;
  MakePanelStep(pressedNow);
  if (const auto next = std::exchange(mNext, std::nullopt)) Click(next->id, next->argument);
}

void TelepanelHost::MakePanelStep(const std::optional<panel::PanelPlace>& pressedNow) {
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  const std::shared_ptr<Channel> channel = mChannel;
  const std::shared_ptr<panel::PanelSession> panel = mPanel;
  BeginWait(HostView::Wait::Screen, "Asking for the screen: " + mState.link);
  const bool hasAsked = panel->Step(pressedNow) || FetchPiece();
  const bool wasSilent = mState.isSilent;
  EndSilence();
  EndWait();
  if (panel != mPanel) return;  // the link was let go meanwhile
  if (hasAsked && MayMeanLostLink(channel->Panel()->LastError().code)) LosePanelLink(channel->Panel()->LastError());
  TellPanel();
  if (wasSilent) Show();
}

// A line with a speed is for the screen: there the cache has to have them, and on a slow one not even their names come.
void TelepanelHost::FetchWhenFast() {
  PanelLink& link = *mChannel->Panel();
  const auto cost = link.Cost(mUnit);
  constexpr Duration kSlow = std::chrono::microseconds(100);  // a byte: a directory takes longer than an input may wait
  if (!cost || cost->perByte > kSlow) return;
  using Wanted = panel::ResourceFetch::Wanted;
  mFetch.emplace(mServices.pacer, link, mResources, mUnit, cost->perByte == Duration{} ? Wanted::All : Wanted::Names);
}

// Nothing, while somebody holds a key: its renewal comes first. Names come in one long request, for which no input may
// wait.
bool TelepanelHost::HasToFetch() {
  if (!mFetch || !mPanel || !mState.hasPanel) return false;
  const panel::PanelState state = mPanel->State();
  const bool mayTakeLong = state.mode == PanelMode::View || mFetch->What() == panel::ResourceFetch::Wanted::All;
  return mayTakeLong && !state.held && state.sight == PanelSight::Live && mFetch->Has(mPanel->MissingResources());
}

bool TelepanelHost::FetchPiece() {
  if (!HasToFetch()) return false;
  if (const auto came = mFetch->Step(); came && *came) mPanel->Redraw();
  return true;
}

// Only for as long as something is held there is something to be sent before.
void TelepanelHost::PausePanel() {
  if (!mPanel || mIsAsking) return;
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  BeginWait(HostView::Wait::Screen, "Letting go: " + mState.link);
  mPanel->Pause();
  EndWait();
}

void TelepanelHost::TellPanel() {
  if (!mPanel) return;
  const panel::PanelState state = mPanel->State();
  if (state.sight == PanelSight::NoPanel) {
    mPanel.reset();
    return;
  }
  if (state.isOperatedByOther) mConsent.reset();
  const bool hadPanel = std::exchange(mState.hasPanel, mPanel->Panel() != nullptr);
  for (const panel::PressReport& report : mPanel->TakeReports()) {
    const bool isOperate = report.action == PanelAction::Operate;
    mState.panelNote = report.text;
    // Who only views is told beside the screen; the log would fill with it.
    const bool isWorthNoting = report.refusal != panel::PressRefusal::OnlyViewing && !isOperate;
    if (isWorthNoting && !report.text.empty()) StatusMessage(report.text);
  }
  if (const PanelMode before = std::exchange(mPanelMode, state.mode); before != state.mode) {
    if (state.mode == PanelMode::Operate) mConsent = Consent();
    if (state.mode == PanelMode::Operate) mState.panelNote.clear();
    if (state.mode == PanelMode::Operate) return StatusMessage(kDoneText);
    if (state.mode == PanelMode::View) {
      mState.panelNote = WithTime(state.whyViewing);
      return StatusMessage("The panel is only viewed now." + (state.whyViewing.empty() ? "" : " " + state.whyViewing));
    }
  }
  if (hadPanel || !mState.hasPanel) return;
  FetchWhenFast();
  FitCache();
  Show();
}

// It stands there until something else is to be said.
std::string TelepanelHost::WithTime(const std::string& why) const {
  return why.empty() ? why : TimeOfDayText(mServices.clock.LocalTime()) + " " + why;
}

void TelepanelHost::ClickPanel(std::string_view id) {
  if (id == command::kOperate) OperatePanel();
  if (id == command::kSavePicture) SavePicture();
  if (id != command::kViewOnly) return;
  mPanel->Leave();
  TellPanel();
}

// One consent is for this user, this machine and this connection, until somebody else has operated: whoever goes back
// to View for a moment knows what he does, but what another one has left is not what he has seen.
bool TelepanelHost::AskConsent(const panel::PanelState& panel) {
  if (mConsent == Consent() && !panel.isOperatedByOther) return true;
  const PromptAnswer answer = mServices.prompts.Show({.text = OperateQuestion(mState, panel),
                                                      .title = "Telepanel",
                                                      .icon = PromptIcon::Exclamation,
                                                      .buttons = PromptButtons::YesNo,
                                                      .canLose = true});
  return answer == PromptAnswer::Yes;
}

TelepanelHost::OperateConsent TelepanelHost::Consent() const {
  return {mChannel->Panel()->Connection(), mState.user};
}

// The consent is for taking it from who was named, too. While questions are open all of this may change.
void TelepanelHost::OperatePanel() {
  const panel::PanelState asked = mPanel->State();
  const unsigned connection = mChannel->Panel()->Connection();
  const auto isAsAsked = [&] { return IsOnline() && mState.hasPanel && mChannel->Panel()->Connection() == connection; };
  if (!AskConsent(asked)) return;
  if (!isAsAsked()) return StayViewing("The panel is only viewed: the link was lost while the question was open.");
  if (!OpenAccess()) return;
  // Who operates now: the questions may have stood open for long.
  mPanel->AskNow();
  if (isAsAsked()) MakePanelStep(std::nullopt);
  if (!isAsAsked()) return StayViewing("The panel is only viewed: the link was lost while it was asked for access.");
  const panel::PanelState now = mPanel->State();
  if (now.isOperatedByOther && (!asked.isOperatedByOther || now.operatorName != asked.operatorName)) {
    return StayViewing("The panel is only viewed: " + NameOf(now) + " operates it since the question was asked.");
  }
  std::string user = mState.user.empty() ? UserName() : mState.user;
  if (user.empty()) user = "Telepanel";
  mPanel->AskToOperate(user, asked.isOperatedByOther);
  TellPanel();
}

// Told where the screen is, too: whoever has said yes looks there.
void TelepanelHost::StayViewing(const std::string& why) {
  mState.panelNote = WithTime(why);
  StatusMessage(why);
}

// Before the lease: a question for a password may stand open for longer than one lives.
bool TelepanelHost::OpenAccess() {
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  const std::shared_ptr<Channel> channel = mChannel;
  BeginWait(HostView::Wait::Asked, "Asking for access: " + mState.link);
  channel->BeginOperation();  // who did not give the password the last time may want to now
  const bool isOpen = channel->EnsureAccess(mUnit);
  EndWait();
  if (isOpen) return true;
  const LinkError error = channel->LastError();
  if (MayMeanLostLink(error.code)) {
    LosePanelLink(error);
  } else {
    StayViewing("The panel is only viewed: " + error.Text());
  }
  return false;
}

void TelepanelHost::SavePicture() {
  const panel::PanelState state = mPanel->State();
  std::string name = "Page " + std::to_string(state.page) + (state.pageName.empty() ? "" : " " + state.pageName);
  std::ranges::replace_if(name, [](char c) { return kForbiddenInNames.find(c) != std::string_view::npos; }, '-');
  const auto path = mServices.prompts.SaveFile(
      {.title = "Save Picture", .filter = kPictureFilter, .purpose = "Pictures", .initial = name + ".png"});
  if (!path) return;
  if (const auto saved = mView.SavePicture(*path); !saved)
    return Warn("The picture was not saved.\r\n" + saved.error());
  const bool isOld = !mPanel || mPanel->State().sight != PanelSight::Live;
  StatusMessage("The picture is in " + *path +
                (isOld && mPanel ? ". The screen is " + AgeText(mPanel->State().age) + " old" : ""));
}

}  // namespace kv
