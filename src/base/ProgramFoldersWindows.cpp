#include <windows.h>

#include <string>

#include "base/FilePlatform.h"
#include "base/ProgramFolders.h"

namespace kv {

namespace fs = std::filesystem;

// Only the attempt tells: attributes say nothing of access lists. The file is gone when it is closed.
bool IsWritableFolder(const fs::path& folder) {
  const fs::path file = folder / ("write-" + std::to_string(ProcessNumber()) + ".tmp");
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  CloseHandle(handle);
  return true;
}

// The local part of the profile: what lies in the roaming one is copied at each log-on.
fs::path UserDataFolder() {
  const wchar_t* local = _wgetenv(L"LOCALAPPDATA");
  if (local == nullptr || *local == L'\0') return {};
  return fs::path(local) / "Telepanel";
}

}  // namespace kv
