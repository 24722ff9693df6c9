#include "KvTele2/TelepanelHost.h"

#include <algorithm>
#include <array>

#include "KvTele2/HostCommands.h"
#include "base/DateText.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

constexpr std::string_view kOwnCommands = "HOST_";
// The tools that look or do otherwise in some editions of the program.
constexpr auto kEditionTools = std::to_array<std::string_view>({"ID_Downloader", "ID_Help", "ID_About"});
constexpr const char* kPagesFilter = "Telepanel Files (*.kta)|*.kta";

// A project's name as a file's name: without the characters that some platform does not take.
std::string FileNameOf(std::string project) {
  for (char& c : project) {
    if (kForbiddenInNames.find(c) != std::string_view::npos) c = '-';
  }
  return project + ".kta";
}

}  // namespace

TelepanelHost::TelepanelHost(HostView& view, HostServices services) : mView(view), mServices(std::move(services)) {}

void TelepanelHost::Click(std::string_view id, const std::string& argument) {
  const bool isPossible = mState.isEnabled && WhyDisabled(id).empty();
  const bool isBusy = mIsInTool || mIsAsking;
  if (isBusy && isPossible && IsBehindBack()) {
    mNext = Order{std::string(id), argument};
    // An exchange of the panel is over soon. Whether one that was stopped has pressed something would not be known.
    if (mWait == HostView::Wait::Quiet || mState.isSilent) mServices.pacer.RequestStop();
  } else if (isBusy && mWait && id == command::kExit) {
    mServices.pacer.RequestStop();  // whoever closes the window during a wait ends the wait
  }
  if (isBusy || !isPossible) return Show();  // a control may show what was not done
  if (id == command::kOnLine) {
    Connect(argument);
  } else if (id == command::kModel) {
    if (MayChangeModel(argument)) ClickTool(std::string(id), argument);
  } else if (id == command::kRecentCaches) {
    ClickTool(std::string(command::kOpenCache), argument);
  } else if (id == command::kComParams) {
    ClickTool(std::string(id), "Session " + mState.session);  // whose settings they are
  } else if (id.starts_with(kOwnCommands)) {
    ClickOwn(id, argument);
  } else {
    const bool isOfEdition = argument.empty() && std::ranges::find(kEditionTools, id) != kEditionTools.end();
    ClickTool(std::string(id), isOfEdition ? mSettings.Read("Edition") : argument);
  }
  Show();
}

std::string TelepanelHost::WhyDisabled(std::string_view id) const {
  if (const auto missing = mMissing.find(id); missing != mMissing.end()) return missing->second;
  const bool isOnline = mState.connection == ConnectionState::Online;
  const bool isOffline = mState.connection == ConnectionState::Offline;
  if (id == command::kOnLine && isOnline) return "The controller is on line already.";
  if (id == command::kOffLine && isOffline) return "No controller is on line.";
  if (id == command::kModel && !isOffline) return "The model is the one of the controller that is on line.";
  if (id == command::kTakeModel && OtherModel(mState).empty()) return "No controller of another model has answered.";
  const bool isOfSessions = id == command::kStartSession || id == command::kNewSession || id == command::kSimulate;
  if (isOfSessions && !isOffline) return "A controller is on line: go off line first.";
  if (isOfSessions && !mSessions) return "This program has no sessions.";
  if (id == command::kLogOff && mState.user.empty()) return "Nobody is logged in.";
  if (id == command::kRecentPages && mState.recentPages.empty()) return "No Telepanel file has been opened before.";
  if (id == command::kRecentCaches && mState.recentCaches.empty())
    return "No cache file has been opened or made before.";
  if (id == command::kClosePages && !mState.pages) return "No Telepanel file is open.";
  if (id == command::kSavePages && !isOnline) return "The file is made for a controller's project: go on line first.";
  if (id == command::kSavePages && !(mState.controller && IsProjectName(mState.controller->project))) {
    return "The controller that is on line has no project.";
  }
  if (std::string why = WhyPanelDisabled(id); !why.empty()) return why;
  const bool isOfLog = id == command::kCopyLog || id == command::kClearLog;
  if (isOfLog && mJournal.Entries().empty()) return "The log is empty.";
  return {};
}

void TelepanelHost::ClickTool(const std::string& id, const std::string& argument) {
  PausePanel();
  if (mChannel) mChannel->SetCommandOwner(id);  // not every tool names itself
  mIsInTool = true;
  mLastMessage.clear();
  const ScopeGuard done([this] {
    mIsInTool = mState.isWithTool = false;
    mIsVersionOld = true;  // it may have replaced the O/S
    mAreTilesOld = true;
    if (mPanel) mPanel->Resume();
  });
  if (OnToolClicked) OnToolClicked(id, argument);
  mWatch.AskNow();  // what the tool did to the controller or to the link is seen at once
  ListSessions();
}

void TelepanelHost::ClickOwn(std::string_view id, const std::string& argument) {
  if (id == command::kOffLine) GoOffline("Off line", "");
  if (id == command::kRecentPages) OpenPagesFile(argument);
  if (id == command::kSavePages) SavePages();
  if (id == command::kClosePages) ClosePages();
  if (id == command::kStartSession) StartSession(argument);
  if (id == command::kNewSession) NewSession();
  if (id == command::kSimulate) Simulate();
  if (id == command::kTakeModel) TakeModel();
  if (id == command::kClearLog) mJournal.Clear();
  ClickPanel(id);
  if (id == command::kTrace && OnTraceWanted) OnTraceWanted();
}

void TelepanelHost::Show() {
  mView.Show(mState, mJournal);
}

void TelepanelHost::Note(const std::string& text) {
  mJournal.Add(TimeOfDayText(mServices.clock.LocalTime()), text);
}

void TelepanelHost::Warn(const std::string& text) {
  Note(text);
  Show();  // beneath the box
  mServices.prompts.Show({.text = text, .title = "Telepanel", .icon = PromptIcon::Exclamation});
}

void TelepanelHost::StatusMessage(const std::string& text) {
  mState.message = text;
  if (!text.empty()) {
    mLastMessage = text;
    Note(text);
  }
  Show();
}

void TelepanelHost::SetEnabled(bool enabled) {
  mState.isEnabled = enabled;
  Show();
}

void TelepanelHost::Run() {
  ListSessions();
  Show();
  mView.Run();
}

void TelepanelHost::Quit() {
  LetGo();
  mState.connection = ConnectionState::Offline;
  mView.Quit();
}

void TelepanelHost::SetSessionName(const std::string& name) {
  if (!mState.session.empty() && name != mState.session) GoOffline("Off line: another session is active", "");
  mState.session = name;
  Show();
}

void TelepanelHost::SetSessionPath(const std::string& folder) {
  if (folder == mSessionFolder) return;
  GoOffline("Off line: another session is active", "");
  mSessionFolder = folder;
  mSettings = HostSettings(PathFromUtf8(folder));
  if (mState.pages) {
    StatusMessage("Closed " + mState.pages->path + ": a Telepanel file is open in its session only");
    mState.pages.reset();
  }
  mCache.reset();
  mState.caption.clear();
  mState.recentPages = mSettings.ReadRecentPages();
  Show();
}

void TelepanelHost::SetModel(const std::string& model) {
  const std::string before = std::exchange(mState.model, model);
  if (mState.connection == ConnectionState::Connecting && !before.empty() && before != model) {
    Note("The selected model is now that of the controller, " + model + "; before, it was " + before);
  }
  if (IsOfferedModel(ModelOfIdentification(model))) return Show();
  StatusMessage(model.empty() ? "No model is selected. Choose one from the list of models."
                              : "The model \"" + model +
                                    "\" is not one that this program knows. Choose one from the list of models.");
}

void TelepanelHost::SetComDescription(const std::string& text) {
  if (text != mState.link) GoOffline("Off line: the link was changed", "");
  mState.link = text;
  Show();
}

void TelepanelHost::SetUserName(const std::string& name) {
  const std::string before = std::exchange(mState.user, name);
  if (!before.empty() && before != name) Note(before + " is logged off");
  if (!name.empty()) Note(name + " is logged in");
  Show();
}

void TelepanelHost::SetHourglass(bool busy) {
  mState.isPointerBusy = busy;
  Show();
}

std::vector<std::string> TelepanelHost::ToolIds() const {
  std::vector<std::string> ids;
  for (const HostMenu& menu : HostMenus()) {
    for (const HostCommand& command : menu.commands) {
      if (!command.id.empty() && !command.id.starts_with(kOwnCommands)) ids.emplace_back(command.id);
    }
  }
  return ids;
}

void TelepanelHost::SetToolMissing(const std::string& toolId, const std::string& reason) {
  mMissing[toolId] = reason;
}

bool TelepanelHost::OpenPagesFile(const std::string& path) {
  const auto pages = ReadPagesFile(PathFromUtf8(path));
  if (!pages) {
    Warn("The Telepanel file was not opened; everything stays as it was.\r\n" + pages.error().Text());
    return false;
  }
  mState.pages = OpenPages{path, *pages};
  if (const auto added = mSettings.AddRecentPages(path)) {
    mState.recentPages = *added;
  } else {
    Note(added.error());
  }
  std::string said = "Opened " + path + " (project " + pages->project + ", model " + pages->model + ")";
  if (pages->model != ModelOfIdentification(mState.model)) said += ". The selected model is " + mState.model;
  StatusMessage(said);
  mWatch.AskNow();
  return true;
}

void TelepanelHost::ClosePages() {
  StatusMessage("Closed " + mState.pages->path);
  mState.pages.reset();
}

void TelepanelHost::SavePages() {
  const PagesFile pages{mState.controller->project, ModelOfIdentification(mState.model)};
  const auto chosen = mServices.prompts.SaveFile({.title = "Save Telepanel File",
                                                  .filter = kPagesFilter,
                                                  .purpose = "Pages",
                                                  .initial = FileNameOf(pages.project)});
  if (!chosen) return;
  const auto saved = SavePagesFile(PathFromUtf8(*chosen), pages);
  if (!saved) return Warn("The Telepanel file was not saved.\r\n" + saved.error().Text());
  OpenPagesFile(*chosen);
}

}  // namespace kv
