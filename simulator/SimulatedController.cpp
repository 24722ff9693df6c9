#include "simulator/SimulatedController.h"

#include <utility>

#include "simulator/ControllerDesk.h"
#include "simulator/Faults.h"
#include "simulator/Line.h"

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
  auto desk = std::make_shared<ControllerDesk>(std::move(controller), *std::move(faults), options);
  return std::unique_ptr<SimulatedController>(new SimulatedController(std::move(desk)));
}

SimulatedController::SimulatedController(std::shared_ptr<ControllerDesk> desk) : mDesk(std::move(desk)) {}

SimulatedController::~SimulatedController() = default;

std::unique_ptr<kv::InProcessLine> SimulatedController::NewLine() {
  return std::make_unique<Line>(mDesk);
}

std::expected<void, std::string> SimulatedController::UseFaults(const std::vector<std::string>& rules) {
  auto faults = Faults::Create(rules, mDesk->Seed());
  if (!faults) return std::unexpected(faults.error());
  mDesk->UseFaults(*std::move(faults));
  return {};
}

std::expected<void, std::string> SimulatedController::SaveState() {
  return mDesk->TheController().SaveState();
}

std::uint64_t SimulatedController::Seed() const {
  return mDesk->Seed();
}

}  // namespace sim
