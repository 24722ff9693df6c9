#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace kv {

// An open file of a journal. It is closed, and its lock given back, when the object goes.
class JournalFile {
 public:
  virtual ~JournalFile() = default;

  [[nodiscard]] virtual std::expected<std::uint64_t, std::error_code> Size() = 0;
  // At most `most` bytes from `at` on; fewer at the end of the file.
  [[nodiscard]] virtual std::expected<std::string, std::error_code> Read(std::uint64_t at, std::size_t most) = 0;
  [[nodiscard]] virtual std::error_code Write(std::uint64_t at, std::string_view bytes) = 0;
  // All that was written is safe on the disk.
  [[nodiscard]] virtual std::error_code Flush() = 0;
  [[nodiscard]] virtual std::error_code Truncate(std::uint64_t size) = 0;
  // False: another process has the lock now.
  [[nodiscard]] virtual std::expected<bool, std::error_code> TryLock() = 0;
};

// The file calls of a journal, so that a test can let each of them fail.
class JournalDisk {
 public:
  enum class Access : std::uint8_t {
    Read,
    Write,    // and read; the file is there
    Create,   // the same of a new file: fails with errc::file_exists when there is one
    Replace,  // the same, whether it is there or not
  };

  virtual ~JournalDisk() = default;
  // Plain files only: a link or a pipe of that name is refused.
  [[nodiscard]] virtual std::expected<std::unique_ptr<JournalFile>, std::error_code> Open(
      const std::filesystem::path& file, Access access) = 0;
  // Makes a new name in the folder safe. Folders that cannot be flushed (some network drives) count as flushed.
  virtual void FlushFolder(const std::filesystem::path& folder) = 0;
};

// That of this system.
[[nodiscard]] JournalDisk& SystemJournalDisk();

// The folder in which this user's programs keep what must survive, but is no setting, UTF-8 aside: "journals" below
// it. Empty when the system does not tell.
[[nodiscard]] std::filesystem::path UserStateFolder();

}  // namespace kv
