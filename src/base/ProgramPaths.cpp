#include "base/ProgramPaths.h"

#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"

namespace kv {

namespace {

// "/" would replace the folder by a name that begins with a separator.
std::filesystem::path Below(const std::filesystem::path& folder, std::string_view name) {
  return folder / PathFromUtf8(name).relative_path();
}

}  // namespace

std::filesystem::path ProgramPaths::Session(std::string_view name) const {
  return Below(Sessions(), name);
}

std::filesystem::path ProgramPaths::SessionFile(std::string_view name, std::string_view file) const {
  return Below(Session(name), file);
}

std::filesystem::path ProgramPaths::OwnOrShipped(const char* name) const {
  std::error_code ignored;
  const std::filesystem::path own = mHome / name;
  return std::filesystem::is_directory(own, ignored) ? own : mShipped / name;
}

std::filesystem::path ExecutableFolder() {
  std::error_code error;
  const std::filesystem::path file = ExecutableFile();
  return file.empty() ? std::filesystem::current_path(error) : file.parent_path();
}

}  // namespace kv
