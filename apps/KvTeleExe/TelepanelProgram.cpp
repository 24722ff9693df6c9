#include "apps/KvTeleExe/TelepanelProgram.h"

#include "KvCmDrv1/ports/ListeningSocketImpl.h"
#include "KvCmDrv1/ports/PortList.h"
#include "KvTele2/ui/HostLibrary.h"
#include "apps/KvTeleExe/ToolWindowTable.h"
#include "base/PathText.h"
#include "desktop/ui/WindowGeometry.h"
#include "host/mdlMain.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::chrono::milliseconds kSocketInterval{200};

}  // namespace

// One memory for each simulated model, with the session that every start begins in.
TelepanelProgram::TelepanelProgram(const std::filesystem::path& home)
    : mPaths(home),
      mPrompts(WindowsFile(mPaths)),
      mHelp(mPaths, mPrompts, WindowsFile(mPaths)),
      mControllers(mPaths.Session(kDefaultSession)),
      mDialogs({.pacer = mPacer,
                .prompts = mPrompts,
                .clipboard = mClipboard,
                .choices = {SimulatedModels(), ListSerialPorts},
                .windowsFile = WindowsFile(mPaths)}),
      mCharacters(WindowsFile(mPaths)) {
  mSocketTimer.setInterval(kSocketInterval);
}

TelepanelProgram::~TelepanelProgram() = default;

void TelepanelProgram::Run() {
  mdlMain::Main(Parts());
  mSocketTimer.stop();  // the socket has gone
  mDriver = nullptr;
}

HostParts TelepanelProgram::Parts() {
  HostParts parts{.paths = mPaths};
  parts.createHost = [this] {
    return MakeTelepanelHost({.pacer = mPacer,
                              .clock = mClock,
                              .prompts = mPrompts,
                              .installFolder = Utf8FromPath(mPaths.Home()),
                              .windowsFile = WindowsFile(mPaths)});
  };
  parts.loadTapi = [this] { return LoadTapi(); };
  parts.createDriver = [this] { return MakeDriver(); };
  parts.createWindows = [this](SharedState& shared) {
    return MakeToolWindows({shared, mPrompts, mPacer, mClock, mClipboard, mShell, mHexSelector, WindowsFile(mPaths)});
  };
  parts.prompts = &mPrompts;
  parts.shell = &mShell;
  parts.help = &mHelp;
  return parts;
}

std::unique_ptr<frmTAPI> TelepanelProgram::LoadTapi() {
  auto tapi = std::make_unique<frmTAPI>();
  tapi->Winsock = std::make_unique<ListeningSocketImpl>();
  QObject::connect(&mSocketTimer, &QTimer::timeout, &mSocketTimer, [socket = tapi->Winsock.get()] { socket->Poll(); });
  mSocketTimer.start();
  return tapi;
}

std::unique_ptr<CommDriver> TelepanelProgram::MakeDriver() {
  auto driver =
      std::make_unique<Driver>(mPacer, [this](const std::string& model) { return SimulatedLine(model); }, MakePort);
  driver->GetTrace().SetClock(mClock, mPacer);
  mDriver = driver.get();
  mDialogs.Serve(*driver);
  driver->SetPasswordSource(&mPassword);
  return driver;
}

std::unique_ptr<InProcessLine> TelepanelProgram::SimulatedLine(const std::string& model) {
  auto line = mControllers.NewLine(model);
  if (line) return std::move(*line);
  if (mDriver->OnComMessage) mDriver->OnComMessage("The simulated controller cannot be started: " + line.error());
  return nullptr;
}

}  // namespace kv
