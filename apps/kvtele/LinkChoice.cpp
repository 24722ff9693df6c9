#include "apps/kvtele/LinkChoice.h"

#include <chrono>
#include <system_error>

#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/SettingsFile.h"
#include "apps/support/SimulatedControllers.h"
#include "base/PathText.h"
#include "models/ModelCatalogue.h"
#include "sessions/SessionIni.h"
#include "sessions/SessionManager.h"

namespace kv::cli {

namespace {

using Chosen = OrFailure<LinkChoice>;

Failure NoSession(const std::string& name, const std::filesystem::path& folder) {
  Failure failure = UsageFailure("there is no session \"" + name + "\"",
                                 "name another with --session, the program folder with --home, or a link with --link");
  failure.doing = "looking for " + Utf8FromPath(folder);
  return failure;
}

// The session's folder; it must be there when its settings are needed, or when the user named it.
Chosen FindSession(const CommonOptions& common) {
  if (const std::string fault = SessionNameFault(common.session); !fault.empty())
    return std::unexpected(UsageFailure(fault));
  LinkChoice choice;
  choice.sessionFolder = common.paths.Session(common.session);
  const bool isNeeded = common.link.empty() || common.isSessionNamed;
  std::error_code ignored;
  if (isNeeded && !std::filesystem::is_directory(choice.sessionFolder, ignored)) {
    return std::unexpected(NoSession(common.session, choice.sessionFolder));
  }
  return choice;
}

// As in the window: a session without link settings has a simulated controller of its model.
LinkSettings DefaultsOf(const CommonOptions& common) {
  SharedState shared(common.paths);
  shared.CurrentSession = common.session;
  const std::string model = ModelOfIdentification(LastModel(shared));
  LinkSettings defaults;
  if (!ReportedModelOfSimulated(model).empty()) defaults.model = model;
  return defaults;
}

Failure UnreadableSettings(const std::string& why) {
  return {ExitCode::BadFile,
          "badFile",
          "reading the communication settings of the session",
          why,
          kUnreadableCause,
          "close the other program and try again, or name the link with --link"};
}

Chosen WithLink(LinkChoice choice, const std::string& text, const LinkSettings& defaults) {
  if (text.empty()) {
    LoadedSettings loaded = LoadSettings(choice.sessionFolder, defaults);
    if (!loaded.unreadable.empty()) return std::unexpected(UnreadableSettings(loaded.unreadable));
    choice.settings = std::move(loaded.settings);
    choice.complaints = std::move(loaded.complaints);
    return choice;
  }
  const auto settings = ParseLink(text);
  if (!settings) return std::unexpected(UsageFailure("--link: " + settings.error()));
  choice.settings = *settings;
  return choice;
}

void ApplyOptions(LinkSettings& settings, const CommonOptions& common) {
  if (common.unit) settings.unit = static_cast<std::uint8_t>(*common.unit);
  if (common.serialNumber) settings.serialNumber = common.serialNumber;
  if (common.redials) settings.modem.redials = *common.redials;
  if (common.timeOut) settings.timeOut = std::chrono::milliseconds(*common.timeOut);
  if (common.retries) settings.tries = *common.retries + 1;
}

bool IsSimulatedModelMissing(const LinkSettings& settings) {
  return settings.transport == Transport::Simulated && ReportedModelOfSimulated(settings.model).empty();
}

}  // namespace

Chosen ChooseLink(const CommonOptions& common) {
  Chosen choice = FindSession(common);
  if (choice) choice = WithLink(std::move(*choice), common.link, DefaultsOf(common));
  if (!choice) return choice;
  ApplyOptions(choice->settings, common);
  if (!IsSimulatedModelMissing(choice->settings)) return choice;
  return std::unexpected(UsageFailure("there is no simulated controller \"" + choice->settings.model + "\"",
                                      "use one of " + SimulatedModelNames()));
}

std::string ModelKnownBeforehand(const CommonOptions& common) {
  if (!common.model.empty()) return common.model;
  const auto choice = ChooseLink(common);
  if (!choice || choice->settings.transport != Transport::Simulated) return {};
  return ModelOfIdentification(ReportedModelOfSimulated(choice->settings.model));
}

}  // namespace kv::cli
