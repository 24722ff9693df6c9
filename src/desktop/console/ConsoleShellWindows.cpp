#include <windows.h>

#include <shellapi.h>

#include <cstdint>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "desktop/console/ConsoleShell.h"

namespace kv {

std::expected<void, std::string> ConsoleShell::Open(std::string_view verb, std::string_view file,
                                                    std::string_view parameters) {
  const auto wide = [](std::string_view text) { return PathFromUtf8(text).wstring(); };
  const std::wstring action = wide(verb);
  const std::wstring arguments = wide(parameters);
  const auto result = reinterpret_cast<std::intptr_t>(
      ShellExecuteW(nullptr, action.empty() ? nullptr : action.c_str(), wide(file).c_str(),
                    arguments.empty() ? nullptr : arguments.c_str(), nullptr, SW_SHOWNORMAL));
  constexpr std::intptr_t kLargestError = 32;
  if (result > kLargestError) return {};
  const std::string why = SystemMessage({static_cast<int>(GetLastError()), std::system_category()});
  return std::unexpected(std::string(file) + " cannot be opened: " + why);
}

}  // namespace kv
