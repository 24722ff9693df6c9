#include "KvTele2/Sign.h"

#include <algorithm>
#include <array>

#include "link/StateText.h"

namespace kv {
namespace {

struct StateRow {
  char state;
  SignShape shape;
  SignColour colour;
};

constexpr std::array kStates{
    StateRow{'R', SignShape::Triangle, SignColour::Green},
    StateRow{'S', SignShape::Square, SignColour::Amber},
    StateRow{'L', SignShape::Arrow, SignColour::Blue},
    StateRow{'B', SignShape::Diamond, SignColour::Blue},
};

bool IsHeld(const HostState& state) {
  return state.connection == ConnectionState::Online || state.connection == ConnectionState::Lost;
}

}  // namespace

Sign MachineSign(const HostState& state) {
  if (!state.controller) return {};
  const std::string& told = state.controller->state;
  if (told.empty()) return IsHeld(state) ? Sign{.word = "Not known"} : Sign{};
  if (state.connection == ConnectionState::Lost) return {.word = "Was " + told};
  if (!state.stateAge.empty()) return {.word = ToldState(state)};
  const auto row = std::ranges::find_if(kStates, [&](const StateRow& each) { return StateText(each.state) == told; });
  if (row == kStates.end()) return {.word = Capitalised(told)};
  return {row->shape, row->colour, Capitalised(told)};
}

Sign LinkSign(const HostState& state) {
  switch (state.connection) {
    case ConnectionState::Offline:
      return {.word = "Closed"};
    case ConnectionState::Connecting:
      return {SignShape::Half, SignColour::Amber, "Connecting"};
    case ConnectionState::Online:
      if (state.isSilent) return {SignShape::Half, SignColour::Amber, "No answer"};
      return {SignShape::Disc, SignColour::Green, state.isWithTool ? "Used by a tool" : "Answers"};
    case ConnectionState::Lost:
      return {SignShape::Cross, SignColour::Red, "Lost"};
  }
  return {};
}

}  // namespace kv
