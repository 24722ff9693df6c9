#pragma once

#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/InProcessLine.h"

namespace sim {
class SimulatedController;
}

namespace kv {

// The simulated controllers of one program, one for each model that a link asks for. They live as long as this object,
// so a link that is closed and opened again finds the controller as it was left.
class SimulatedControllers {
 public:
  // With a folder, which is made where it is missing, each controller keeps its memory in a file there ("Simulated
  // K220-22-R1.state"), so that it is found again at the next start; with an empty path nothing is kept.
  explicit SimulatedControllers(std::filesystem::path folder);
  ~SimulatedControllers();
  SimulatedControllers(const SimulatedControllers&) = delete;
  SimulatedControllers& operator=(const SimulatedControllers&) = delete;

  // A new line to the controller of that model. The reason in a plain sentence when there is no such model, or when its
  // file is damaged.
  [[nodiscard]] std::expected<std::unique_ptr<InProcessLine>, std::string> NewLine(const std::string& model);

  // Writes what has changed; the reason when that failed. The destructor does it too, without a word.
  [[nodiscard]] std::expected<void, std::string> Save();

 private:
  [[nodiscard]] std::string StateFile(std::string_view model) const;

  std::filesystem::path mFolder;
  std::map<std::string, std::unique_ptr<sim::SimulatedController>, std::less<>> mControllers;  // by full name
};

// The model text with which the simulated controller of that name reports itself; empty when there is none. A
// controller may also be asked for by that text.
[[nodiscard]] std::string ReportedModelOfSimulated(std::string_view name);

// The names of all simulated controllers, and the same joined by ", ".
[[nodiscard]] std::vector<std::string> SimulatedModels();
[[nodiscard]] std::string SimulatedModelNames();

}  // namespace kv
