#include "KvTele2/PanelText.h"

#include "base/Texts.h"
#include "desktop/RemainingTime.h"

namespace kv {

using panel::PanelMode;
using panel::PanelSight;

std::string PanelModeText(PanelMode mode) {
  switch (mode) {
    case PanelMode::View:
      break;
    case PanelMode::Asking:
      return "Asking to operate";
    case PanelMode::Operate:
      return "Operate";
  }
  return "View";
}

std::string PanelPageText(const panel::PanelState& state) {
  if (state.sight == PanelSight::Starting && state.page == 0) return "The screen is being asked for";
  return "Page " + std::to_string(state.page) + (state.pageName.empty() ? "" : ", " + state.pageName);
}

std::string PanelOperatorText(const panel::PanelState& state) {
  std::string text;
  if (state.isSystemMode) text = "The display is in SYSTEM mode and cannot be operated.";
  const auto add = [&text](const std::string& sentence) { text += (text.empty() ? "" : " ") + sentence; };
  if (state.isOperatedAtPanel) add("Somebody operates at the panel itself.");
  if (!state.isOperatedByOther) return text;
  add((state.operatorName.empty() ? "Somebody else" : state.operatorName) + " operates the panel from afar.");
  return text;
}

std::string PanelOldText(const panel::PanelState& state) {
  const std::string age = "The screen is " + AgeText(state.age) + " old.";
  if (state.sight == PanelSight::Paused) return "Paused: a tool works with the controller. " + age;
  if (state.sight != PanelSight::Old) return {};
  // Cause and cure stand with the state of the link.
  const std::string reason = state.reason.substr(0, state.reason.find_first_of("\r\n"));
  return age + " Nothing can be pressed." + (reason.empty() ? "" : " " + reason);
}

std::string MissingText(const std::vector<panel::Drawing::Missing>& missing, const panel::ScreenResources& resources) {
  if (missing.empty()) return {};
  constexpr std::size_t kMostNames = 4;
  std::string names;
  for (std::size_t i = 0; i < missing.size() && i < kMostNames; ++i) {
    names += (i == 0 ? "" : ", ") + resources.NameOf(missing[i].kind, missing[i].id);
  }
  return Counted(missing.size(), "font or image is", "fonts and images are") +
         " missing, and drawn in a frame: " + names + (missing.size() > kMostNames ? ", ..." : ".");
}

}  // namespace kv
