#include "desktop/UserName.h"

#ifdef _WIN32
#include <windows.h>

#include "base/PathText.h"
#else
#include <pwd.h>
#include <unistd.h>

#include <array>
#endif

namespace kv {

#ifdef _WIN32

namespace {

std::string Variable(const wchar_t* name) {
  const wchar_t* value = _wgetenv(name);
  return value == nullptr ? "" : Utf8FromPath(value);
}

}  // namespace

std::string UserName() {
  const std::string user = Variable(L"USERNAME");
  const std::string host = Variable(L"COMPUTERNAME");
  return user.empty() || host.empty() ? user : user + "@" + host;
}

#else

std::string UserName() {
  const passwd* entry = getpwuid(geteuid());
  if (entry == nullptr) return {};
  std::array<char, 256> host{};
  if (gethostname(host.data(), host.size() - 1) != 0 || host.front() == '\0') return entry->pw_name;
  return std::string(entry->pw_name) + "@" + host.data();
}

#endif

}  // namespace kv
