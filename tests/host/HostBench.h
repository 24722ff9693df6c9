#pragma once

#include <memory>
#include <string>
#include <utility>

#include "host/clsCallerExe.h"
#include "tests/support/SessionBench.h"

namespace kv::test {

// A socket that is never there: it counts as closed or not, as the test says.
class FakeSocket : public ListeningSocket {
 public:
  FakeSocket(CallLog& log, State& state, bool& accepts) : mLog(log), mState(state), mAccepts(accepts) {}
  bool Listen(std::uint16_t) override { return true; }
  bool Listen() override {
    mLog.push_back("Socket Listen");
    return mAccepts;
  }
  void Close() override { mLog.push_back("Socket Close"); }
  bool Accept(int requestId) override {
    mLog.push_back("Socket Accept " + std::to_string(requestId));
    return mAccepts;
  }
  State GetState() const override { return mState; }
  void Poll() override {}

 private:
  CallLog& mLog;
  State& mState;
  bool& mAccepts;
};

// A window that tells when it is made, shown and gone. `onShow` is what the user does in it.
class FakeWindow : public ToolWindow {
 public:
  FakeWindow(CallLog& log, std::string name, const std::string& argument, const std::function<void()>& onShow)
      : mLog(log), mName(std::move(name)), mOnShow(onShow) {
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
  const std::function<void()>& mOnShow;
};

class FakeShell : public Shell {
 public:
  explicit FakeShell(CallLog& log) : mLog(log) {}
  std::string failure;
  std::expected<void, std::string> Open(std::string_view verb, std::string_view file,
                                        std::string_view parameters) override {
    mLog.push_back("Shell '" + std::string(verb) + "' " + std::string(file) + " '" + std::string(parameters) + "'");
    if (failure.empty()) return {};
    return std::unexpected(failure);
  }

 private:
  CallLog& mLog;
};

// The program put together from fakes.
struct HostBench : SessionBench {
  HostBench() {
    Put("KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K330\r\n");
    caller.emplace(Parts());
  }

  HostParts Parts() {
    HostParts parts{.paths = ProgramPaths(home.Path())};
    parts.createHost = [this] {
      log.push_back("host made");
      return std::shared_ptr<RemoteHost>(&host, [this](RemoteHost*) { log.push_back("host released"); });
    };
    parts.loadTapi = [this] {
      log.push_back("frmTAPI loaded");
      return std::make_unique<frmTAPI>(frmTAPI{std::make_unique<FakeSocket>(log, socketState, socketAccepts)});
    };
    parts.createDriver = [this] {
      log.push_back("driver made");
      auto made = std::make_unique<FakeDriver>(log);
      madeDriver = made.get();
      return made;
    };
    parts.createWindows = [this](SharedState& state) {
      callerState = &state;
      return hasWindows ? Windows() : ToolWindows{};
    };
    parts.prompts = &prompts;
    parts.shell = &shell;
    return parts;
  }

  ToolWindows Windows() {
    const auto factory = [this](const char* name) {
      return [this, name](const std::string& argument) {
        return std::make_unique<FakeWindow>(log, name, argument, onShow);
      };
    };
    return {factory("frmSession"), factory("frmDataTypesView"), factory("frmDownloader"), factory("frmDumpPLC"),
            factory("frmLogIn"),   factory("frmRestoreCache"),  factory("frmAbout")};
  }

  // Everything that the program does when `action` is what happens while the host runs, and of that the action's part.
  CallLog CallsOf(const std::function<void()>& action) {
    CallLog calls;
    host.onRun = [&] {
      Taken();
      action();
      calls = Taken();
    };
    caller->StartUp();
    return calls;
  }
  CallLog CallsOf(const std::string& toolId, const std::string& argument = "") {
    return CallsOf([&] { host.OnToolClicked(toolId, argument); });
  }

  FakeShell shell{log};
  bool hasWindows = true;
  std::function<void()> onShow;
  ListeningSocket::State socketState = ListeningSocket::State::Closed;
  bool socketAccepts = true;
  SharedState* callerState = nullptr;
  FakeDriver* madeDriver = nullptr;
  std::optional<clsCallerExe> caller;
};

}  // namespace kv::test
