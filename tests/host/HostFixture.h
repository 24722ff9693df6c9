#pragma once

#include <memory>
#include <string>
#include <utility>

#include "host/clsCallerExe.h"
#include "tests/support/SessionFixture.h"

namespace kv::test {

class FakeSocket : public ListeningSocket {
 public:
  explicit FakeSocket(CallLog& log) : mLog(log) {}
  State state = State::Closed;
  bool succeeds = true;

  bool Listen(std::uint16_t) override { return succeeds; }
  bool Listen() override { return Note("Listen"); }
  void Close() override { Note("Close"); }
  bool Accept(int requestId) override { return Note("Accept " + std::to_string(requestId)); }
  State GetState() const override { return state; }
  void Poll() override {}

 private:
  bool Note(const std::string& what) {
    mLog.push_back("Socket " + what);
    return succeeds;
  }

  CallLog& mLog;
};

// A window that tells when it is made, shown and gone. `onShow` is what the user does in it.
class FakeWindow : public ToolWindow {
 public:
  FakeWindow(CallLog& log, std::string name, const std::string& argument, std::function<void()> onShow)
      : mLog(log), mName(std::move(name)), mOnShow(std::move(onShow)) {
    mLog.push_back(mName + " made for '" + argument + "'");
  }
  ~FakeWindow() override { mLog.push_back(mName + " gone"); }
  void ShowModal() override {
    mLog.push_back(mName + " shown");
    if (mOnShow) mOnShow();
  }

 private:
  CallLog& mLog;
  std::string mName;
  std::function<void()> mOnShow;
};

class FakeShell : public Shell {
 public:
  explicit FakeShell(CallLog& log) : mLog(log) {}
  std::expected<void, std::string> result;
  std::expected<void, std::string> Open(std::string_view verb, std::string_view file,
                                        std::string_view parameters) override {
    mLog.push_back("Shell '" + std::string(verb) + "' " + std::string(file) + " '" + std::string(parameters) + "'");
    return result;
  }

 private:
  CallLog& mLog;
};

// The program put together from fakes.
struct HostFixture : SessionFixture {
  HostFixture() {
    host.model = "";
    parts.createHost = [this] {
      log.push_back("host made");
      return std::shared_ptr<RemoteHost>(&host, [this](RemoteHost*) { log.push_back("host released"); });
    };
    parts.loadTapi = [this] {
      log.push_back("frmTAPI loaded");
      auto made = std::make_unique<FakeSocket>(log);
      socket = made.get();
      return std::make_unique<frmTAPI>(frmTAPI{std::move(made)});
    };
    parts.createDriver = [this] {
      log.push_back("driver made");
      auto made = std::make_unique<FakeDriver>(log);
      shared.ComDriver = made.get();
      return made;
    };
    parts.createWindows = [this](SharedState& state) {
      callerState = &state;
      ToolWindows made;
      for (const std::string& id : windows) made[id] = Window(id);
      return made;
    };
    parts.prompts = &prompts;
    parts.shell = &shell;
  }

  ToolWindowFactory Window(const std::string& id) {
    return [this, id](const std::string& argument) { return std::make_unique<FakeWindow>(log, id, argument, onShow); };
  }

  // Lets the program live its life, with `action` as what happens while the host runs; what the program did for it.
  CallLog CallsOf(const std::function<void(clsCallerExe& caller)>& action) {
    clsCallerExe caller(parts);
    CallLog calls;
    host.onRun = [&] {
      Taken();
      action(caller);
      calls = Taken();
    };
    caller.StartUp();
    return calls;
  }
  CallLog CallsOf(const std::string& toolId, const std::string& argument = "") {
    return CallsOf([&](clsCallerExe&) { host.OnToolClicked(toolId, argument); });
  }

  std::vector<std::string> windows{"ID_About", "ID_DataTypes", "ID_DumpPLC"};  // by the ids of their tools
  FakeShell shell{log};
  HostParts parts{.paths = ProgramPaths(home.Path())};
  std::function<void()> onShow;
  FakeSocket* socket = nullptr;        // of the last StartUp
  SharedState* callerState = nullptr;  // while that lasts
};

}  // namespace kv::test
