#include "apps/kvtele/VerbPorts.h"

namespace kv::cli {

const char* VerbPorts::Examples() const {
  return "  kvtele ports                            one line a port: its path, a tab, what it is\n"
         "  kvtele --link serial:COM3 identify      then try one of them\n";
}

Outcome VerbPorts::Run(Environment& environment, const CommonOptions&) {
  Answer answer;
  answer.document["ports"] = nlohmann::ordered_json::array();
  for (const SerialPortInfo& port : environment.listSerialPorts()) {
    answer.text += port.path + "\t" + port.description + "\n";
    answer.document["ports"].push_back(
        {{"name", port.name}, {"path", port.path}, {"description", port.description}, {"stablePath", port.stablePath}});
  }
  if (answer.text.empty()) environment.err << "This machine has no serial line.\n";
  return answer;
}

}  // namespace kv::cli
