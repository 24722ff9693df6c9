#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <vector>

#include "base/InProcessLine.h"
#include "simulator/Controller.h"
#include "simulator/SimulatorOptions.h"

namespace sim {

class RequestHandler;

// A simulated controller with its lines, ready to be connected to: what programs, the driver's simulated port and tests
// use. Everything runs on the clock that the callers pass in and on one thread; clocks of the lines of one controller
// are one clock.
class SimulatedController {
 public:
  // Refused with a plain sentence when the options do not fit together (unknown model, bad version, damaged state file,
  // a fault rule that cannot be read: the sentence names the rule and what was expected).
  [[nodiscard]] static std::expected<std::unique_ptr<SimulatedController>, std::string> Create(
      const SimulatorOptions& options);
  // The same around a controller that was made elsewhere; of the options unit, baud, faults and seed are used.
  [[nodiscard]] static std::expected<std::unique_ptr<SimulatedController>, std::string> CreateAround(
      std::unique_ptr<Controller> controller, const SimulatorOptions& options);
  ~SimulatedController();
  SimulatedController(const SimulatedController&) = delete;
  SimulatedController& operator=(const SimulatedController&) = delete;

  // One line for each client. A line may outlive this object.
  [[nodiscard]] std::unique_ptr<kv::InProcessLine> NewLine();

  // Other fault rules from now on, with counts that begin anew; refused as in Create. A line on which endless garbage
  // has begun carries it until it is closed.
  [[nodiscard]] std::expected<void, std::string> UseFaults(const std::vector<std::string>& rules);

  // Writes the state file when there is one and something has changed; the reason when that failed.
  [[nodiscard]] std::expected<void, std::string> SaveState();

  // The seed of the faults and of the moving values: the same seed and the same requests give the same run again.
  [[nodiscard]] std::uint64_t Seed() const;

 private:
  explicit SimulatedController(std::shared_ptr<RequestHandler> handler);

  std::shared_ptr<RequestHandler> mHandler;  // shared with the lines
};

}  // namespace sim
