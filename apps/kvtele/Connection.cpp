#include "apps/kvtele/Connection.h"

#include "KvCmDrv1/CallerMessages.h"
#include "apps/kvtele/LinkChoice.h"
#include "base/AnsiText.h"
#include "models/ModelCatalogue.h"

namespace kv::cli {

namespace {

std::expected<std::unique_ptr<CommDriver>, Failure> MakeDriver(Environment& environment, const CommonOptions& common,
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

// A password that was given by option is tried before the user is asked; both are the password's business.
Connection::Connection(Environment& environment, const CommonOptions& common, std::unique_ptr<CommDriver> driver,
                       LinkSettings settings)
    : mPrompts({}, environment.err, environment.input),
      mPassword(mPrompts, "give the controller's password with --password", common.password),
      mDriver(std::move(driver)),
      mSettings(std::move(settings)) {
  mDriver->SetPasswordSource(&mPassword);
}

Connection::~Connection() {
  mDriver->OnComMessage = nullptr;  // that the link is closed at the end is no news
  mChannel.reset();
  mDriver->CloseDriver();
}

std::expected<std::unique_ptr<Connection>, Failure> Connection::Open(Environment& environment,
                                                                     const CommonOptions& common) {
  const auto choice = ChooseLink(environment, common);
  if (!choice) return std::unexpected(choice.error());
  auto driver = MakeDriver(environment, common, *choice);
  if (!driver) return std::unexpected(driver.error());
  std::unique_ptr<Connection> connection(new Connection(environment, common, std::move(*driver), choice->settings));
  // A link that never came about is the failure itself; who called meanwhile is news in any case.
  connection->mDriver->OnComMessage = [&err = environment.err](const std::string& message) {
    if (message.starts_with(kCallerDropped)) err << message << "\n" << std::flush;
  };
  if (const auto reached = connection->Reach(); !reached) return std::unexpected(reached.error());
  connection->mDriver->OnComMessage = [&err = environment.err](const std::string& message) { err << message << "\n"; };
  connection->mModel = ModelOfIdentification(AnsiToUtf8(connection->mVersion.model));
  if (common.model.empty()) return connection;
  if (!IsModelAsked(common.model, connection->mModel)) {
    return std::unexpected(OtherModel(common.model, connection->mVersion, connection->Description()));
  }
  connection->mModel = common.model;
  return connection;
}

Connection::ComingBack Connection::HowItComesBack() const {
  if (mSettings.transport == Transport::Modem) return ComingBack::ByDialling;
  return mSettings.reconnects || mSettings.transport == Transport::Simulated ? ComingBack::ByItself : ComingBack::Not;
}

std::expected<void, LinkError> Connection::Reopen() {
  if (mDriver->GetChannel()) return {};
  return std::unexpected(mDriver->LastError());
}

std::expected<void, Failure> Connection::Reach() {
  mDriver->SetDriverActive(true);
  mChannel = mDriver->GetChannel();
  if (!mChannel) return std::unexpected(LinkFailure(mDriver->LastError(), false));
  mChannel->SetCommandOwner("kvtele");
  const auto version = mChannel->GetVersionInfo(mChannel->UnitID());
  if (!version) return std::unexpected(LinkFailure(mChannel->LastError(), false));
  mVersion = *version;
  return {};
}

}  // namespace kv::cli
