#include "KvTele2/HostState.h"

#include <algorithm>

#include "base/PathText.h"
#include "base/Texts.h"
#include "link/StateText.h"
#include "models/ModelCatalogue.h"
#include "models/ModelFit.h"

namespace kv {
namespace {

// "K670" of "K670-67-C30 / K390-29-C30": enough to know a machine by.
std::string ShortModel(const std::string& model) {
  return model.empty() ? "no model" : model.substr(0, model.find_first_of("- /"));
}

std::string StateWord(const HostState& state) {
  const std::string told = ToldState(state);
  const bool isKnown = state.connection == ConnectionState::Online && !state.isSilent && !told.empty();
  return isKnown ? told : ConnectionText(state);
}

}  // namespace

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

std::string ToldState(const HostState& state) {
  const std::string told = state.controller ? Capitalised(state.controller->state) : std::string();
  return told.empty() || state.stateAge.empty() ? told : told + " " + state.stateAge + " ago";
}

std::string HeadingText(const HostState& state) {
  const std::string name = state.caption.empty() ? state.session : state.caption;
  const bool isHeld = state.connection == ConnectionState::Online || state.connection == ConnectionState::Lost;
  const std::string& model = isHeld && state.controller ? state.controller->model : state.model;
  return name + " - " + ShortModel(model) + " - " + StateWord(state);
}

std::string WindowTitle(const HostState& state) {
  return HeadingText(state) + " - Telepanel";
}

std::string RetryText(const HostState& state) {
  if (state.isSilent) return "Looking for the controller";
  if (state.connection != ConnectionState::Lost || !state.secondsToTry) return {};
  if (*state.secondsToTry <= 0) return "Looking for the controller";
  return "Next try in " + std::to_string(*state.secondsToTry) + " s";
}

std::string OtherModel(const HostState& state) {
  return state.controller ? OtherModelOf(state.controller->model, state.model) : std::string();
}

std::string MisfitText(const HostState& state) {
  const std::string found = OtherModel(state);
  if (found.empty()) return {};
  const std::string selected = ModelOfIdentification(state.model);
  return "The controller is of the model " + found + ", but the selected model is " +
         (selected.empty() ? "none" : selected) +
         ".\nLikely cause: another controller is connected, or another model was selected.\nWhat to do: take its model "
         "over, if this is the right controller; otherwise go off line, and connect the right one.";
}

std::string Capitalised(std::string text) {
  if (!text.empty()) text.front() = UpperCased(text.substr(0, 1)).front();
  return text;
}

std::string PagesText(const HostState& state) {
  if (!state.pages) return "None";
  const auto& [path, content] = *state.pages;
  return Utf8FromPath(PathFromUtf8(path).filename()) + ": project " + content.project + ", model " + content.model;
}

std::string TilesNote(const HostState& state) {
  if (state.controller && state.controller->state == StateText('B')) {
    return "The controller's boot loader runs: until it has an O/S, it has neither a screen nor values.\nWhat to do: "
           "switch it off and on; if it stays so, it needs an O/S, and the Downloader tells which there are for it.";
  }
  if (!OtherModel(state).empty()) return "The values are not read, because the controller is of another model.";
  if (state.tiles.empty()) return "The session has no regions. Those that the operand view selects are shown here.";
  return "The values of the session's regions";
}

MiddlePage MiddlePageOf(const HostState& state) {
  const bool isHeld = state.connection == ConnectionState::Online || state.connection == ConnectionState::Lost;
  if (!isHeld) return MiddlePage::Start;
  return state.hasPanel ? MiddlePage::Panel : MiddlePage::Values;
}

bool IsOfferedModel(std::string_view model) {
  return std::ranges::find(SelectableModels(), model) != SelectableModels().end();
}

bool IsAurexModel(std::string_view model) {
  return model.starts_with("K") || model.starts_with("TQ");
}

}  // namespace kv
