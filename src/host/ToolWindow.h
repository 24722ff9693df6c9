#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/shared/SharedState.h"

namespace kv {

// A tool window as the dispatch sees it: made, shown modally, and destroyed when it has closed.
class ToolWindow {
 public:
  virtual ~ToolWindow() = default;
  virtual void ShowModal() = 0;
};

// Makes a tool's window. `argument` is the text that came with the tool id.
using ToolWindowFactory = std::function<std::unique_ptr<ToolWindow>(const std::string& argument)>;

// The windows of this build, filled in by the program. A window that is not there leaves its place empty: its tools are
// greyed.
struct ToolWindows {
  ToolWindowFactory frmSession;
  ToolWindowFactory frmDataTypesView;
  ToolWindowFactory frmDownloader;
  ToolWindowFactory frmDumpPLC;
  ToolWindowFactory frmLogIn;
  ToolWindowFactory frmRestoreCache;
  ToolWindowFactory frmAbout;
};

}  // namespace kv
