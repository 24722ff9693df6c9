#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "journal/JournalDisk.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
  return place;
}

class WindowsJournalFile final : public JournalFile {
 public:
  explicit WindowsJournalFile(HANDLE handle) : mHandle(handle) {}
  ~WindowsJournalFile() override { CloseHandle(mHandle); }
  WindowsJournalFile(const WindowsJournalFile&) = delete;
  WindowsJournalFile& operator=(const WindowsJournalFile&) = delete;

  [[nodiscard]] std::expected<std::uint64_t, std::error_code> Size() override {
    LARGE_INTEGER size{};
    if (GetFileSizeEx(mHandle, &size) == 0) return std::unexpected(LastError());
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  [[nodiscard]] std::expected<std::string, std::error_code> Read(std::uint64_t at, std::size_t most) override {
    std::string bytes(most, '\0');
    std::size_t done = 0;
    while (done < most) {
      OVERLAPPED place = At(at + done);
      DWORD got = 0;
      if (ReadFile(mHandle, bytes.data() + done, static_cast<DWORD>(most - done), &got, &place) == 0) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        return std::unexpected(LastError());
      }
      if (got == 0) break;
      done += got;
    }
    bytes.resize(done);
    return bytes;
  }

  [[nodiscard]] std::error_code Write(std::uint64_t at, std::string_view bytes) override {
    while (!bytes.empty()) {
      OVERLAPPED place = At(at);
      DWORD written = 0;
      if (WriteFile(mHandle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, &place) == 0) return LastError();
      if (written == 0) return std::make_error_code(std::errc::no_space_on_device);
      bytes.remove_prefix(written);
      at += written;
    }
    return {};
  }

  [[nodiscard]] std::error_code Flush() override {
    return FlushFileBuffers(mHandle) != 0 ? std::error_code{} : LastError();
  }

  // Not opened for appending: such a file refuses to be cut.
  [[nodiscard]] std::error_code Truncate(std::uint64_t size) override {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return SetFileInformationByHandle(mHandle, FileEndOfFileInfo, &end, sizeof(end)) != 0 ? std::error_code{}
                                                                                          : LastError();
  }

  [[nodiscard]] std::expected<bool, std::error_code> TryLock() override {
    OVERLAPPED place{};
    if (LockFileEx(mHandle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0) return true;
    if (GetLastError() == ERROR_LOCK_VIOLATION) return false;
    return std::unexpected(LastError());
  }

 private:
  HANDLE mHandle;
};

DWORD CreationOf(JournalDisk::Access access) {
  if (access == JournalDisk::Access::Create) return CREATE_NEW;
  return access == JournalDisk::Access::Replace ? OPEN_ALWAYS : OPEN_EXISTING;
}

class WindowsJournalDisk final : public JournalDisk {
 public:
  [[nodiscard]] std::expected<std::unique_ptr<JournalFile>, std::error_code> Open(const fs::path& file,
                                                                                  Access access) override {
    const DWORD rights = access == Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const HANDLE handle = CreateFileW(file.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, CreationOf(access), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      if (GetLastError() == ERROR_FILE_EXISTS) return std::unexpected(std::make_error_code(std::errc::file_exists));
      return std::unexpected(LastError());
    }
    auto opened = std::make_unique<WindowsJournalFile>(handle);
    if (GetFileType(handle) != FILE_TYPE_DISK) {
      return std::unexpected(std::make_error_code(std::errc::operation_not_supported));
    }
    return opened;
  }

  void FlushFolder(const fs::path&) override {}  // new names are written through with their files
};

}  // namespace

JournalDisk& SystemJournalDisk() {
  static WindowsJournalDisk disk;
  return disk;
}

fs::path UserStateFolder() {
  const wchar_t* local = _wgetenv(L"LOCALAPPDATA");
  if (local == nullptr || *local == L'\0') return {};
  return fs::path(local) / "Telepanel" / "Journals";
}

}  // namespace kv
