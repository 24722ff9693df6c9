#include "apps/kvtele/VerbPorts.h"

namespace kv::cli {

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

}  // namespace kv::cli
