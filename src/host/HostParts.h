#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/ProgramPaths.h"
#include "desktop/Prompts.h"
#include "desktop/Shell.h"
#include "desktop/WallClock.h"
#include "help/HelpViewer.h"
#include "host/PanelDesigner.h"
#include "host/ToolWindow.h"
#include "link/CommDriver.h"
#include "link/ListeningSocket.h"

namespace kv {

// The form that holds only controls and no code: it is loaded at start-up, never shown, and owns the Ethernet socket.
struct frmTAPI {
  std::unique_ptr<ListeningSocket> Winsock;
};

// The pieces from which the program is put together. Each function is called at its step of the start-up, not before.
struct HostParts {
  ProgramPaths paths;
  std::function<std::shared_ptr<RemoteHost>()> createHost{};
  std::function<std::unique_ptr<frmTAPI>()> loadTapi{};
  std::function<std::unique_ptr<CommDriver>()> createDriver{};
  std::function<ToolWindows(SharedState&)> createWindows{};
  std::function<std::unique_ptr<PanelDesigner>()> createPanelDesigner{};  // empty: this build has none
  Prompts* prompts = nullptr;
  Shell* shell = nullptr;
  HelpViewer* help = nullptr;        // empty: this build has none of its own
  const WallClock* clock = nullptr;  // empty: when a session was last used is not kept
};

}  // namespace kv
