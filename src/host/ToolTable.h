#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/clsCallerExe.h"

namespace kv {

// What a tool cannot work without.
enum class ToolNeed { Nothing, Window, PanelDesigner, ColourCaches };

// One row of the dispatch table: a tool id, what it does, and what it needs to be there.
struct ToolRow {
  using Action = void (clsCallerExe::*)(const std::string& argument);

  std::string_view id;
  Action action;
  ToolNeed need = ToolNeed::Nothing;
  const char* program = nullptr;  // a sibling program that it starts
};

// The tools that do more than to show their window, in the order in which ids are compared. Any other tool needs no
// row: it is shown when the program has a window for its id.
[[nodiscard]] std::span<const ToolRow> ToolTable();

// The row of this id; null when there is none.
[[nodiscard]] const ToolRow* FindTool(std::string_view id);

}  // namespace kv
