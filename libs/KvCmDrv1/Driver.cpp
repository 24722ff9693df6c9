#include "KvCmDrv1/Driver.h"

#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/SettingsFile.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "base/PathText.h"

namespace kv {
namespace {

// A port that cannot be had: every Open says why.
class NoPort final : public Port {
 public:
  explicit NoPort(std::string description) : mDescription(std::move(description)) {}

  [[nodiscard]] std::expected<void, PortError> Open(Duration) override {
    return std::unexpected(PortError{"this kind of link is not there", "this program cannot listen for controllers",
                                     "choose another transport in the communication settings"});
  }
  void Close() override {}
  [[nodiscard]] bool IsOpen() const override { return false; }
  [[nodiscard]] Result Write(std::string_view&, Duration) override { return Result::Lost; }
  [[nodiscard]] Result Read(std::string&, Duration) override { return Result::Lost; }
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override { return {}; }
  [[nodiscard]] bool SetBaudRate(int) override { return false; }
  [[nodiscard]] std::string Description() const override { return mDescription; }

 private:
  std::string mDescription;
  PortError mLoss;
};

// A session without settings of its own starts with a simulated controller of its model, or at least of its kind.
LinkSettings DefaultsFor(const SessionLink& session) {
  LinkSettings settings;
  if (!session.model.empty()) {
    settings.model = session.model;
  } else if (session.isBrio) {
    settings.model = "BRIO";
  } else if (session.isCompactDriver) {
    settings.model = "Q50";
  } else if (session.isColour) {
    settings.model = "K450-45";
  }
  return settings;
}

}  // namespace

Driver::Driver(Pacer& pacer, SimulatedLineFactory simulatedLines, PortMaker makePort)
    : mPacer(pacer),
      mSimulatedLines(std::move(simulatedLines)),
      mMakePort(std::move(makePort)),
      mTrace(std::make_shared<Trace>()) {}

Driver::~Driver() {
  CloseDriver();
}

void Driver::SetDriverActive(bool active) {
  mIsActive = active;
  if (!active) CloseDriver();
}

void Driver::ConfigureForSession(const SessionLink& session) {
  const std::filesystem::path folder = PathFromUtf8(session.folder);
  if (session.socket != mSocket || folder != mFolder) CloseDriver();
  mSocket = session.socket;
  mFolder = folder;
  mDefaults = DefaultsFor(session);
  TakeSessionSettings();
  if (!mUnreadable.empty()) Tell("The communication settings of the session cannot be read. " + mUnreadable);
}

void Driver::TakeSessionSettings() {
  const LoadedSettings loaded = LoadSettings(mFolder, mDefaults);
  for (const std::string& complaint : loaded.complaints) Tell(complaint);
  (void)UseSettings(loaded.settings, false);
  mUnreadable = loaded.unreadable;
}

bool Driver::UseSettings(const LinkSettings& settings, bool keep) {
  const bool isSame = settings == mSettings && (!mChannel || settings == mChannel->Settings());
  if (!isSame) CloseDriver();
  mSettings = settings;
  mUnreadable.clear();
  if (!keep) return true;
  const auto saved = SaveSettings(mFolder, settings);
  if (!saved) Tell("The communication settings are used, but were not kept. " + saved.error());
  return saved.has_value();
}

std::shared_ptr<Channel> Driver::GetChannel() {
  if (mForeign) return mForeign;
  if (!mIsActive) {
    FailInactive();
    return nullptr;
  }
  if (!mUnreadable.empty()) TakeSessionSettings();  // it may have been let go
  if (!mUnreadable.empty()) {
    FailUnreadable();
    Tell(mError.Text());
    return nullptr;
  }
  if (!mChannel) {
    mChannel = std::make_shared<ChannelImpl>(
        mPacer, mTrace, mSettings, [this](const LinkSettings& settings) { return MakeAnyPort(settings); },
        [this](const std::string& message) { Tell(message); });
    mChannel->UsePasswords(mPasswords);
    mChannel->ObserveChanges(mChanges);
  }
  if (!mChannel->Open()) {
    mError = mChannel->LastError();
    Tell(mError.Text());
    return nullptr;
  }
  mError = {};
  mChannel->BeginOperation();
  return mChannel;
}

void Driver::SetPasswordSource(PasswordSource* source) {
  mPasswords = source;
  if (mChannel) mChannel->UsePasswords(source);
}

void Driver::SetChangeObserver(ChangeObserver* observer) {
  mChanges = observer;
  if (mChannel) mChannel->ObserveChanges(observer);
}

void Driver::ForgetPasswords() {
  if (mPasswords) mPasswords->Forget();
  if (mChannel) mChannel->ForgetPasswords();
}

void Driver::CloseDriver() {
  if (mChannel) mChannel->Retire();
  mChannel.reset();
}

std::string Driver::LinkDescription() const {
  return DescribeLink(mChannel ? mChannel->Settings() : mSettings);
}

std::string Driver::SimulatedModelOf(const SessionLink& session) const {
  const LoadedSettings loaded = LoadSettings(PathFromUtf8(session.folder), DefaultsFor(session));
  const bool isSimulated = loaded.unreadable.empty() && loaded.settings.transport == Transport::Simulated;
  return isSimulated ? loaded.settings.model : std::string();
}

std::string Driver::DescribeSession(const SessionLink& session) const {
  const LoadedSettings loaded = LoadSettings(PathFromUtf8(session.folder), DefaultsFor(session));
  return loaded.unreadable.empty() ? DescribeLink(loaded.settings) : "Link settings that cannot be read";
}

void Driver::ShowTrace() {
  if (mDialogs) mDialogs->ShowTrace();
}

void Driver::ShowComParams() {
  if (!MayEdit()) return;
  if (const auto edited = mDialogs->EditLink(mSettings, mCaller)) (void)UseSettings(*edited, true);
}

void Driver::ShowModemSettings() {
  if (!MayEdit()) return;
  if (const auto edited = mDialogs->EditModem(mSettings, mCaller)) (void)UseSettings(*edited, true);
}

// Settings that change in the middle of a download would cut it.
bool Driver::MayEdit() {
  if (!mDialogs) return false;
  if (mChannel && mChannel->IsBusy()) {
    Tell("The link is busy: the communication settings can be changed when the operation has ended");
    return false;
  }
  return true;
}

std::unique_ptr<Port> Driver::MakeAnyPort(const LinkSettings& settings) {
  if (settings.transport == Transport::Simulated) {
    return std::make_unique<SimulatedPort>(SimulatedLine(settings.model), settings.model, mPacer);
  }
  std::unique_ptr<Port> port = mMakePort ? mMakePort(settings, mPacer, mSocket) : nullptr;
  return port ? std::move(port) : std::make_unique<NoPort>(DescribeLine(settings));
}

std::shared_ptr<InProcessLine> Driver::SimulatedLine(const std::string& model) {
  const auto found = mLines.find(model);
  if (found != mLines.end()) return found->second;
  std::shared_ptr<InProcessLine> line = mSimulatedLines ? mSimulatedLines(model) : nullptr;
  if (line) mLines.emplace(model, line);
  return line;
}

void Driver::Tell(const std::string& message) {
  if (OnComMessage) OnComMessage(message);
}

void Driver::FailUnreadable() {
  mError = {};
  mError.code = LinkErrorCode::CannotOpen;
  mError.doing = "opening the link";
  mError.happened = "the communication settings of the session cannot be read: " + mUnreadable;
  mError.cause = kUnreadableCause;
  mError.cure = "close the other program and try again, or set the link anew in the communication settings";
}

void Driver::FailInactive() {
  mError = {};
  mError.code = LinkErrorCode::CannotOpen;
  mError.doing = "opening the link";
  mError.happened = "the driver is not active";
  mError.cause = "the program is starting or ending";
  mError.cure = "try again";
}

}  // namespace kv
