#pragma once

#include <memory>
#include <string>

#include "base/ProgramPaths.h"
#include "host/shared/RemoteHost.h"
#include "host/shared/clsBitsHandler.h"
#include "link/CommDriver.h"
#include "secret/Secret.h"

namespace kv {

// What all tool windows share while the program runs. One instance exists, made by the entry routine and handed by
// reference to whoever needs it; nothing is global.
struct SharedState {
  explicit SharedState(ProgramPaths programPaths) : paths(std::move(programPaths)) {}

  ProgramPaths paths;
  std::string CurrentSession = "Default";  // name of a folder under Sessions, UTF-8
  std::string UserName;                    // who is logged in, UTF-8; empty: nobody
  Secret UserPassword;                     // UTF-8; never stored on disk
  RemoteHost* Remote = nullptr;
  CommDriver* ComDriver = nullptr;
  std::unique_ptr<clsBitsHandler> BitsHandler;
};

}  // namespace kv
