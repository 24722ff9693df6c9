#include "apps/kvtele/ConnectedController.h"

#include "KvCmDrv1/CallerMessages.h"
#include "apps/kvtele/LinkChoice.h"
#include "base/AnsiText.h"
#include "download/OtherSpeeds.h"
#include "models/ModelCatalogue.h"
#include "sessions/SessionIni.h"

namespace kv::cli {

namespace {

OrFailure<std::unique_ptr<CommDriver>> MakeDriver(Environment& environment, const CommonOptions& common,
                                                  const LinkChoice& choice) {
  for (const std::string& complaint : choice.complaints) environment.err << complaint << "\n";
  return environment.makeDriver({choice.settings, choice.sessionFolder, common.trace});
}

// Q50 and its relatives answer with one text, so each of them is as good as the others.
bool IsModelAsked(const std::string& asked, const std::string& found) {
  return asked == found || (IsCompactModel(asked) && IsCompactModel(found));
}

Failure OtherModel(const std::string& asked, const VersionInfo& version, const std::string& link) {
  return NotFitFailure("connecting to " + link, "the controller is a " + AnsiToUtf8(version.model) + ", not a " + asked,
                       "another controller answers on this link, or it is running its boot loader",
                       "check the link and the unit id, or leave out --model");
}

}  // namespace

// PromptedPassword tries a password that was given by option before it asks the user.
ConnectedController::ConnectedController(Environment& environment, const CommonOptions& common,
                                         std::unique_ptr<CommDriver> driver, LinkSettings settings)
    : mPrompts({}, environment.err, environment.input),
      mKnown(common.password),
      mPassword(mPrompts, "give the controller's password with --password-file or KVTELE_PASSWORD",
                {[this] { return &mKnown; }, "The password of " + common.passwordFrom}),
      mErr(environment.err),
      mShared(common.paths),
      mJournalPrompts({.yesFlag = "--unrecorded"}, environment.err, environment.input),
      mDriver(std::move(driver)),
      mSettings(std::move(settings)) {
  mShared.UserName = common.user;
  mShared.CurrentSession = common.session;
  if (common.link.empty()) mSelectedModel = LastModel(mShared);
  mDriver->SetPasswordSource(&mPassword);
  RecordChanges(environment, common);
}

void ConnectedController::RecordChanges(Environment& environment, const CommonOptions& common) {
  if (environment.journalDisk == nullptr) return;
  mRecorder = std::make_unique<ChangeRecorder>(
      RecorderParts{.shared = mShared,
                    .stateFolder = environment.stateFolder,
                    .disk = *environment.journalDisk,
                    .prompts = mJournalPrompts,
                    .pacer = environment.pacer,
                    .clock = environment.clock,
                    .tell = [&err = environment.err](const std::string& message) { err << message << "\n"; },
                    .cure = "--unrecorded changes it without a record"});
  if (common.unrecorded) mRecorder->LetPassUnrecorded();
  mRecorder->UseReason(common.reason);
  mDriver->SetChangeObserver(mRecorder.get());
}

ConnectedController::~ConnectedController() {
  mDriver->OnComMessage = nullptr;  // the message that the link was closed is not shown
  mChannel.reset();
  mDriver->CloseDriver();
  if (mRecorder && mRecorder->HasRecorded())
    mErr << "Recorded in the change journal. Head: " << mRecorder->Head() << "\n";
}

OrFailure<std::unique_ptr<ConnectedController>> ConnectedController::Open(Environment& environment,
                                                                          const CommonOptions& common,
                                                                          Reaching reaching) {
  const auto choice = ChooseLink(common);
  if (!choice) return std::unexpected(choice.error());
  auto driver = MakeDriver(environment, common, *choice);
  if (!driver) return std::unexpected(driver.error());
  std::unique_ptr<ConnectedController> connected(
      new ConnectedController(environment, common, std::move(*driver), choice->settings));
  // A link that never came about is the failure itself; who called meanwhile is news in any case.
  connected->mDriver->OnComMessage = [&err = environment.err](const std::string& message) {
    if (message.starts_with(kCallerDropped)) err << message << "\n" << std::flush;
  };
  if (const auto reached = connected->Reach(reaching); !reached) return std::unexpected(reached.error());
  connected->TellOtherSpeed(environment);
  connected->mDriver->OnComMessage = [&err = environment.err](const std::string& message) { err << message << "\n"; };
  connected->mModel = ModelOfIdentification(AnsiToUtf8(connected->mVersion.model));
  if (common.model.empty()) return connected;
  if (!IsModelAsked(common.model, connected->mModel)) {
    return std::unexpected(OtherModel(common.model, connected->mVersion, connected->Description()));
  }
  connected->mModel = common.model;
  return connected;
}

OrFailure<Channel::ControllerInfo> ConnectedController::AskInfo() {
  if (const auto info = mChannel->GetControllerInfo(mChannel->UnitID())) return *info;
  return std::unexpected(LastFailure());
}

ConnectedController::Reconnecting ConnectedController::HowItReconnects() const {
  if (mSettings.transport == Transport::Modem) return Reconnecting::ByDialling;
  return mSettings.reconnects || mSettings.transport == Transport::Simulated ? Reconnecting::ByItself
                                                                             : Reconnecting::Not;
}

std::expected<void, LinkError> ConnectedController::Reopen() {
  if (mDriver->GetChannel()) return {};
  return std::unexpected(mDriver->LastError());
}

OrFailure<void> ConnectedController::Reach(Reaching reaching) {
  mDriver->SetDriverActive(true);
  mChannel = mDriver->GetChannel();
  if (!mChannel) return std::unexpected(LinkFailure(mDriver->LastError(), false));
  mChannel->SetCommandOwner("kvtele");
  auto version = mChannel->GetVersionInfo(mChannel->UnitID());
  const LinkError first = mChannel->LastError();
  const bool looksFurther = !version && reaching == Reaching::AtAnySpeed && MayBeOfSpeed(first.code);
  if (looksFurther && FindAtOtherSpeed(*mChannel)) version = mChannel->GetVersionInfo(mChannel->UnitID());
  if (!version) return std::unexpected(LinkFailure(first, false));
  mVersion = *version;
  return {};
}

void ConnectedController::TellOtherSpeed(Environment& environment) const {
  const int now = mChannel->GetComParams().baudRate;
  const int usual = mDriver->UsualBaudRate();
  if (usual == 0 || now == usual) return;  // 0: it has none, or does not tell
  environment.err << "Nobody answers at " << usual << " baud. The controller was found at " << now << " baud.\n";
}

}  // namespace kv::cli
