#include "download/FoundController.h"

#include <chrono>

#include "base/AnsiText.h"
#include "clone/ProgramState.h"
#include "clone/RestoreCheck.h"
#include "download/CompactController.h"
#include "download/FileFields.h"
#include "download/OsFileName.h"
#include "link/OsVersion.h"
#include "models/ModelFit.h"

namespace kv {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Duration kBetweenTries = milliseconds(500);
// A controller restarts within 5 s; a network, a gateway or a modem in front of it may need longer.
constexpr Duration kLongestReset = seconds(30);
// So long may it still answer as before the reset.
constexpr Duration kLongestFarewell = seconds(8);

LinkError StoppedByUser() {
  LinkError error;
  error.code = LinkErrorCode::Stopped;
  error.doing = "identifying the controller after its reset";
  error.happened = "stopped by the user";
  return error;
}

LinkError AnotherController(std::uint32_t found, std::uint32_t expected) {
  LinkError error;
  error.code = LinkErrorCode::OtherController;
  error.doing = "identifying the controller after its reset";
  error.happened = "serial number " + std::to_string(found) + " answers now instead of " + std::to_string(expected);
  error.cure = "check the cable and the address";
  return error;
}

}  // namespace

std::string FoundController::OsText() const {
  return OsVersionText(version) + " (B" + OsBuildText(version) + ")";
}

std::optional<OsNumber> OsNumberOf(const VersionInfo& version) {
  const auto number = ParsePlainOsVersion(OsVersionText(version));
  const auto build = ParsePlainOsVersion(OsBuildText(version));
  if (!number || !build) return std::nullopt;
  return OsNumber{*number, *build};
}

std::optional<OsNumber> FoundController::Os() const {
  return info.state == 'B' ? std::nullopt : OsNumberOf(version);
}

std::string FoundController::ReplacedText() const {
  return Os() ? " in place of " + OsVersionText(version) : "";
}

std::string FoundController::ProjectText() const {
  return ShownText(info.projectName);
}

std::expected<FoundController, LinkError> FindController(Channel& link) {
  const auto version = link.GetVersionInfo(link.UnitID());
  if (!version) return std::unexpected(link.LastError());
  const auto info = link.GetControllerInfo(link.UnitID());
  if (!info) return std::unexpected(link.LastError());
  return FoundController{*version, *info};
}

std::expected<FoundController, LinkError> FindAfterReset(Channel& link, Pacer& pacer, std::uint32_t serialNumber) {
  const Instant start = pacer.Now();
  while (true) {
    if (pacer.StopRequested()) return std::unexpected(StoppedByUser());
    const auto info = link.GetControllerInfo(link.UnitID());
    const LinkError error = info ? LinkError() : link.LastError();
    const Duration passed = pacer.Now() - start;
    if (info && info->serialNumber != serialNumber) {
      return std::unexpected(AnotherController(info->serialNumber, serialNumber));
    }
    if (info && (IsRunningState(info->state) || passed >= kLongestFarewell)) return FindController(link);
    if (error.code == LinkErrorCode::OtherController || passed >= kLongestReset) return std::unexpected(error);
    pacer.DoEvents();
    pacer.Sleep(kBetweenTries);
    // A link that does not come back by itself is opened again; one that stands stays as it is.
    if (!info && !pacer.StopRequested()) static_cast<void>(link.OpenLink(0, 0));
  }
}

// Of the models that share a hardware code, only the O/S is known that they take.
std::string ControllerModelOf(const FoundController& controller, DownloadFamily family) {
  const VersionInfo& version = controller.version;
  if (!IsBootLoader(controller) || family == DownloadFamily::Colour) return version.model;
  if (family == DownloadFamily::Compact) {
    const auto compact = ParseCompactIdentification(version.model + "|" + version.hardwareCode);
    return version.model + (compact ? " (boot loader of a " + compact->OsModel() + ")" : " (boot loader)");
  }
  const std::string_view model = AurexModelOfHardware(version.hardwareCode);
  const std::string_view type = ExpectedAurexOsType(model);
  constexpr std::string_view kMany = "AurexK330";
  return version.model + (type == kMany ? " (boot loader of a model with the O/S of the K330)"
                                        : " (boot loader of a " + std::string(model) + ")");
}

std::string ControllerNameOf(const FoundController& controller, DownloadFamily family, const std::string& link) {
  VersionInfo named = controller.version;
  named.model = ControllerModelOf(controller, family);
  return ControllerText(named, controller.info, link);
}

std::string OtherModelWarning(const FoundController& controller, const std::string& selected) {
  const std::string found = selected.empty() ? "" : OtherModelOf(AnsiToUtf8(controller.version.model), selected);
  if (found.empty()) return "";
  return "The controller is of the model " + found + ", but the selected model is " + selected +
         ": make sure that it is the one that you mean.";
}

std::string StateAdvice(const FoundController& controller) {
  switch (controller.info.state) {
    case 'B':
      return "The controller's boot loader runs, so it has no running program and takes no project. Download an O/S; "
             "if "
             "there is still one in it, that starts when the controller is switched off and on.";
    case 'L':
      return "The controller is loading, its program stopped: a restore or a download was cut, or somebody else's is "
             "under way. Download a project or restore a clone, to the end.";
    default:
      return "";
  }
}

}  // namespace kv
