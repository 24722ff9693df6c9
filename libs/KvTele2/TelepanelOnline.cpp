// The host on line: connecting, asking at times how the controller is, and letting go of it.

#include "KvTele2/TelepanelHost.h"
#include "base/AnsiText.h"
#include "base/ScopeGuard.h"

namespace kv {
namespace {

// Errors of a controller that is there and answers, or of a question that was never sent.
bool IsNoLoss(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == Refused || code == Busy || code == NotSupported || code == BadArgument;
}

}  // namespace

void TelepanelHost::Connect(const std::string& argument) {
  LetGo();
  mState.connection = Connection::Connecting;
  mState.trouble.clear();
  mIsIdentified = false;
  ClickTool("ID_OnLine", argument);
  EndWait();
  if (mState.connection != Connection::Connecting) return;
  LetGo();
  mState.connection = Connection::Offline;
  // Of a controller that was refused the user has been told in a box.
  if (!mIsIdentified) mState.trouble = mLastMessage;
}

void TelepanelHost::BeginConnect() {
  mState.connection = Connection::Connecting;
  BeginWait(HostView::Wait::Asked, "Connecting to " + mState.link);
  Show();
}

void TelepanelHost::SetConnectedUnit(int unit) {
  mUnit = static_cast<std::uint8_t>(unit);
  mIsIdentified = true;
  EndWait();  // questions to the user may follow
}

bool TelepanelHost::ProjectMatches() {
  if (!mState.pages) return true;
  const auto info = mChannel->GetControllerInfo(mUnit);
  // A controller that does not answer is no other project: it is found lost right afterwards, and compared as soon as
  // it answers again.
  return !info || AnsiToUtf8(info->projectName) == mState.pages->content.project;
}

void TelepanelHost::GoOnline() {
  mState.connection = Connection::Online;
  Show();
}

void TelepanelHost::RunPanelSession(const std::string& caption) {
  mState.caption = caption == "0" ? "" : caption;
  AskController(HostView::Wait::Asked, "Asking the controller");
  if (IsOnline() && mState.controller) StatusMessage("On line with " + mState.controller->model + ", " + mState.link);
}

void TelepanelHost::GoOffline(const std::string& why, const std::string& trouble) {
  LetGo();
  mState.trouble = trouble;
  if (mState.connection == Connection::Offline) return;
  mState.connection = Connection::Offline;
  StatusMessage(why);
}

void TelepanelHost::LetGo() {
  mChannel.reset();
  mState.controller.reset();
  mState.quality.reset();
}

void TelepanelHost::Tick() {
  const bool isHeld = mState.connection == Connection::Online || mState.connection == Connection::Lost;
  if (!isHeld || !mState.isEnabled || mIsInTool || mIsAsking) return;
  if (mWatch.IsDue(mServices.pacer.Now())) AskController(HostView::Wait::Quiet, "Asking the controller");
  Show();
}

void TelepanelHost::AskController(HostView::Wait wait, const std::string& what) {
  mIsAsking = true;
  const ScopeGuard asked([this] { mIsAsking = false; });
  BeginWait(wait, what + ": " + mState.link);
  const std::shared_ptr<Channel> channel = mChannel;
  const bool hasAnswered = Ask();
  EndWait();
  if (!hasAnswered) TakeFailure(channel->LastError());
  if (mChannel) mState.quality = FactsOf(mChannel->Quality());
}

bool TelepanelHost::Ask() {
  if (!mState.controller) {
    const auto version = mChannel->GetVersionInfo(mUnit);
    if (!version) return false;
    mState.controller = FactsOf(*version, mUnit);
  }
  const auto info = mChannel->GetControllerInfo(mUnit);
  if (info) TakeInfo(*info);
  return info.has_value();
}

void TelepanelHost::TakeInfo(const Channel::ControllerInfo& info) {
  AddInfo(*mState.controller, info);
  mWatch.Answered(mServices.pacer.Now());
  if (mState.connection == Connection::Lost) {
    mState.connection = Connection::Online;
    mState.trouble.clear();
    StatusMessage("The controller answers again");
  }
  const std::string project = mState.controller->project;
  if (!mState.pages || mState.pages->content.project == project) return;
  const std::string trouble = "The Telepanel file is for the project " + mState.pages->content.project +
                              ", but the controller holds " + (project.empty() ? "none" : project) +
                              ".\nWhat to do: open the file of the controller's project, or close the file.";
  GoOffline("Off line: " + trouble, trouble);
}

void TelepanelHost::TakeFailure(const LinkError& error) {
  const Instant now = mServices.pacer.Now();
  if (IsNoLoss(error.code)) return mWatch.Answered(now);
  if (error.code == LinkErrorCode::Stopped) return GoOffline("Off line: stopped on request", "");
  const std::string trouble = error.Text();
  if (error.code == LinkErrorCode::OtherController) return GoOffline("Off line: " + trouble, trouble);
  mWatch.Silent(now);
  mState.trouble = trouble;
  if (mState.connection == Connection::Lost) return;
  mState.connection = Connection::Lost;
  StatusMessage(trouble);
}

void TelepanelHost::BeginWait(HostView::Wait wait, const std::string& what) {
  EndWait();
  mServices.pacer.ClearStop();
  mIsWaiting = true;
  mView.BeginWait(wait, what);
}

void TelepanelHost::EndWait() {
  if (!mIsWaiting) return;
  mIsWaiting = false;
  mView.EndWait();
  mServices.pacer.ClearStop();
}

}  // namespace kv
