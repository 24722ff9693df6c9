#pragma once

#include <filesystem>
#include <memory>

#include "KvTele2/TelepanelHost.h"
#include "desktop/ui/QtPacer.h"

namespace kv {

// What the host library is made with; all outlive it.
struct HostLibraryParts {
  QtPacer& pacer;
  WallClock& clock;
  Prompts& prompts;
  std::string installFolder;          // of sibling programs, UTF-8
  std::filesystem::path windowsFile;  // keeps the places of windows
};

// The host with its main window; the window is shown by Run().
[[nodiscard]] std::shared_ptr<RemoteHost> MakeTelepanelHost(const HostLibraryParts& parts);

}  // namespace kv
