#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/clsCallerExe.h"

namespace kv {

// What a tool cannot work without, beside its window.
enum class ToolNeed { Nothing, PanelDesigner, ColourCaches };

// One row of the dispatch table: a tool id, what it does, and what it needs to be there.
struct ToolRow {
  using Action = void (clsCallerExe::*)(const std::string& argument);
  using Window = ToolWindowFactory ToolWindows::*;

  std::string_view id;
  Action action;
  Window window = nullptr;  // null: the tool needs no window of ours
  ToolNeed need = ToolNeed::Nothing;
  const char* program = nullptr;  // a sibling program that it starts
};

// The dispatch table, in the order in which ids are compared.
[[nodiscard]] std::span<const ToolRow> ToolTable();

}  // namespace kv
