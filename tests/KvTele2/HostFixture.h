#pragma once

#include <gmock/gmock.h>

#include "KvTele2/HostCommands.h"
#include "KvTele2/TelepanelHost.h"
#include "base/PathText.h"
#include "desktop/VirtualPacer.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/LoggedPrompts.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {

// A window that only remembers what it was last told to show, and which waits it saw.
class ShownView : public HostView {
 public:
  void Show(const HostState& state, const Journal& journal) override {
    shown = state;
    entries = journal.Entries().size();
  }
  void Run() override { hasRun = true; }
  void Quit() override { hasQuit = true; }
  void BeginWait(Wait wait, const std::string& what) override {
    waits.push_back(what);
    isWaiting = true;
    if (onWait) onWait(wait);
  }
  void EndWait() override { isWaiting = false; }
  std::expected<void, std::string> SavePicture(const std::string&) override { return {}; }

  HostState shown;
  std::size_t entries = 0;
  std::vector<std::string> waits;
  bool isWaiting = false;
  bool hasRun = false;
  bool hasQuit = false;
  std::function<void(Wait)> onWait;
};

class TelepanelHostTest : public testing::Test {
 protected:
  TelepanelHostTest() {
    host.SetSessionName("Default");
    host.SetSessionPath(Utf8FromPath(folder.Path()));
    host.SetModel("K220-22-R1");
    host.SetComDescription("COM3, 115200 8N1, unit 1");
    channel->version = VersionInfo{"K220-22-R1", "10", "4.60", "19"};
    channel->info = Channel::ControllerInfo{.serialNumber = 0xABC, .state = 'R', .projectName = "Bakery"};
    host.OnLinkReleased = [this] { ++releases; };
    host.OnToolClicked = [this](const std::string& id, const std::string& argument) {
      clicked.push_back(argument.empty() ? id : id + " " + argument);
      if (id == "ID_OnLine") onLine();
    };
  }

  // What the tool "ID_OnLine" does to the host when nothing is amiss.
  void Connect() {
    host.BeginConnect();
    host.EndConnect();
    host.SetConnectedUnit(1);
    host.AttachChannel(channel);
    if (!host.ProjectMatches())
      return host.ConnectionRefused("The file does not match.", {*channel->version, channel->info});
    host.GoOnline();
    host.RunPanelSession("0");
  }
  void LoseController() { channel->info.reset(); }
  void Pass(Duration span) {
    for (const Instant end = pacer.Now() + span; pacer.Now() < end;) {
      pacer.Sleep(std::chrono::seconds(1));
      host.Tick();
    }
  }
  [[nodiscard]] std::ptrdiff_t Questions() const { return std::ranges::count(channel->calls, "GetControllerInfo @1"); }
  std::string PutPages(const std::string& name, const PagesFile& pages) {
    return Utf8FromPath(folder.Put(name, PrintPagesFile(pages)));
  }

  TemporaryFolder folder;
  test::CallLog log;
  test::LoggedPrompts prompts{log};
  VirtualPacer pacer;
  ShownView view;
  TelepanelHost host{view, {pacer, pacer, prompts, "C:\\Program Files"}};
  std::shared_ptr<test::FakeChannel> channel = std::make_shared<test::FakeChannel>();
  std::vector<std::string> clicked;
  int releases = 0;  // of the link
  std::function<void()> onLine = [this] { Connect(); };
};

}  // namespace kv
