#pragma once

#include <functional>
#include <map>
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

// The windows of this build by the ids of their tools, filled in by the program. A tool whose window is not there is
// greyed.
using ToolWindows = std::map<std::string, ToolWindowFactory, std::less<>>;

}  // namespace kv
