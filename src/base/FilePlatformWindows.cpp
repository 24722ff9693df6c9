#include <windows.h>

#include <algorithm>
#include <string>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

std::error_code WriteAll(HANDLE handle, std::string_view content) {
  constexpr std::size_t kPiece = std::size_t{1} << 30;  // the call counts in 32 bits
  while (!content.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(content.size(), kPiece));
    if (WriteFile(handle, content.data(), size, &written, nullptr) == 0) return LastError();
    content.remove_prefix(written);
  }
  return FlushFileBuffers(handle) != 0 ? std::error_code{} : LastError();
}

std::error_code ErrorOfAccess(const fs::path& file, DWORD access, DWORD share) {
  const HANDLE handle =
      CreateFileW(file.c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return LastError();
  CloseHandle(handle);
  return {};
}

}  // namespace

// A new file inherits the access list of its folder, as the model did; hidden and the like are taken over.
std::error_code WriteNewFile(const fs::path& temporary, const fs::path& model, std::string_view content) {
  const DWORD attributes = GetFileAttributesW(model.c_str());
  const HANDLE handle =
      CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                  attributes == INVALID_FILE_ATTRIBUTES ? FILE_ATTRIBUTE_NORMAL : attributes, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return LastError();
  ScopeGuard remove([&temporary] { DeleteFileW(temporary.c_str()); });
  std::error_code error = WriteAll(handle, content);
  if (CloseHandle(handle) == 0 && !error) error = LastError();
  if (!error) remove.Dismiss();
  return error;
}

std::error_code ReplaceFileWith(const fs::path& to, const fs::path& from) {
  // Write-through does what flushing the folder does elsewhere.
  const BOOL moved = MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
  return moved != 0 ? std::error_code{} : LastError();
}

std::error_code MoveToFreeName(const fs::path& to, const fs::path& from) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0 ? std::error_code{} : LastError();
}

// The library's own call takes any two files of one drive for the same file, and refuses.
std::error_code CopyOver(const fs::path& from, const fs::path& to) {
  return CopyFileW(from.c_str(), to.c_str(), FALSE) != 0 ? std::error_code{} : LastError();
}

// The library would give it in the code page of the user's language.
std::string SystemMessage(const std::error_code& code) {
  constexpr DWORD kLongest = 1024;
  const bool isSystems = std::string_view(code.category().name()).ends_with("system");
  std::wstring text(isSystems ? kLongest : 0, L'\0');
  const DWORD size = isSystems ? FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                                static_cast<DWORD>(code.value()), 0, text.data(), kLongest, nullptr)
                               : 0;
  text.resize(size);
  text.resize(text.find_last_not_of(L"\r\n. ") + 1);
  return text.empty() ? code.message() : Utf8FromPath(text);
}

// Shared as the library's streams share it.
std::error_code ErrorOfOpening(const fs::path& file) {
  return ErrorOfAccess(file, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
}

std::error_code ErrorOfReplacing(const fs::path& file) {
  return ErrorOfAccess(file, DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
}

bool IsHeldByAnother(const std::error_code& code) {
  constexpr int kCodes[] = {ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION, ERROR_USER_MAPPED_FILE};
  return code.category() == std::system_category() && std::ranges::count(kCodes, code.value()) > 0;
}

bool MayBeHeldByAnother(const std::error_code& code) {
  return IsHeldByAnother(code) || code == std::error_code(ERROR_ACCESS_DENIED, std::system_category());
}

std::string NarrowName(const fs::path& file) {
  std::wstring name = file.wstring();
  for (const bool isShort : {false, true}) {
    if (isShort) name.resize(GetShortPathNameW(file.c_str(), name.data(), static_cast<DWORD>(name.size() + 1)));
    BOOL isLost = FALSE;
    std::string narrow(name.size() * 4, '\0');
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name.data(),
                                                               static_cast<int>(name.size()), narrow.data(),
                                                               static_cast<int>(narrow.size()), nullptr, &isLost)));
    if (!narrow.empty() && isLost == FALSE) return narrow;
    name.resize(MAX_PATH);
  }
  return {};
}

unsigned long ProcessNumber() {
  return GetCurrentProcessId();
}

fs::path ExecutableFile() {
  constexpr DWORD kLongestPath = 32768;
  std::wstring name(kLongestPath, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), kLongestPath));
  return name;
}

}  // namespace kv
