#include "apps/support/SimulatedControllers.h"

#include <system_error>

#include "base/PathText.h"
#include "simulator/ModelTable.h"
#include "simulator/SimulatedController.h"

namespace kv {

namespace {

// Model texts contain "/" and blanks; a file name must not contain the former.
std::string FileNameOf(std::string_view model) {
  std::string name = "Simulated " + std::string(model) + ".state";
  for (char& c : name) {
    if (c == '/') c = '-';
  }
  return name;
}

const sim::Model* FindByNameOrReport(std::string_view text) {
  if (const sim::Model* model = sim::FindModel(text)) return model;
  for (const sim::Model& each : sim::AllModels()) {
    if (each.reported == text) return &each;
  }
  return nullptr;
}

}  // namespace

SimulatedControllers::SimulatedControllers(std::filesystem::path folder) : mFolder(std::move(folder)) {}

SimulatedControllers::~SimulatedControllers() {
  (void)Save();
}

std::expected<std::unique_ptr<InProcessLine>, std::string> SimulatedControllers::NewLine(const std::string& model) {
  const sim::Model* known = FindByNameOrReport(model);
  if (!known) return std::unexpected("there is no simulated controller \"" + model + "\"");
  const std::string name(known->name);
  auto found = mControllers.find(name);
  if (found == mControllers.end()) {
    sim::SimulatorOptions options;
    options.model = name;
    options.stateFile = StateFile(name);
    auto created = sim::SimulatedController::Create(options);
    if (!created) return std::unexpected(created.error());
    found = mControllers.emplace(name, std::move(*created)).first;
  }
  return found->second->NewLine();
}

std::expected<void, std::string> SimulatedControllers::Save() {
  std::expected<void, std::string> result;
  for (const auto& [name, controller] : mControllers) {
    if (const auto saved = controller->SaveState(); !saved) result = saved;
  }
  return result;
}

std::string SimulatedControllers::StateFile(std::string_view model) const {
  if (mFolder.empty()) return {};
  std::error_code ignored;  // where it cannot be made, saving fails, and says so
  std::filesystem::create_directories(mFolder, ignored);
  return Utf8FromPath(mFolder / PathFromUtf8(FileNameOf(model)));
}

std::string ReportedModelOfSimulated(std::string_view name) {
  const sim::Model* model = FindByNameOrReport(name);
  return model ? std::string(model->reported) : std::string();
}

std::vector<std::string> SimulatedModels() {
  std::vector<std::string> names;
  for (const sim::Model& each : sim::AllModels()) names.emplace_back(each.name);
  return names;
}

std::string SimulatedModelNames() {
  std::string names;
  for (const std::string& name : SimulatedModels()) names += (names.empty() ? "" : ", ") + name;
  return names;
}

}  // namespace kv
