#pragma once

#include <filesystem>

#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <sddl.h>
// clang-format on
#endif

namespace kv {

enum class Rights { Owners, GroupReads, GroupWrites, OthersRead };

// Who else than its owner may read or change a file.
#ifdef _WIN32
inline void GiveRights(const std::filesystem::path& file, Rights rights) {
  const wchar_t* list = rights == Rights::Owners        ? L"D:P(A;;FA;;;OW)"
                        : rights == Rights::GroupReads  ? L"D:P(A;;FA;;;OW)(A;;FR;;;WD)"
                        : rights == Rights::GroupWrites ? L"D:P(A;;FA;;;OW)(A;;FW;;;WD)"
                                                        : L"D:P(A;;FA;;;OW)(A;;FR;;;WD)";
  PSECURITY_DESCRIPTOR facts = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorW(list, SDDL_REVISION_1, &facts, nullptr);
  SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, facts);
  LocalFree(facts);
}
#else
inline void GiveRights(const std::filesystem::path& file, Rights rights) {
  const unsigned mode = rights == Rights::Owners        ? 0600
                        : rights == Rights::GroupReads  ? 0640
                        : rights == Rights::GroupWrites ? 0620
                                                        : 0604;
  std::filesystem::permissions(file, static_cast<std::filesystem::perms>(mode));
}
#endif

}  // namespace kv
