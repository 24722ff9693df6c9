// The host off line: the sessions to go on line with, and the model that another controller brings.

#include <algorithm>
#include <filesystem>

#include "KvTele2/HostCommands.h"
#include "KvTele2/TelepanelHost.h"
#include "base/PathText.h"
#include "host/shared/GridFileNames.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

// What who has no controller can try everything with. It has a colour screen.
constexpr const char* kTrialSession = "Simulated K670";
constexpr const char* kTrialModel = "K670-67-C30 / K390-29-C30";

bool HasGrids(const std::string& sessionFolder) {
  return std::ranges::any_of(kGridFiles, [&](const char* name) {
    std::error_code ignored;
    return std::filesystem::exists(PathFromUtf8(sessionFolder) / name, ignored);
  });
}

}  // namespace

void TelepanelHost::ListSessions() {
  if (!mSessions || mState.connection != ConnectionState::Offline) return;
  mState.sessions = mSessions->Sessions();
  mState.sessionsFault = mSessions->SessionsFault();
}

void TelepanelHost::StartSession(const std::string& name) {
  if (name == mState.session || mSessions->ActivateSession(name)) return Connect({});
  ListSessions();  // it is not there any more
}

void TelepanelHost::NewSession() {
  const auto name = mServices.prompts.Ask({.text = "Name of the new session, a copy of '" + mState.session + "':",
                                           .title = "New Session",
                                           .hint = "It has settings of its own from then on, and is the active one."});
  if (name && mSessions->CreateSession(*name)) ListSessions();
}

void TelepanelHost::Simulate() {
  if (mSessions->ActivateSimulated(kTrialSession, kTrialModel)) Connect({});
}

void TelepanelHost::TakeModel() {
  const std::string model = OtherModel(mState);
  if (!MayChangeModel(model)) return;
  GoOffline("Off line: the model " + model + " is taken over", "");
  ClickTool(std::string(command::kModel), model);
  Connect({});
}

// The grids of the operand view go with some changes of the model, and nothing brings them back.
bool TelepanelHost::MayChangeModel(const std::string& model) {
  if (!GridFilesMustGo(mState.model, model) || !HasGrids(mSessionFolder)) return true;
  const std::string text = "Select the model " + model + " in the session '" + mState.session +
                           "'?\r\n\r\nIts operand view's regions and values are deleted: they are those of the model " +
                           mState.model + ", and a " + model + " has other operands.";
  return mServices.prompts.Show({.text = text,
                                 .title = "Model",
                                 .icon = PromptIcon::Exclamation,
                                 .buttons = PromptButtons::YesNo,
                                 .canLose = true}) == PromptAnswer::Yes;
}

}  // namespace kv
