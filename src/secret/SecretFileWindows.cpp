// clang-format off
#include <windows.h>
#include <aclapi.h>
// clang-format on

#include "base/FilePlatform.h"
#include "base/ScopeGuard.h"
#include "secret/SecretFile.h"

namespace kv {
namespace {

constexpr ACCESS_MASK kReadsOrChanges = FILE_READ_DATA | FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC | WRITE_OWNER |
                                        GENERIC_READ | GENERIC_WRITE | GENERIC_ALL;

bool IsSystems(PSID who) {
  return IsWellKnownSid(who, WinLocalSystemSid) || IsWellKnownSid(who, WinBuiltinAdministratorsSid) ||
         IsWellKnownSid(who, WinCreatorOwnerRightsSid);
}

// An entry that this program does not know may allow anything.
bool AllowsOthers(const ACE_HEADER& entry, PSID owner) {
  if (entry.AceType == ACCESS_DENIED_ACE_TYPE) return false;
  if (entry.AceType != ACCESS_ALLOWED_ACE_TYPE) return true;
  const auto& allowed = reinterpret_cast<const ACCESS_ALLOWED_ACE&>(entry);
  const auto who = const_cast<PSID>(static_cast<const void*>(&allowed.SidStart));
  return (allowed.Mask & kReadsOrChanges) != 0 && !EqualSid(who, owner) && !IsSystems(who);
}

// Without an access list everybody may.
bool IsOpenToOthers(HANDLE file) {
  PSID owner = nullptr;
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR facts = nullptr;
  const DWORD error = GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                      &owner, nullptr, &list, nullptr, &facts);
  const ScopeGuard release([facts] { LocalFree(facts); });
  if (error != ERROR_SUCCESS || owner == nullptr || list == nullptr) return true;
  for (DWORD i = 0; i < list->AceCount; ++i) {
    void* entry = nullptr;
    if (!GetAce(list, i, &entry) || AllowsOthers(*static_cast<ACE_HEADER*>(entry), owner)) return true;
  }
  return false;
}

std::unexpected<SecretFileFault> Unreadable(DWORD error) {
  const std::error_code code(static_cast<int>(error), std::system_category());
  return std::unexpected(SecretFileFault{"cannot be read: " + SystemMessage(code), {}});
}

}  // namespace

std::expected<std::string, SecretFileFault> ReadOwnersFile(const std::filesystem::path& path, std::size_t most) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | READ_CONTROL, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    const DWORD kind = GetFileAttributesW(path.c_str());
    if (kind == INVALID_FILE_ATTRIBUTES || (kind & FILE_ATTRIBUTE_DIRECTORY) == 0) return Unreadable(error);
    return std::unexpected(SecretFileFault{"is no plain file", {}});
  }
  const ScopeGuard close([file] { CloseHandle(file); });
  if (GetFileType(file) != FILE_TYPE_DISK) return std::unexpected(SecretFileFault{"is no plain file", {}});
  if (IsOpenToOthers(file)) {
    return std::unexpected(
        SecretFileFault{"may be read or changed by others than its owner, so its password is not used",
                        "take everybody but its owner out of its security settings, and give the controller another "
                        "password if others may know this one"});
  }
  std::string content(most + 1, '\0');
  DWORD count = 0;
  if (!ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &count, nullptr)) {
    return Unreadable(GetLastError());
  }
  content.resize(count);
  return content;
}

}  // namespace kv
