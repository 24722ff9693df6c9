#include "simulator/SimulatedController.h"

#include <utility>

#include "simulator/Faults.h"
#include "simulator/Line.h"
#include "simulator/RequestHandler.h"

namespace sim {

std::expected<std::unique_ptr<SimulatedController>, std::string> SimulatedController::Create(
    const SimulatorOptions& options) {
  auto controller = Controller::Create(options);
  if (!controller) return std::unexpected(controller.error());
  return CreateAround(*std::move(controller), options);
}

std::expected<std::unique_ptr<SimulatedController>, std::string> SimulatedController::CreateAround(
    std::unique_ptr<Controller> controller, const SimulatorOptions& options) {
  auto faults = Faults::Create(options.faults, options.seed);
  if (!faults) return std::unexpected(faults.error());
  auto handler = std::make_shared<RequestHandler>(std::move(controller), *std::move(faults), options);
  return std::unique_ptr<SimulatedController>(new SimulatedController(std::move(handler)));
}

SimulatedController::SimulatedController(std::shared_ptr<RequestHandler> handler) : mHandler(std::move(handler)) {}

SimulatedController::~SimulatedController() = default;

std::unique_ptr<kv::InProcessLine> SimulatedController::NewLine() {
  return std::make_unique<Line>(mHandler);
}

std::expected<void, std::string> SimulatedController::UseFaults(const std::vector<std::string>& rules) {
  auto faults = Faults::Create(rules, mHandler->Seed());
  if (!faults) return std::unexpected(faults.error());
  mHandler->UseFaults(*std::move(faults));
  return {};
}

std::expected<void, std::string> SimulatedController::SaveState() {
  return mHandler->TheController().SaveState();
}

std::uint64_t SimulatedController::Seed() const {
  return mHandler->Seed();
}

}  // namespace sim
