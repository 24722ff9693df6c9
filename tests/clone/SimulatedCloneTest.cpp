#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/Driver.h"
#include "clone/CloneVerify.h"
#include "simulator/SimulatedController.h"
#include "tests/clone/CloneBench.h"

namespace kv::test {
namespace {

using testing::HasSubstr;

// A simulated controller behind the driver, on virtual time.
struct Simulated {
  explicit Simulated(VirtualPacer& pacer, std::uint64_t seed, std::string password = {},
                     std::vector<std::string> faults = {}, std::string model = "K220-22-R1")
      : driver(pacer, [this](const std::string&) { return controller->NewLine(); }, nullptr) {
    sim::SimulatorOptions options;
    options.model = std::move(model);
    options.password = std::move(password);
    options.faults = std::move(faults);
    options.seed = seed;
    controller = sim::SimulatedController::Create(options).value();
  }
  std::unique_ptr<sim::SimulatedController> controller;
  Driver driver;
};
