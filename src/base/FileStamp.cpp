#include "base/FileStamp.h"

#include <system_error>

namespace kv {

namespace fs = std::filesystem;

std::optional<FileStamp> FileStampOf(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(fs::symlink_status(file, error))) return std::nullopt;
  return FileStamp{fs::last_write_time(file, error), fs::file_size(file, error)};
}

}  // namespace kv
