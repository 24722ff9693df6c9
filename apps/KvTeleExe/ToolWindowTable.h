#pragma once

#include <QDialog>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "desktop/Clipboard.h"
#include "desktop/Prompts.h"
#include "desktop/Shell.h"
#include "desktop/WallClock.h"
#include "desktop/ui/QtPacer.h"
#include "editors/clsHexSelector.h"
#include "host/ToolWindow.h"

namespace kv {

// What tool windows are made of; all outlive them.
struct WindowServices {
  SharedState& shared;
  Prompts& prompts;
  QtPacer& pacer;
  const WallClock& clock;
  Clipboard& clipboard;
  Shell& shell;
  clsHexSelector& hexSelector;
  std::filesystem::path windowsFile;  // where windows remember their places
  std::filesystem::path stateFolder;  // of the user, for the heads of journals; empty: none are kept
};

// One tool window: the id of its tool in the menus, and how it is made.
struct ToolWindowRow {
  using Make = std::unique_ptr<QDialog> (*)(const WindowServices& of, const std::string& argument, QWidget* parent);

  std::string_view id;
  Make make;
};

[[nodiscard]] std::span<const ToolWindowRow> ToolWindowTable();

// The windows of the table, for the dispatch.
[[nodiscard]] ToolWindows MakeToolWindows(const WindowServices& services);

}  // namespace kv
