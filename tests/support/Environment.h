#pragma once

#include <cstdlib>
#include <string>

#ifdef _WIN32
#include "base/PathText.h"
#endif

namespace kvtest {

// A variable of the environment of this process and of those that it starts.
inline void SetVariable(const char* name, const std::string& value) {
#ifdef _WIN32
  _wputenv_s(kv::PathFromUtf8(name).c_str(), kv::PathFromUtf8(value).c_str());
#else
  ::setenv(name, value.c_str(), 1);
#endif
}

// The folder below which a program keeps what belongs to its user and to no session.
#ifdef _WIN32
inline constexpr const char* kUserState = "LOCALAPPDATA";
#else
inline constexpr const char* kUserState = "XDG_STATE_HOME";
#endif

// A number from the environment: how often, in which order.
inline unsigned NumberFromEnvironment(const char* name, unsigned usual) {
  const char* value = std::getenv(name);
  return value == nullptr ? usual : static_cast<unsigned>(std::atoi(value));
}

}  // namespace kvtest
