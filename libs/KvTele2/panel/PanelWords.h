#pragma once

#include <string>
#include <string_view>

#include "link/PanelLink.h"

namespace kv::panel {

// Why a press was not made, where the program has not even asked the controller for it.
enum class PressRefusal {
  None,
  OnlyViewing,   // nobody has switched to Operate
  OldScreen,     // what is shown is older than a second
  NothingThere,  // nothing can be pressed at that place
  Disabled,      // it is there, and disabled
  JustChanged,   // something else lay there a moment ago, and may have been meant
  Changed,       // it was there when it was pressed, and is not any more
  TooSlow,       // the link has not come to it within a second
  TooMany,       // more presses are waiting than are kept
  LookedAway,    // the window lost its focus or was hidden before it was sent
};

// In words for the user, a sentence each; empty for None and Done.
[[nodiscard]] std::string_view RefusalText(PressRefusal refusal);
[[nodiscard]] std::string_view VerdictText(PanelVerdict verdict, PanelAction action);

}  // namespace kv::panel
