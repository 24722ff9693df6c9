#pragma once

#include "simulator/BlockCommands.h"

namespace sim {

// The panel's operations in block messages; the same in ASCII frames are in TextCommands.h.
BlockAnswer DescribePanel(Machine& machine, const BlockRequest& request);
BlockAnswer TellPanelChanges(Machine& machine, const BlockRequest& request);
BlockAnswer TakePanelEvent(Machine& machine, const BlockRequest& request);

}  // namespace sim
