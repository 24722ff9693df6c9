#pragma once

#include <string>
#include <vector>

#include "KvTele2/panel/PanelSession.h"

namespace kv {

// What is told in words beside the controller's screen. Texts are UTF-8; empty where there is nothing to say.

// "View", "Operate".
[[nodiscard]] std::string PanelModeText(panel::PanelMode mode);
// "Page 2, Recipes".
[[nodiscard]] std::string PanelPageText(const panel::PanelState& state);
// Who operates, where it is not this user, and whether the display shows something else at the moment.
[[nodiscard]] std::string PanelOperatorText(const panel::PanelState& state);
// Why what is shown is not what the controller shows now, and how old it is.
[[nodiscard]] std::string PanelOldText(const panel::PanelState& state);
// Which fonts and images are missing, by their names.
[[nodiscard]] std::string MissingText(const std::vector<panel::Drawing::Missing>& missing,
                                      const panel::ScreenResources& resources);

}  // namespace kv
