#include "tests/kvtele/CommandBench.h"

#include <sstream>

#include "base/PathText.h"

namespace kv::test {

CommandBench::CommandBench() {
  std::filesystem::create_directories(home.Path() / "Sessions" / "Default");
}

Result CommandBench::On(const std::string& model, const std::vector<std::string>& arguments) {
  std::vector<std::string> all{"--link", "sim:" + model};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return Run(all);
}

Result CommandBench::Run(const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  if (outIsBroken) out.setstate(std::ios::badbit);
  const std::filesystem::path trace = home.Path() / "trace.txt";
  cli::Environment environment{
      .out = out,
      .err = err,
      .errIsTerminal = errIsTerminal,
      .input = input,
      .pacer = pacer,
      .clock = pacer,
      .home = home.Path(),
      .makeDriver =
          [&](cli::DriverOrder order) {
            if (order.traceFile.empty()) order.traceFile = Utf8FromPath(trace);
            auto driver =
                std::make_unique<Driver>(pacer, [this](const std::string& model) { return NewLine(model); }, makePort);
            return cli::SetUpDriver(std::move(driver), order, nullptr);
          },
      .listSerialPorts = [this] { return serialPorts; },
  };
  std::filesystem::remove(trace);
  const auto exit = cli::RunKvTele(arguments, environment);
  return {static_cast<int>(exit), out.str(), err.str(), TemporaryFolder::Content(trace)};
}

std::unique_ptr<InProcessLine> CommandBench::NewLine(const std::string& model) {
  auto& controller = mControllers[model];
  if (!controller) {
    options.model = model;
    auto created = sim::SimulatedController::Create(options);
    if (!created) return nullptr;
    controller = std::move(*created);
  }
  return controller->NewLine();
}

}  // namespace kv::test
