#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/ScopeGuard.h"
#include "secret/SecretFile.h"

namespace kv {

namespace {

auto CannotRead() {
  return std::unexpected(SecretFileFault{std::string("cannot be read: ") + std::strerror(errno), {}});
}

}  // namespace

// The file that is open is looked at, not its name: the name may lead elsewhere a moment later.
std::expected<std::string, SecretFileFault> ReadOwnersFile(const std::filesystem::path& path, std::size_t most) {
  constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe without a writer would hold us
  if (file < 0) return CannotRead();
  const ScopeGuard close([file] { ::close(file); });
  struct stat facts{};
  if (::fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode)) {
    return std::unexpected(SecretFileFault{"is no plain file", {}});
  }
  if ((facts.st_mode & kOthers) != 0) {
    return std::unexpected(
        SecretFileFault{"may be read or changed by others than its owner, so its password is not used",
                        "chmod 600 the file, and give the controller another password if others may know this one"});
  }
  std::string content(most + 1, '\0');
  const ssize_t count = ::read(file, content.data(), content.size());
  if (count < 0) return CannotRead();
  content.resize(static_cast<std::size_t>(count));
  return content;
}

}  // namespace kv
