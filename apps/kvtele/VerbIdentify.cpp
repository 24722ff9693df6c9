#include <array>

#include "KvTele2/ControllerFacts.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Verb.h"
#include "apps/kvtele/VerbOutput.h"
#include "base/AnsiText.h"
#include "link/OsVersion.h"
#include "link/StateText.h"

namespace kv::cli {

namespace {

// Reaches the controller and tells who it is.
class VerbIdentify : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "identify"; }
  [[nodiscard]] const char* Summary() const override { return "Tell which controller answers, and what it runs"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

constexpr char kBootLoader = 'B';

nlohmann::ordered_json DocumentOf(const ConnectedController& controller, const Channel::ControllerInfo& info) {
  const VersionInfo& version = controller.Version();
  return {{"model", AnsiToUtf8(version.model)},
          {"hostModel", controller.Model()},
          {"hardwareCode", version.hardwareCode},
          {"os", OsVersionText(version)},
          {"build", OsBuildText(version)},
          {"osReported", AnsiToUtf8(version.osVersion)},
          {"buildReported", AnsiToUtf8(version.osBuild)},
          {"unit", controller.Unit()},
          {"link", controller.Description()},
          {"serialNumber", info.serialNumber},
          {"state", StateText(info.state)},
          {"bootLoader", info.state == kBootLoader},
          {"project", AnsiToUtf8(info.projectName)}};
}

// clang-format off
constexpr std::array kLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"host model     ", "hostModel"},
    DocumentLine{"hardware code  ", "hardwareCode"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"unit           ", "unit"},
    DocumentLine{"link           ", "link"},
    DocumentLine{"serial number  ", "serialNumber"},
    DocumentLine{"state          ", "state"},
    DocumentLine{"project        ", "project"},
};
// clang-format on

const char* VerbIdentify::Examples() const {
  return "  kvtele --link sim:K670 identify                a simulated controller with a colour screen\n"
         "  kvtele --link tcp:192.168.1.20 identify        over the network, port 20300\n"
         "  kvtele --link serial:COM3,57600 identify       over a serial line\n"
         "  kvtele --link sim:Q50 identify --json          for a script\n";
}

VerbResult VerbIdentify::Run(Environment& environment, const CommonOptions& common) {
  const auto connected = ConnectedController::Open(environment, common, ConnectedController::Reaching::AtAnySpeed);
  if (!connected) return std::unexpected(connected.error());
  ConnectedController& controller = **connected;
  const auto info = controller.AskInfo();
  if (!info) return std::unexpected(info.error());
  const auto document = DocumentOf(controller, *info);
  return VerbOutput{DocumentText(document, kLines), document};
}

}  // namespace

std::unique_ptr<Verb> MakeVerbIdentify() {
  return std::make_unique<VerbIdentify>();
}

}  // namespace kv::cli
