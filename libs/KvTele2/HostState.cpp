#include "KvTele2/HostState.h"

#include <algorithm>

#include "base/PathText.h"
#include "models/ModelCatalogue.h"

namespace kv {

std::string ConnectionText(Connection connection) {
  switch (connection) {
    case Connection::Offline:
      return "Off line";
    case Connection::Connecting:
      return "Connecting";
    case Connection::Online:
      return "On line";
    case Connection::Lost:
      return "Connection lost";
  }
  return {};
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
