#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "journal/JournalDisk.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

class PosixJournalFile final : public JournalFile {
 public:
  explicit PosixJournalFile(int descriptor) : mDescriptor(descriptor) {}
  ~PosixJournalFile() override { close(mDescriptor); }
  PosixJournalFile(const PosixJournalFile&) = delete;
  PosixJournalFile& operator=(const PosixJournalFile&) = delete;

  [[nodiscard]] std::expected<std::uint64_t, std::error_code> Size() override {
    struct stat facts{};
    if (fstat(mDescriptor, &facts) != 0) return std::unexpected(LastError());
    return static_cast<std::uint64_t>(facts.st_size);
  }

  [[nodiscard]] std::expected<std::string, std::error_code> Read(std::uint64_t at, std::size_t most) override {
    std::string bytes(most, '\0');
    std::size_t done = 0;
    while (done < most) {
      const ssize_t got = pread(mDescriptor, bytes.data() + done, most - done, static_cast<off_t>(at + done));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) return std::unexpected(LastError());
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
  }

  [[nodiscard]] std::error_code Write(std::uint64_t at, std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t written = pwrite(mDescriptor, bytes.data(), bytes.size(), static_cast<off_t>(at));
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return LastError();
      if (written == 0) return std::make_error_code(std::errc::no_space_on_device);
      bytes.remove_prefix(static_cast<std::size_t>(written));
      at += static_cast<std::uint64_t>(written);
    }
    return {};
  }

  [[nodiscard]] std::error_code Flush() override {
    return fdatasync(mDescriptor) == 0 ? std::error_code{} : LastError();
  }

  [[nodiscard]] std::error_code Truncate(std::uint64_t size) override {
    return ftruncate(mDescriptor, static_cast<off_t>(size)) == 0 ? std::error_code{} : LastError();
  }

  [[nodiscard]] std::expected<bool, std::error_code> TryLock() override {
    if (flock(mDescriptor, LOCK_EX | LOCK_NB) == 0) return true;
    if (errno == EWOULDBLOCK || errno == EINTR) return false;
    return std::unexpected(LastError());
  }

 private:
  int mDescriptor;
};

int OpenPlain(const fs::path& file, int flags) {
  return open(file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
}

struct Opened {
  int descriptor;
  bool isMade;  // it was not there before
};

Opened OpenFor(const fs::path& file, JournalDisk::Access access) {
  using Access = JournalDisk::Access;
  if (access == Access::Create) return {OpenPlain(file, O_RDWR | O_CREAT | O_EXCL), true};
  const int there = OpenPlain(file, access == Access::Read ? O_RDONLY : O_RDWR);
  if (there >= 0 || access != Access::Replace || errno != ENOENT) return {there, false};
  return {OpenPlain(file, O_RDWR | O_CREAT), true};
}

// Whoever may write in a session's folder may write its journal, whatever the umask of who began it: rights to read and
// write go from the folder to a file of one's own, when it is made.
void TakeRightsOf(const fs::path& folder, int descriptor, const struct stat& facts) {
  constexpr mode_t kOfOthers = S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  struct stat of{};
  const bool isShared = stat(folder.c_str(), &of) == 0 && (of.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  if (!isShared || (of.st_mode & S_ISVTX) != 0 || facts.st_uid != geteuid()) return;
  const mode_t wanted = (facts.st_mode & 07777) | (of.st_mode & kOfOthers);
  if (wanted != (facts.st_mode & 07777)) (void)fchmod(descriptor, wanted);
}

class PosixJournalDisk final : public JournalDisk {
 public:
  [[nodiscard]] std::expected<std::unique_ptr<JournalFile>, std::error_code> Open(const fs::path& file,
                                                                                  Access access) override {
    const auto [descriptor, isMade] = OpenFor(file, access);
    if (descriptor < 0) return std::unexpected(LastError());
    auto opened = std::make_unique<PosixJournalFile>(descriptor);
    struct stat facts{};
    if (fstat(descriptor, &facts) != 0) return std::unexpected(LastError());
    if (!S_ISREG(facts.st_mode)) return std::unexpected(std::make_error_code(std::errc::operation_not_supported));
    if (isMade) TakeRightsOf(file.parent_path(), descriptor, facts);
    return opened;
  }

  void FlushFolder(const fs::path& folder) override {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
  }
};

}  // namespace

JournalDisk& SystemJournalDisk() {
  static PosixJournalDisk disk;
  return disk;
}

fs::path UserStateFolder() {
  const char* state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return fs::path(state) / "telepanel" / "journals";
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return {};
  return fs::path(home) / ".local" / "state" / "telepanel" / "journals";
}

}  // namespace kv
