#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/FilePlatform.h"
#include "base/ScopeGuard.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

// The model's permissions come before the content, so that nobody reads in the temporary file what is closed to them.
std::error_code TakePermissions(int descriptor, const fs::path& model) {
  struct stat wanted{};
  if (stat(model.c_str(), &wanted) != 0) return errno == ENOENT ? std::error_code{} : LastError();
  // The owner is kept where the platform lets us; a file of another user then becomes ours.
  [[maybe_unused]] const int ignored = fchown(descriptor, wanted.st_uid, wanted.st_gid);
  return fchmod(descriptor, wanted.st_mode & 07777U) == 0 ? std::error_code{} : LastError();
}

std::error_code WriteAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return LastError();
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return fsync(descriptor) == 0 ? std::error_code{} : LastError();
}

void FlushFolder(const fs::path& folder) {
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

std::error_code WriteNewFile(const fs::path& temporary, const fs::path& model, std::string_view content) {
  const int descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) return LastError();
  ScopeGuard remove([&temporary] { unlink(temporary.c_str()); });
  std::error_code error = TakePermissions(descriptor, model);
  if (!error) error = WriteAll(descriptor, content);
  if (close(descriptor) != 0 && !error) error = LastError();
  if (!error) remove.Dismiss();
  return error;
}

std::error_code ReplaceFileWith(const fs::path& to, const fs::path& from) {
  if (rename(from.c_str(), to.c_str()) != 0) return LastError();
  FlushFolder(to.parent_path());
  return {};
}

// A second name and the removal of the first: unlike a rename this fails when the name is taken. File systems without
// second names are asked before, and whoever takes the name in that very moment loses.
std::error_code MoveToFreeName(const fs::path& to, const fs::path& from) {
  if (link(from.c_str(), to.c_str()) == 0) {
    unlink(from.c_str());
    FlushFolder(to.parent_path());
    return {};
  }
  if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) return LastError();
  struct stat there{};
  if (lstat(to.c_str(), &there) == 0) return std::make_error_code(std::errc::file_exists);
  return ReplaceFileWith(to, from);
}

std::error_code CopyOver(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
  return error;
}

std::string SystemMessage(const std::error_code& code) {
  return code.message();
}

std::error_code ErrorOfOpening(const fs::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return LastError();
  close(descriptor);
  return {};
}

std::error_code ErrorOfReplacing(const fs::path&) {
  return {};
}

bool IsHeldByAnother(const std::error_code&) {
  return false;
}

bool MayBeHeldByAnother(const std::error_code&) {
  return false;
}

std::string NarrowName(const fs::path& file) {
  return file.native();
}

unsigned long ProcessNumber() {
  return static_cast<unsigned long>(getpid());
}

fs::path ExecutableFile() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

}  // namespace kv
