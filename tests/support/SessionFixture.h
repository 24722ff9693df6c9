#pragma once

#include <algorithm>
#include <string>

#include "base/PathText.h"
#include "host/shared/SharedState.h"
#include "tests/support/FakeDriver.h"
#include "tests/support/FakeHost.h"
#include "tests/support/LoggedPrompts.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A program folder with a session "Default", and the fakes that share one log around it.
struct SessionFixture {
  SessionFixture() {
    std::filesystem::create_directories(Session("Default"));
    shared.Remote = &host;
    shared.ComDriver = &driver;
    host.installFolder = Utf8FromPath(home.Path());
  }

  [[nodiscard]] std::filesystem::path Session(const std::string& name) const { return home.Path() / "Sessions" / name; }
  std::filesystem::path Put(const std::string& fileInDefault, std::string_view content) const {
    return home.Put("Sessions/Default/" + fileInDefault, content);
  }

  // What was logged since the last call, with the program folder's path as "HOME" and slashes behind it.
  CallLog Taken() {
    CallLog taken;
    taken.swap(log);
    const std::string path = Utf8FromPath(home.Path());
    for (std::string& call : taken) {
      const auto at = call.find(path);
      if (at == std::string::npos) continue;
      call.replace(at, path.size(), "HOME");
#ifdef _WIN32
      std::ranges::replace(call, '\\', '/');
#endif
    }
    return taken;
  }

  TemporaryFolder home;
  CallLog log;
  LoggedPrompts prompts{log};
  FakeHost host{log};
  FakeDriver driver{log};
  SharedState shared{ProgramPaths(home.Path())};
};

}  // namespace kv::test
