#pragma once

#include <filesystem>
#include <string>

#include "desktop/Prompts.h"
#include "desktop/Shell.h"

namespace kv {

// Opens a page of the help, as F1 in a tool's window does. Where it cannot be opened, the user is told why in a box
// with this title.
void OpenHelpPage(Shell& shell, Prompts& prompts, const std::filesystem::path& page, const std::string& title);

}  // namespace kv
