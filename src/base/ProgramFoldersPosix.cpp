#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "base/ProgramFolders.h"

namespace kv {

namespace fs = std::filesystem;

bool IsWritableFolder(const fs::path& folder) {
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

fs::path UserDataFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') return fs::path(data) / "telepanel";
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return {};
  return fs::path(home) / ".local" / "share" / "telepanel";
}

}  // namespace kv
