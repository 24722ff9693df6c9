#include "apps/kvtele/VerbOnline.h"

#include <CLI/Option.hpp>
#include <array>

#include "KvTele2/HostState.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/ConsoleHost.h"
#include "apps/kvtele/DocumentText.h"
#include "apps/kvtele/NotedPrompts.h"
#include "apps/kvtele/ProgramFolder.h"
#include "apps/kvtele/SessionCopy.h"
#include "link/OsVersion.h"
#include "link/identification/GoOnline.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"

namespace kv::cli {

namespace {

// clang-format off
constexpr std::array kLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"reported as    ", "reported"},
    DocumentLine{"hardware code  ", "hardwareCode"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"unit           ", "unit"},
    DocumentLine{"link           ", "link"},
    DocumentLine{"serial number  ", "serialNumber"},
    DocumentLine{"state          ", "state"},
    DocumentLine{"project        ", "project"},
    DocumentLine{"panel data     ", "panelData"},
    DocumentLine{"panel byte     ", "panelInformation"},
};
// clang-format on

// What was found out, and whether a project was compared.
struct Found {
  const VersionInfo& version;
  const Channel::ControllerInfo& info;
  bool isProjectCompared;
};

// The file that a colour panel's data would be taken from: the copy that was made of it is gone when it is read.
std::string PanelSource(const SharedState& shared, const ConsoleHost& host) {
  const std::string& copy = host.PanelSettings().data;
  if (copy.ends_with("DOS_TEMP")) return Utf8FromPath(PathFromUtf8(host.InstallFolder()) / "TP_Temp" / "TP_Temp_1");
  const auto recent = ReadRecentCaches(shared);
  return copy.empty() || recent.empty() ? "" : CachePath(recent.front());
}

VerbOutput MakeOutput(ConnectedController& controller, const Found& found, const ConsoleHost& host,
                      const std::string& panelData) {
  const ConsoleHost::Panel& panel = host.PanelSettings();
  VerbOutput output;
  output.document = {{"model", host.Model()},
                     {"reported", AnsiToUtf8(found.version.model)},
                     {"hardwareCode", found.version.hardwareCode},
                     {"os", OsVersionText(found.version)},
                     {"build", OsBuildText(found.version)},
                     {"unit", controller.Unit()},
                     {"link", controller.Description()},
                     {"serialNumber", found.info.serialNumber},
                     {"state", StateText(found.info.state)},
                     {"project", AnsiToUtf8(found.info.projectName)},
                     {"projectCompared", found.isProjectCompared},
                     {"panelData", panelData},
                     {"panelInformation", nullptr},
                     {"caption", panel.caption}};
  if (panel.information) output.document["panelInformation"] = *panel.information;
  output.text = DocumentText(output.document, kLines);
  return output;
}

Failure Refusal(const std::string& text) {
  Failure failure = NotFitFailure("going on line", text, {}, {});
  failure.code = "refused";
  return failure;
}

OrFailure<std::optional<PagesFile>> ReadProject(const std::string& path) {
  if (path.empty()) return std::nullopt;
  const auto pages = ReadPagesFile(PathFromUtf8(path));
  if (pages) return *pages;
  return std::unexpected(Failure{ExitCode::BadFile,
                                 "badFile",
                                 "reading the Telepanel file",
                                 pages.error().Text(),
                                 {},
                                 "name a file that the window has saved, or make it anew there"});
}

// Going on line leaves the model alone that the host has for some controllers of the compact family.
bool IsMisfit(const VersionInfo& version, int unit, const std::string& hostModel) {
  HostState state;
  state.model = hostModel;
  state.controller = FactsOf(version, unit);
  return !MisfitText(state).empty();
}

}  // namespace

const char* VerbOnline::Examples() const {
  return "  kvtele --link sim:K220-22-R1 online             a simulated controller\n"
         "  kvtele --session Default online                 the controller of a session\n"
         "  kvtele online --project mill.kta                refused when it holds another project\n"
         "  kvtele --link tcp:192.168.1.20 --json online    for a script: exit 4 when it is refused\n";
}

void VerbOnline::Declare(CLI::App& app) {
  app.add_option("--project", mProject, "Telepanel file whose project the controller must hold. Default: not compared")
      ->type_name("FILE.kta");
}

VerbResult VerbOnline::Run(Environment& environment, const CommonOptions& common) {
  auto pages = ReadProject(mProject);
  if (!pages) return std::unexpected(pages.error());
  const auto connected = ConnectedController::Open(environment, common);
  if (!connected) return std::unexpected(connected.error());
  ConnectedController& controller = **connected;
  const ProgramPaths paths = PathsOf(environment, common);
  const auto copy = SessionCopy::Make(paths, common.session);
  if (!copy) return std::unexpected(copy.error());

  SharedState shared((*copy)->Paths());
  shared.CurrentSession = common.session;
  shared.ComDriver = &controller.Driver();
  const std::string model = common.model.empty() ? LastModel(shared) : common.model;
  ConsoleHost host(environment.err, model, Utf8FromPath(paths.Home()), *pages);
  shared.Remote = &host;
  NotedPrompts prompts;
  GoOnline(shared, prompts);
  if (!host.Refusal().empty()) return std::unexpected(Refusal(host.Refusal()));
  if (!host.IsOnline()) return std::unexpected(controller.LastFailure());
  const auto info = controller.Link().GetControllerInfo(controller.Unit());
  if (!info) return std::unexpected(controller.LastFailure());
  if (IsMisfit(controller.Version(), controller.Unit(), host.Model())) {
    environment.err << "The controller is a " << AnsiToUtf8(controller.Version().model)
                    << ", but it was served as the session's model, " << host.Model()
                    << ": name its own with --model.\n";
  }
  if (!*pages) environment.err << "No project was compared: name a Telepanel file with --project.\n";
  return MakeOutput(controller, {controller.Version(), *info, pages->has_value()}, host, PanelSource(shared, host));
}

}  // namespace kv::cli
