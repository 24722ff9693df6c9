#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/kvsim/Make.h"
#include "apps/kvsim/Options.h"
#include "apps/kvsim/PtyEndpoint.h"
#include "apps/kvsim/Server.h"
#include "apps/kvsim/TcpEndpoints.h"
#include "desktop/console/ConsolePacer.h"
#include "desktop/console/ConsoleProgram.h"
#include "simulator/ModelTable.h"
#include "simulator/SimulatedController.h"
#include "simulator/SimulatedModem.h"

namespace kvsim {
namespace {

using Controller = std::unique_ptr<sim::SimulatedController>;

int Complain(int exitCode, const std::string& text) {
  std::cerr << "kvsim: " << text << '\n';
  return exitCode;
}

// The user has mistyped something, unless the state file alone is to blame.
int CodeOfRefusal(sim::SimulatorOptions options) {
  if (options.stateFile.empty()) return kUsage;
  options.stateFile.clear();
  return sim::SimulatedController::Create(options) ? kFailed : kUsage;
}

std::expected<std::unique_ptr<Endpoint>, std::string> OpenEndpoint(const Options& options) {
  if (options.tcp) return ListenOn(options.bind, *options.tcp);
  if (options.dial) return DialTo(options.dial->host, options.dial->port);
  return ServeOnPty(options.pty);
}

std::unique_ptr<kv::InProcessLine> MakeLine(sim::SimulatedController& controller, const Options& options) {
  auto line = controller.NewLine();
  if (options.modem) return std::make_unique<sim::SimulatedModem>(std::move(line), *options.modem);
  return line;
}

bool SaveState(sim::SimulatedController& controller) {
  const auto saved = controller.SaveState();
  if (!saved) Complain(kFailed, "the state is not kept: " + saved.error());
  return saved.has_value();
}

int Serve(const Options& options) {
  if (sim::FindModel(options.controller.model) == nullptr) {
    return Complain(kUsage, UnknownModelText(options.controller.model));
  }
  auto controller = sim::SimulatedController::Create(options.controller);
  if (!controller) return Complain(CodeOfRefusal(options.controller), controller.error());
  auto endpoint = OpenEndpoint(options);
  if (!endpoint) return Complain(kFailed, endpoint.error());

  kv::ConsolePacer pacer;
  std::cerr << "kvsim: simulated " << options.controller.model << ", unit " << int{options.controller.unit} << ", seed "
            << (*controller)->Seed() << '\n';
  std::cout << (*endpoint)->ReadyText() << std::endl;
  Server server(
      std::move(*endpoint), [&] { return MakeLine(**controller, options); }, pacer,
      [&] { (void)SaveState(**controller); });
  server.Run();
  return SaveState(**controller) ? kDone : kFailed;
}

}  // namespace
}  // namespace kvsim

int main(int argc, char** argv) {
  const kv::ConsoleSetup console;
  const std::vector<std::string> texts = kv::Utf8Arguments(argc, argv);
  std::vector<const char*> arguments{"kvsim"};
  for (const auto& text : texts) arguments.push_back(text.c_str());
  const int count = static_cast<int>(arguments.size());
  if (count > 1 && texts.front() == "make") return kvsim::Make(count - 1, arguments.data() + 1);
  const auto options = kvsim::ReadOptions(count, arguments.data());
  if (!options) return options.error();
  if (!options->listsModels) return kvsim::Serve(*options);
  std::cout << kvsim::ModelListText();
  return kvsim::kDone;
}
