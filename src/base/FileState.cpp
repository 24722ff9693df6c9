#include "base/FileState.h"

#include <system_error>

namespace kv {

namespace fs = std::filesystem;

std::optional<FileState> FileStateOf(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(fs::symlink_status(file, error))) return std::nullopt;
  return FileState{fs::last_write_time(file, error), fs::file_size(file, error)};
}

}  // namespace kv
