#include "base/FileToReplace.h"

namespace kv {

namespace fs = std::filesystem;

std::expected<fs::path, std::error_code> BehindLinks(fs::path file) {
  constexpr int kMaxLinks = 40;  // as many as the platforms follow
  for (int i = 0; i < kMaxLinks; ++i) {
    std::error_code error;
    if (!fs::is_symlink(file, error)) return file;
    const fs::path target = fs::read_symlink(file, error);
    if (error) return std::unexpected(error);
    file = file.parent_path() / target;
  }
  return std::unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

std::string WhyNotReplaceable(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (!fs::exists(status)) return {};
  if (!fs::is_regular_file(status)) return "it cannot be saved to, because it is no plain file";
  if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) {
    return "it is write-protected; remove the protection or choose another name";
  }
  return {};
}

}  // namespace kv
