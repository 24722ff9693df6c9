#include "KvTele2/HostState.h"

#include <algorithm>

#include "base/PathText.h"
#include "models/ModelCatalogue.h"
#include "models/ModelFit.h"

namespace kv {

std::string ConnectionText(const HostState& state) {
  switch (state.connection) {
    case ConnectionState::Offline:
      return "Off line";
    case ConnectionState::Connecting:
      return "Connecting";
    case ConnectionState::Online:
      return state.isSilent ? "No answer" : "On line";
    case ConnectionState::Lost:
      return "Connection lost";
  }
  return {};
}

std::string ConnectionHeading(const HostState& state) {
  const bool isSearching = (state.connection == ConnectionState::Lost && !state.isWithTool) || state.isSilent;
  return ConnectionText(state) + (isSearching ? ", looking for the controller: " : ": ") + state.link;
}

std::string MisfitText(const HostState& state) {
  if (!state.controller) return {};
  const std::string found = OtherModelOf(state.controller->model, state.model);
  if (found.empty()) return {};
  const std::string selected = ModelOfIdentification(state.model);
  return "The controller is of the model " + found + ", but the selected model is " +
         (selected.empty() ? "none" : selected) +
         ".\nLikely cause: another controller is connected, or another model was selected.\nWhat to do: go off line, "
         "select " +
         found + " in the list of models, and go on line again.";
}

std::string WindowTitle(const HostState& state) {
  const std::string first = state.caption.empty() ? state.session : state.caption;
  return first + " - " + (state.model.empty() ? "no model" : state.model) + " - Telepanel";
}

std::string PagesText(const HostState& state) {
  if (!state.pages) return "None";
  const auto& [path, content] = *state.pages;
  return Utf8FromPath(PathFromUtf8(path).filename()) + ": project " + content.project + ", model " + content.model;
}

bool IsOfferedModel(std::string_view model) {
  return std::ranges::find(SelectableModels(), model) != SelectableModels().end();
}

bool IsAurexModel(std::string_view model) {
  return model.starts_with("K") || model.starts_with("TQ");
}

}  // namespace kv
