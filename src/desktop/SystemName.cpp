#include "desktop/SystemName.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/utsname.h>

#include <fstream>
#include <string_view>
#endif

namespace kv {

#ifdef _WIN32

// What the system reports depends on what a program is made for, so the registry is asked.
std::string SystemName() {
  constexpr const wchar_t* kPlace = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
  wchar_t build[32] = L"";
  DWORD size = sizeof(build);
  RegGetValueW(HKEY_LOCAL_MACHINE, kPlace, L"CurrentBuildNumber", RRF_RT_REG_SZ, nullptr, build, &size);
  std::string name = "Windows, build ";
  for (const wchar_t* digit = build; *digit != L'\0'; ++digit) name += static_cast<char>(*digit);
  return name;
}

#else

namespace {

// PRETTY_NAME="Debian GNU/Linux 12 (bookworm)"
std::string Distribution() {
  constexpr std::string_view kKey = "PRETTY_NAME=\"";
  std::ifstream facts("/etc/os-release");
  for (std::string line; std::getline(facts, line);) {
    if (line.starts_with(kKey) && line.ends_with('"')) {
      return line.substr(kKey.size(), line.size() - kKey.size() - 1) + ", ";
    }
  }
  return {};
}

}  // namespace

std::string SystemName() {
  utsname facts{};
  if (uname(&facts) != 0) return Distribution() + "unknown";
  return Distribution() + facts.sysname + " " + facts.release + " " + facts.machine;
}

#endif

}  // namespace kv
