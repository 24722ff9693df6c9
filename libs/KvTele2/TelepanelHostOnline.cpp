// The host on line: connecting, asking at times how the controller is, and letting go of it.

#include <utility>

#include "KvTele2/TelepanelHost.h"
#include "base/AnsiText.h"
#include "base/ScopeGuard.h"
#include "desktop/RemainingTime.h"
#include "link/ErrorMeaning.h"

namespace kv {
namespace {

constexpr const char* kSilenceText = "No answer, looking for the controller";
constexpr const char* kQuestionText = "A question waits for your answer; until then the controller is asked nothing";

bool IsOfMeanwhile(const std::string& message) {
  return message == kSilenceText || message == kQuestionText;
}

// What the last exchange of a tool shows of the controller. Errors of the tool's own doing show nothing.
bool ShowsAnswer(LinkErrorCode code) {
  return code == LinkErrorCode::None || IsRefusal(code);
}

// The program goes on line with a controller that has come into another one's place, so there is no link to close
// first.
LinkError OtherTaken(LinkError error) {
  error.cure = "see whether this is the right one; when it is not, go off line and connect the right controller";
  return error;
}

}  // namespace

void TelepanelHost::Connect(const std::string& argument) {
  LetGo();
  mState.connection = ConnectionState::Connecting;
  mState.trouble.clear();
  mOtherProject.reset();
  mIsRefused = false;
  ClickTool("ID_OnLine", argument);
  EndWait();
  if (mState.connection != ConnectionState::Connecting && !mIsRefused) return;
  const std::string why = mState.trouble.empty() ? mLastMessage : mState.trouble;
  auto refused = mIsRefused ? std::move(mState.controller) : std::nullopt;
  LetGo();
  mState.controller = std::move(refused);
  mState.connection = ConnectionState::Offline;
  mState.trouble = why;
  mState.message = why;  // LetGo has said that the link is closed, which is not what the user wants to know
  ListSessions();
}

void TelepanelHost::BeginConnect() {
  mState.connection = ConnectionState::Connecting;
  BeginWait(HostView::Wait::Asked, "Connecting to " + mState.link);
  Show();
}

bool TelepanelHost::ProjectMatches() {
  if (!mState.pages) return true;
  const auto info = mChannel->GetControllerInfo(mUnit);
  // A controller that does not answer is no other project: it is found lost right afterwards, and compared as soon as
  // it answers again.
  if (!info || IsOfProject(mState.pages->content, info->projectName)) return true;
  mOtherProject = AnsiToUtf8(info->projectName);
  return false;
}

void TelepanelHost::ConnectionRefused(const std::string& text, const RefusedController& controller) {
  EndWait();  // a box follows
  mIsRefused = true;
  mState.connection = ConnectionState::Offline;
  mState.controller = ControllerFactsOf(controller, mUnit);
  mState.trouble = "Refused: " + RefusalText(text, *mState.controller);
  if (mOtherProject) mState.trouble += "\n" + OtherProjectText(mState.pages->content, *mOtherProject);
  StatusMessage(mState.trouble);
}

void TelepanelHost::ControllerTold(const VersionInfo& version, const Channel::ControllerInfo& info) {
  if (!mChannel || !mState.controller) return;
  mState.controller = ControllerFactsOf(version, mUnit);
  NoteInfo(info);
  Show();
}

void TelepanelHost::GoOnline() {
  mState.connection = ConnectionState::Online;
  LoadTiles();
  OpenPanel();
  Show();
}

void TelepanelHost::RunPanelSession(const std::string& caption) {
  if (mServices.pacer.StopRequested()) return GoOffline("Off line: stopped on request", "");
  mState.caption = caption == "0" ? "" : caption;
  AskController(HostView::Wait::Asked, "Asking the controller");
  if (!IsOnline() || !mState.controller) return;
  StatusMessage("On line with " + mState.controller->model + ", " + mState.link);
  mState.trouble = MisfitText(mState);
  if (!mState.trouble.empty()) StatusMessage(mState.trouble);
  DescribePanel();
}

void TelepanelHost::GoOffline(const std::string& why, const std::string& trouble) {
  LetGo();
  mState.trouble = trouble;
  if (mState.connection == ConnectionState::Offline) return;
  mState.connection = ConnectionState::Offline;
  ListSessions();
  StatusMessage(why);
}

// Nothing that is known of the controller before holds for this one, so it is treated like a new one, and the user is
// told for as long as it is on line.
void TelepanelHost::GoOnlineWithOther(const std::string& told) {
  Connect({});
  const std::string trouble = std::exchange(mState.trouble, told);
  if (IsOnline()) mState.trouble += "\nThe program has gone on line anew, with this one.";
  if (!trouble.empty()) mState.trouble += "\n" + trouble;
  Note(mState.trouble);
}

void TelepanelHost::LetGo() {
  mFetch.reset();
  mPanel.reset();
  mState.hasPanel = false;
  mState.panelNote.clear();
  mChannel.reset();
  mState.controller.reset();
  mState.stateAge.clear();
  mConsent.reset();
  mState.quality.reset();
  mState.secondsToTry.reset();
  mState.tiles.clear();
  if (OnLinkReleased) OnLinkReleased();
}

void TelepanelHost::Tick() {
  const bool isHeld = mState.connection == ConnectionState::Online || mState.connection == ConnectionState::Lost;
  if (!isHeld || mIsAsking) return;
  if (mIsInTool) return FollowTool();
  if (!mState.isEnabled) return;
  if (mWatch.IsDue(mServices.pacer.Now())) AskController(HostView::Wait::Quiet, "Asking the controller");
  if (const auto other = std::exchange(mOtherAnswered, std::nullopt)) GoOnlineWithOther(*other);
  if (!mState.hasPanel) ReadTiles();
  CountDown();
  ShowTiles();
  Show();
  if (const auto next = std::exchange(mNext, std::nullopt)) Click(next->id, next->argument);
}

// A tool works with the controller, so nothing is asked; what its exchanges have shown is told all the same, and what
// only a question would tell grows old. The tool itself keeps the log.
void TelepanelHost::FollowTool() {
  const bool isHeld = mState.connection == ConnectionState::Online || mState.connection == ConnectionState::Lost;
  if (!isHeld || !mIsInTool || mIsAsking || !mChannel || !mState.controller) return;
  mState.isWithTool = true;
  mState.secondsToTry.reset();
  ShowTiles();
  mState.quality = LinkFactsOf(mChannel->Quality());
  mState.stateAge = AgeText(mServices.pacer.Now() - mStateAsOf);
  const LinkError& error = mChannel->LastError();
  if (MayMeanLostLink(error.code)) {
    NoteLoss(error.Text());
  } else if (mState.connection == ConnectionState::Lost && ShowsAnswer(error.code)) {
    mState.connection = ConnectionState::Online;
    mState.trouble = MisfitText(mState);
  }
  Show();
}

void TelepanelHost::NoteSilence() {
  if (mNext) mServices.pacer.RequestStop();
  if (!IsBehindBack() || !IsOnline() || mState.isSilent) return;
  mState.isSilent = true;
  TellMeanwhile(kSilenceText);
}

void TelepanelHost::NoteQuestion() {
  if (IsBehindBack() && IsOnline()) TellMeanwhile(kQuestionText);
}

void TelepanelHost::TellMeanwhile(const char* text) {
  if (!IsOfMeanwhile(mState.message)) mMessageBefore = mState.message;
  mState.message = text;
  Show();
}

void TelepanelHost::EndSilence() {
  mState.isSilent = false;
  if (IsOfMeanwhile(mState.message)) mState.message = mMessageBefore;  // unless something has been told meanwhile
}

void TelepanelHost::AskController(HostView::Wait wait, const std::string& what) {
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  if (mState.connection == ConnectionState::Lost) {
    mState.secondsToTry = 0;
    Show();
  }
  BeginWait(wait, what + ": " + mState.link);
  const std::shared_ptr<Channel> channel = mChannel;
  const bool hasAnswered = Ask();
  EndSilence();
  if (!hasAnswered) TakeFailure(channel->LastError());
  EndWait();
  if (mChannel) mState.quality = LinkFactsOf(mChannel->Quality());
}

void TelepanelHost::CountDown() {
  mState.secondsToTry.reset();
  if (mState.connection != ConnectionState::Lost) return;
  const auto pause = std::chrono::ceil<std::chrono::seconds>(mWatch.PauseFrom(mServices.pacer.Now()));
  mState.secondsToTry = static_cast<int>(pause.count());
}

bool TelepanelHost::Ask() {
  const auto before = mState.controller;
  if (!before || mIsVersionOld) {
    const auto version = mChannel->GetVersionInfo(mUnit);
    if (!version) return false;
    mState.controller = ControllerFactsOf(*version, mUnit);
  }
  const auto info = mChannel->GetControllerInfo(mUnit);
  mIsVersionOld = mIsVersionOld && !info;
  if (!info && before) mState.controller = before;
  if (info) TakeInfo(*info);
  return info.has_value();
}

// What the controller has just told.
void TelepanelHost::NoteInfo(const Channel::ControllerInfo& info) {
  AddInfo(*mState.controller, info);
  mStateAsOf = mServices.pacer.Now();
  mState.stateAge.clear();
}

void TelepanelHost::TakeInfo(const Channel::ControllerInfo& info) {
  NoteInfo(info);
  mWatch.Answered(mServices.pacer.Now());
  if (mState.connection == ConnectionState::Lost) {
    mState.connection = ConnectionState::Online;
    mState.trouble = MisfitText(mState);
    StatusMessage("The controller answers again");
  }
  if (!mState.pages || IsOfProject(mState.pages->content, info.projectName)) return;
  const std::string trouble = OtherProjectText(mState.pages->content, mState.controller->project);
  GoOffline("Off line: " + trouble, trouble);
}

void TelepanelHost::TakeFailure(const LinkError& error) {
  const Instant now = mServices.pacer.Now();
  if (LeavesLinkAsItWas(error.code)) return mWatch.Answered(now);
  if (error.code == LinkErrorCode::Stopped) {
    // A quiet question was stopped for a command; nothing is known about the controller.
    return mWait == HostView::Wait::Quiet ? mWatch.AskNow() : GoOffline("Off line: stopped on request", "");
  }
  if (error.code == LinkErrorCode::Closed)
    return GoOffline("Off line: the link was closed, or its settings were changed", "");
  const std::string trouble = error.Text();
  if (error.code == LinkErrorCode::OtherController) {
    if (mWait == HostView::Wait::Quiet) mOtherAnswered = OtherTaken(error).Text();
    return GoOffline("Off line: " + trouble, trouble);
  }
  mWatch.Silent(now);
  if (mPanel) mPanel->LoseLink(trouble);
  const bool wasLost = mState.connection == ConnectionState::Lost;
  NoteLoss(trouble);
  if (!wasLost) StatusMessage(trouble);
}

// Nobody sees what the machine does meanwhile, so whoever operated it is asked anew.
void TelepanelHost::NoteLoss(const std::string& trouble) {
  mState.connection = ConnectionState::Lost;
  mState.trouble = trouble;
  mConsent.reset();
}

// The host's own question finds out what has become of the controller, with the next beat.
void TelepanelHost::LosePanelLink(const LinkError& error) {
  const bool isOther = error.code == LinkErrorCode::OtherController;
  const std::string trouble = (isOther ? OtherTaken(error) : error).Text();
  mPanel->LoseLink(trouble);
  NoteLoss(trouble);
  mWatch.AskNow();
  StatusMessage(trouble);
}

void TelepanelHost::BeginWait(HostView::Wait wait, const std::string& what) {
  EndWait();
  mStop.emplace(mServices.pacer);
  mWait = wait;
  if (mChannel) mChannel->SetCommandOwner("frmMain");
  mView.BeginWait(wait, what);
}

void TelepanelHost::EndWait() {
  if (!mWait) return;
  mWait.reset();
  mView.EndWait();
  mStop.reset();
}

}  // namespace kv
