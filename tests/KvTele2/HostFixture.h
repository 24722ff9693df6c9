#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <set>

#include "KvTele2/HostCommands.h"
#include "KvTele2/TelepanelHost.h"
#include "base/PathText.h"
#include "desktop/VirtualPacer.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/LoggedPrompts.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {

// All that a window can show, in words: what always has one, and behind it what there may be.
constexpr std::size_t kAlwaysShown = 13;
inline std::vector<std::string> WordsOf(const HostState& state, const TelepanelHost& host) {
  std::vector<std::string> words{WindowTitle(state),
                                 "session " + state.session,
                                 "user " + state.user,
                                 "link " + state.link,
                                 "model " + state.model,
                                 "message " + state.message,
                                 "caption " + state.caption,
                                 "trouble " + state.trouble,
                                 "note " + state.panelNote,
                                 "try " + RetryText(state),
                                 "pages " + PagesText(state),
                                 TilesNote(state),
                                 "no sessions: " + state.sessionsFault};
  if (state.isSilent) words.emplace_back("silent");
  if (state.isWithTool) words.emplace_back("with a tool");
  if (!state.isEnabled) words.emplace_back("disabled");
  if (const auto& of = state.controller)
    words.push_back(of->model + ", " + of->hardwareCode + ", " + of->os + " (" + of->build + "), unit " + of->unit +
                    ", " + of->state + ", " + of->project + ", " + of->serialNumber);
  if (const auto& of = state.quality) words.push_back(of->exchanges + " exchanges, " + of->errors + " failed");
  for (const auto& of : state.tiles)
    words.push_back("tile " + of.operands + ", " + of.title + ", " + of.values + ", " + of.allValues + ", " + of.age +
                    ", " + of.fault + (of.isOld ? ", old" : ""));
  for (const auto& of : state.sessions) words.push_back("card " + of.name + ", " + of.lastUsed);
  for (const auto& of : state.recentPages) words.push_back("recent " + of);
  for (const auto& of : state.recentCaches) words.push_back("recent cache " + of);
  for (const HostMenu& menu : HostMenus()) {
    for (const HostCommand& each : menu.commands) {
      const std::string why = host.WhyDisabled(each.id);
      if (!why.empty()) words.push_back("no " + std::string(each.id) + ": " + why);
    }
  }
  return words;
}

// A window that only remembers what it was last told to show, and which waits it saw; `story` is all of it in order.
class ShownView : public HostView {
 public:
  void Show(const HostState& state, const Journal& journal) override {
    shown = state;
    entries = journal.Entries().size();
    if (told > journal.Total()) told = 0;
    for (std::size_t news = std::min<std::size_t>(journal.Total() - std::exchange(told, journal.Total()), entries);
         news > 0; --news)
      story += "log: " + journal.Entries()[entries - news].text + "\n";
    const auto before = std::exchange(words, WordsOf(state, *host));
    for (const std::string& word : words) {
      if (std::ranges::find(before, word) == before.end()) story += "  " + word + "\n";
    }
    for (std::size_t i = kAlwaysShown; i < before.size(); ++i) {
      if (std::ranges::find(words, before[i]) == words.end()) story += "  no more: " + before[i] + "\n";
    }
  }
  void Run() override { hasRun = true; }
  void Quit() override { hasQuit = true; }
  void BeginWait(Wait wait, const std::string& what) override {
    waits.push_back(what);
    story += "wait " + std::to_string(static_cast<int>(wait)) + ": " + what + "\n";
    isWaiting = true;
    if (onWait) onWait(wait);
  }
  void EndWait() override {
    isWaiting = false;
    story += "the wait ends\n";
  }
  std::expected<void, std::string> SavePicture(const std::string&) override { return {}; }

  HostState shown;
  std::size_t entries = 0;
  std::vector<std::string> waits;
  bool isWaiting = false;
  bool hasRun = false;
  bool hasQuit = false;
  const TelepanelHost* host = nullptr;
  std::string story;
  std::uint64_t told = 0;  // entries of the log
  std::vector<std::string> words;
  std::function<void(Wait)> onWait;
};

class TelepanelHostTest : public testing::Test {
 protected:
  TelepanelHostTest() {
    view.host = &host;
    host.SetSessionName("Default");
    host.SetSessionPath(Utf8FromPath(folder.Path()));
    host.SetModel("K220-22-R1");
    host.SetComDescription("COM3, 115200 8N1, unit 1");
    channel->version = VersionInfo{"K220-22-R1", "10", "4.60", "19"};
    channel->info = Channel::ControllerInfo{.serialNumber = 0xABC, .state = 'R', .projectName = "Bakery"};
    host.OnLinkReleased = [this] {
      ++releases;
      view.story += "the link is released\n";
    };
    host.OnToolClicked = [this](const std::string& id, const std::string& argument) {
      clicked.push_back(argument.empty() ? id : id + " " + argument);
      view.story += "tool " + clicked.back() + "\n";
      if (id == "ID_OnLine") onLine();
    };
  }
  // Beside what a test looks at, everything else that the window was told meanwhile: tests/KvTele2/shown. Who has
  // changed it renews the files with KV_RENEW_LOOKS=1 in the environment, and reads their difference.
  void TearDown() override {
    const auto& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string("KvTele2/shown/") + test.name() + ".txt";
    std::string story = test::WithoutHome(view.story.substr(0, 15'000), folder.Path());
    std::erase(story, '\r');
    for (const std::string& call : std::set(channel->calls.begin(), channel->calls.end()))
      story += call + ": " + std::to_string(std::ranges::count(channel->calls, call)) + " times\n";
    if (test::AreRecordsRenewed()) test::RenewRecord(name, story);
    EXPECT_EQ(test::RecordOf(name), story);
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
