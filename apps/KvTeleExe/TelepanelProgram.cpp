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
TelepanelProgram::TelepanelProgram(ProgramPaths paths, std::filesystem::path stateFolder)
    : mPaths(std::move(paths)),
      mPrompts(WindowsFile(mPaths)),
      mPassword(mPrompts, "do it again, and enter the controller's password when you are asked for it",
                {[this] { return mShared ? &mShared->UserPassword : nullptr; }, "The password of the log-in"}),
      mHelp(mPaths, mPrompts, WindowsFile(mPaths)),
      mControllers(mPaths.Session(kDefaultSession)),
      mDialogs({.pacer = mPacer,
                .prompts = mPrompts,
                .clipboard = mClipboard,
                .choices = {SimulatedModels(), ListSerialPorts},
                .windowsFile = WindowsFile(mPaths)}),
      mStateFolder(std::move(stateFolder)),
      mCharacters(WindowsFile(mPaths)) {
  mSocketTimer.setInterval(kSocketInterval);
}

TelepanelProgram::~TelepanelProgram() = default;

void TelepanelProgram::Run() {
  mdlMain::Main(Parts());
  mSocketTimer.stop();  // the socket has gone
  mDriver = nullptr;
  mRecorder.reset();
  mTiles.reset();
  mShared = nullptr;
}

HostParts TelepanelProgram::Parts() {
  HostParts parts{.paths = mPaths};
  parts.createHost = [this] {
    return MakeTelepanelHost({.pacer = mPacer,
                              .clock = mClock,
                              .prompts = mPrompts,
                              .installFolder = Utf8FromPath(mPaths.Shipped()),
                              .windowsFile = WindowsFile(mPaths)});
  };
  parts.loadTapi = [this] { return LoadTapi(); };
  parts.createDriver = [this] { return MakeDriver(); };
  parts.createWindows = [this](SharedState& shared) {
    mShared = &shared;
    RecordChanges(shared);
    mTiles.emplace(shared);
    shared.Remote->SetRegionTiles(&*mTiles);
    return MakeToolWindows(
        {shared, mPrompts, mPacer, mClock, mClipboard, mShell, mHexSelector, WindowsFile(mPaths), mStateFolder});
  };
  parts.prompts = &mPrompts;
  parts.shell = &mShell;
  parts.help = &mHelp;
  parts.clock = &mClock;
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

void TelepanelProgram::RecordChanges(SharedState& shared) {
  const auto tell = [&shared](const std::string& message) {
    if (shared.Remote) shared.Remote->StatusMessage(message);
  };
  mRecorder = std::make_unique<ChangeRecorder>(
      RecorderParts{.shared = shared,
                    .stateFolder = mStateFolder,
                    .disk = SystemJournalDisk(),
                    .prompts = mPrompts,
                    .pacer = mPacer,
                    .clock = mClock,
                    .tell = tell,
                    .cure = "or do it again, and let it pass without a record when you are asked"});
  mDriver->SetChangeObserver(mRecorder.get());
}

std::unique_ptr<InProcessLine> TelepanelProgram::SimulatedLine(const std::string& model) {
  auto line = mControllers.NewLine(model);
  if (line) return std::move(*line);
  if (mDriver->OnComMessage) mDriver->OnComMessage("The simulated controller cannot be started: " + line.error());
  return nullptr;
}

}  // namespace kv
