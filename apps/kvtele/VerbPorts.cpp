#include "apps/kvtele/Verb.h"

namespace kv::cli {

namespace {

// Lists the serial lines of this machine.
class VerbPorts : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "ports"; }
  [[nodiscard]] const char* Summary() const override { return "List the serial lines of this machine"; }
  [[nodiscard]] const char* Examples() const override;
  [[nodiscard]] bool NeedsFolders() const override { return false; }
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

const char* VerbPorts::Examples() const {
  return "  kvtele ports                            one line a port: its path, a tab, what it is\n"
         "  kvtele --link serial:COM3 identify      then try one of them\n";
}

VerbResult VerbPorts::Run(Environment& environment, const CommonOptions&) {
  VerbOutput output;
  output.document["ports"] = nlohmann::ordered_json::array();
  for (const SerialPortInfo& port : environment.listSerialPorts()) {
    output.text += port.path + "\t" + port.description + "\n";
    output.document["ports"].push_back(
        {{"name", port.name}, {"path", port.path}, {"description", port.description}, {"stablePath", port.stablePath}});
  }
  if (output.text.empty()) environment.err << "This machine has no serial line.\n";
  return output;
}

}  // namespace

std::unique_ptr<Verb> MakeVerbPorts() {
  return std::make_unique<VerbPorts>();
}

}  // namespace kv::cli
