#include <CLI/Version.hpp>

#include "KvCmDrv1/ports/PortLibrary.h"
#include "apps/kvtele/LinkChoice.h"
#include "apps/kvtele/PngFile.h"
#include "apps/kvtele/Verb.h"
#include "dataview/sheets/SheetLibraries.h"
#include "deflate/DeflateLibrary.h"
#include "desktop/SystemName.h"
#include "host/ErrorReport.h"
#include "secret/SecretLibrary.h"

namespace kv::cli {

namespace {

// Prints the report of an error that the about screen copies, with the frames of one attempt to identify the
// controller.
class VerbReport : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "report"; }
  [[nodiscard]] const char* Summary() const override { return "Print what a report of an error needs"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

ReportedProgram ThisProgram() {
  const std::string json = std::to_string(NLOHMANN_JSON_VERSION_MAJOR) + "." +
                           std::to_string(NLOHMANN_JSON_VERSION_MINOR) + "." +
                           std::to_string(NLOHMANN_JSON_VERSION_PATCH);
  ReportedProgram program{.name = "kvtele", .system = {SystemName()}, .libraries = {}};
  program.libraries = {{"CLI11", CLI11_VERSION, "BSD-3-Clause"},
                       {"JSON for Modern C++", json, "MIT"},
                       PortLibrary(),
                       SecretLibrary(),
                       DeflateLibrary(),
                       PngLibrary()};
  for (LibraryNotice& library : SheetLibraries()) program.libraries.push_back(std::move(library));
  return program;
}

// What comes of it shows in the frames; that nobody answers may be what is reported.
void TryToIdentify(Environment& environment, CommDriver& driver) {
  const auto channel = driver.GetChannel();
  const bool isThere = channel && channel->GetVersionInfo(channel->UnitID());
  if (isThere) return;
  environment.err << (channel ? channel->LastError() : driver.LastError()).Text() << "\n";
}

const char* VerbReport::Examples() const {
  return "  kvtele --session Mill report > report.txt          asks the controller who it is, and prints the report\n";
}

VerbResult VerbReport::Run(Environment& environment, const CommonOptions& common) {
  const auto choice = ChooseLink(common);
  if (!choice) return std::unexpected(choice.error());
  const auto driver = environment.makeDriver({choice->settings, choice->sessionFolder, common.trace});
  if (!driver) return std::unexpected(driver.error());
  (*driver)->SetDriverActive(true);
  TryToIdentify(environment, **driver);
  SharedState shared(common.paths);
  shared.CurrentSession = common.session;
  shared.ComDriver = driver->get();
  const std::string report = ErrorReport(shared, environment.clock, ThisProgram());
  (*driver)->CloseDriver();
  return VerbOutput{report, {{"report", report}}};
}

}  // namespace

std::unique_ptr<Verb> MakeVerbReport() {
  return std::make_unique<VerbReport>();
}

}  // namespace kv::cli
