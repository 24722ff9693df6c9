#include "host/clsCallerExe.h"

#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "host/ToolTable.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr int kNormalStart = 1;
constexpr const char* kMissing = "This build does not have this tool.";
constexpr const char* kNotListening = "The Ethernet port could not be opened again for controllers that dial in.";

}  // namespace

clsCallerExe::clsCallerExe(HostParts parts) : mParts(std::move(parts)), mShared(mParts.paths) {}

clsCallerExe::~clsCallerExe() = default;

void clsCallerExe::StartUp() {
  const ScopeGuard end([this] { ShutDown(); });  // also when something breaks out of the host
  ConnectHost();
  mShared.BitsHandler = std::make_unique<clsBitsHandler>();
  BeginInDefaultSession();
  LoadLastModel();
  LoadSocket();
  ConnectDriver();
  ConfigureDriverForSession(mShared, mWinsock);
  UpdateLinkDescription();
  GreyMissingTools();
  mRemote->SetRecentCaches(ReadRecentCaches(mShared));
  RunHost();
}

void clsCallerExe::ConnectHost() {
  mRemote = mParts.createHost();
  mRemote->OnToolClicked = [this](const std::string& id, const std::string& argument) {
    mRemote_OnToolClicked(id, argument);
  };
  mRemote->OnLinkReleased = [this] {
    if (mVsCon) mVsCon->CloseDriver();
  };
  mRemote->OnTraceWanted = [this] {
    if (mVsCon) mVsCon->ShowTrace();
  };
  mRemote->SetSessionChoice(this);
  mShared.Remote = mRemote.get();
}

void clsCallerExe::BeginInDefaultSession() {
  mShared.CurrentSession = kDefaultSession;
  mRemote->SetSessionName(mShared.CurrentSession);
  mRemote->SetSessionPath(Utf8FromPath(SessionFolder(mShared)));
  if (!SessionExists(mShared)) Warn("Default Session not found");
}

void clsCallerExe::LoadLastModel() {
  const std::string model = LastModel(mShared);
  mRemote->SetStartupOption(kNormalStart);
  mRemote->SetModel(model);
}

void clsCallerExe::LoadSocket() {
  mTapi = mParts.loadTapi();
  mWinsock = mTapi ? mTapi->Winsock.get() : nullptr;
  if (!mWinsock) return;
  mWinsock->OnConnectionRequest = [this](int requestId) { mWinsock_ConnectionRequest(requestId); };
  mWinsock->OnClose = [this] { mWinsock_Close(); };
}

void clsCallerExe::ConnectDriver() {
  mVsCon = mParts.createDriver();
  mShared.ComDriver = mVsCon.get();
  mVsCon->SetDriverActive(true);
  mVsCon->OnComMessage = [this](const std::string& message) { mVsCon_OnComMessage(message); };
}

void clsCallerExe::GreyMissingTools() {
  mWindows = mParts.createWindows(mShared);
  for (const std::string& toolId : mRemote->ToolIds()) {
    if (const std::string why = WhyGrey(toolId); !why.empty()) mRemote->SetToolMissing(toolId, why);
  }
}

// Sibling programs are looked for when this one starts; a command for one that is not there still says so by itself.
std::string clsCallerExe::WhyGrey(const std::string& toolId) const {
  if (IsMissing(toolId)) return kMissing;
  const ToolRow* row = FindTool(toolId);
  const char* program = row ? row->program : nullptr;
  std::error_code ignored;
  if (!program || std::filesystem::exists(InstalledProgram(program), ignored)) return {};
  return std::string("\"") + program + "\" is not installed in " + mRemote->InstallFolder() +
         ". Install it there, and start this program again.";
}

void clsCallerExe::RunHost() {
  // The tool "ID_Exit" lets go of the host while the host's own Run is still on the stack.
  const std::shared_ptr<RemoteHost> host = mRemote;
  const ScopeGuard silent([&host] {
    host->OnToolClicked = nullptr;
    host->OnLinkReleased = nullptr;
    host->OnTraceWanted = nullptr;
    host->SetSessionChoice(nullptr);
    host->SetRegionTiles(nullptr);
  });
  host->Run();
}

void clsCallerExe::ShutDown() {
  mShared.Remote = nullptr;
  mRemote.reset();
  mShared.BitsHandler.reset();
  if (mVsCon) mVsCon->SetDriverActive(false);
  mShared.ComDriver = nullptr;
  mVsCon.reset();
  MarkSessionInUse(mShared, false);
}

// A tool without a row is its window; without that, too, nobody knows it.
bool clsCallerExe::IsMissing(const std::string& toolId) const {
  const ToolRow* row = FindTool(toolId);
  switch (row ? row->need : ToolNeed::Window) {
    case ToolNeed::Window:
      return !mWindows.contains(toolId);
    case ToolNeed::PanelDesigner:
      return !mParts.createPanelDesigner;
    case ToolNeed::ColourCaches:
      return !mRemote->ReadsColourCaches();
    case ToolNeed::Nothing:
      return false;
  }
  return true;
}

void clsCallerExe::mRemote_OnToolClicked(const std::string& toolId, const std::string& argument) {
  if (!mRemote) return;  // the user has left, and what was clicked before still arrives
  if (IsMissing(toolId)) return;
  const ToolRow* row = FindTool(toolId);
  if (!row) return ShowWindow(toolId, argument);
  (this->*row->action)(argument);
}

void clsCallerExe::mVsCon_OnComMessage(const std::string& message) {
  TellHost(message);
}

void clsCallerExe::TellHost(const std::string& text) {
  if (mRemote) mRemote->StatusMessage(text);
}

std::string clsCallerExe::ReadFromRemoteIni(const std::string& key, const std::string& fallback) const {
  return ReadHostIni(mShared, key, fallback);
}

void clsCallerExe::UpdateLinkDescription() {
  mRemote->SetComDescription(mVsCon->LinkDescription());
}

void clsCallerExe::UpdateLinkDescriptionIfNot(const std::string& shown) {
  if (mVsCon->LinkDescription() != shown) UpdateLinkDescription();
}

void clsCallerExe::mWinsock_ConnectionRequest(int requestId) {
  mWinsock->Close();
  if (mWinsock->Accept(requestId)) return TellHost("Ethernet connection established");
  // Who dialled in has gone meanwhile, and the next one needs an open port.
  if (!mWinsock->Listen()) TellHost(kNotListening);
}

void clsCallerExe::mWinsock_Close() {
  mWinsock->Close();
  const bool isReady = mWinsock->GetState() != ListeningSocket::State::Closed || mWinsock->Listen();
  TellHost("Ethernet connection terminated");
  if (!isReady) TellHost(kNotListening);
}

}  // namespace kv
