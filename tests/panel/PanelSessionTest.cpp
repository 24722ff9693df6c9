#include <gmock/gmock.h>

#include <random>
#include <ranges>

#include "KvTele2/panel/PanelSession.h"
#include "desktop/VirtualPacer.h"
#include "tests/panel/Records.h"
#include "tests/support/Recorded.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;
using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The other end of the link, as far as a session can see it. Requests and events are noted as letters: "c" changes, and
// the first letters of actions ("Op", "Le", "Do", "Ho", "Up", "Ta").
class FakePanel final : public PanelLink, public ChangeObserver {
 public:
  explicit FakePanel(VirtualPacer& pacer) : mPacer(pacer) {}

  std::optional<PanelDescription> Describe(std::uint8_t) override { return Answer(std::optional(panel)); }
  std::optional<PanelChanges> Changes(const PanelChangesRequest& request, std::uint8_t) override {
    sent.emplace_back("c");
    Note("c", request.have, {request.most, request.lease});
    return Answer(std::optional(News(request.have, request.lease)));
  }
  std::optional<PanelChanges> Send(const PanelEvent& event, std::uint8_t) override {
    constexpr const char* kNames[] = {"", "Op", "Le", "Do", "Ho", "Up", "Ta"};
    sent.emplace_back(kNames[static_cast<int>(event.action)]);
    events.push_back(event);
    Note(sent.back() + event.operatorName, event.seen,
         {event.key.value_or(255), event.x, event.y, event.takesOver, event.page, event.stamp, event.lease, event.since,
          event.most, event.connection});
    if (onSend) onSend();
    if (verdict == PanelVerdict::Done && !isDown) {
      if (event.action == PanelAction::Operate) lease = 77;
      if (event.action == PanelAction::Leave) lease = 0;
      isHeld = event.action == PanelAction::Down || event.action == PanelAction::Hold;
    }
    PanelChanges changes = News({event.seen.epoch, event.since}, event.lease);
    changes.verdict = verdict;
    changes.lease = event.action == PanelAction::Leave ? std::uint16_t{0} : lease;
    return Answer(std::optional(std::move(changes)));
  }
  void GiveLeaseElsewhere() {
    lease = 0;
    isLeaseElsewhere = true;
  }
  std::optional<PanelDirectory> Directory(PanelResourceKind, std::uint8_t) override { return {}; }
  std::optional<Bytes> ReadPiece(PanelResourceKind, std::uint16_t, std::uint32_t, std::uint32_t,
                                 std::uint8_t) override {
    return {};
  }
  std::optional<PanelLinkCost> Cost(std::uint8_t) override { return PanelLinkCost{0us, 0us, 8192}; }
  unsigned Connection() const override { return connection; }
  const LinkError& LastError() const override { return error; }

  void BeginOperation(const Operation& operation) override {
    recorded.push_back(operation.what);
    log += operation.tool + ": " + operation.what + "\n";
  }
  void EndOperation(const std::optional<ChangeEnd>&) override {}
  std::expected<void, LinkError> BeforeRequest(const ChangeRequest&) override { return {}; }
  void AfterRequest(const ChangeEnd&) override {}
  std::string Head() const override { return ""; }

  // The screen gets these records next.
  void Show(std::vector<PanelRecord> records) {
    for (PanelRecord& record : records) mLog.push_back(std::move(record));
  }

  PanelDescription panel = ColourPanel(100, 50);
  std::uint16_t epoch = 9;
  PanelVerdict verdict = PanelVerdict::Done;
  std::uint16_t lease = 0;
  bool isHeld = false;
  bool isDown = false;    // the link
  bool isSpared = false;  // what it did not carry
  bool isLeaseElsewhere = false;
  unsigned connection = 1;
  std::size_t most = 1000;  // records in a reply
  std::function<void()> onSend;
  LinkError error;
  std::vector<std::string> sent;
  std::vector<PanelEvent> events;
  std::vector<std::string> recorded;
  std::string log;  // of all requests, with their times in milliseconds

 private:
  void Note(const std::string& what, const PanelRevision& revision, const std::vector<std::uint32_t>& numbers) {
    log += std::to_string(mPacer.Now().time_since_epoch() / 1ms) + " " + what + " of " +
           std::to_string(revision.epoch) + "." + std::to_string(revision.number) + ":";
    for (const std::uint32_t number : numbers) log += " " + std::to_string(number);
    log += "\n";
  }
  template <typename Value>
  std::optional<Value> Answer(std::optional<Value> value) {
    mPacer.Sleep(2ms);
    error = {};
    if (!isDown) return value;
    error = {.code = LinkErrorCode::Unsure, .happened = "no reply", .isNotExecuted = isSpared};
    return std::nullopt;
  }
  PanelChanges News(const PanelRevision& have, std::uint16_t named) const {
    const std::size_t from = have.epoch == epoch ? have.number : 0;
    const auto records = mLog | std::views::drop(from) | std::views::take(most);
    PanelChanges changes = Told({records.begin(), records.end()}, static_cast<std::uint32_t>(from), epoch);
    changes.hasMore = changes.upTo.number < mLog.size();
    changes.isLeaseGood = named != 0 && named == lease;
    changes.isLeaseElsewhere = isLeaseElsewhere;
    changes.lease = changes.isLeaseGood ? lease : std::uint16_t{0};
    changes.isHeld = isHeld;
    return changes;
  }

  VirtualPacer& mPacer;
  std::vector<PanelRecord> mLog;
};

const PanelPlace kStart{.key = std::nullopt, .x = 5, .y = 5};

class PanelSessionTest : public ::testing::Test {
 protected:
  PanelSessionTest() {
    panel.Show({Page(1), Touch(64, {0, 0, 10, 10}, "Start"), Touch(65, {20, 0, 10, 10}, "Jog", 2)});
    Run(1s);
  }
  ~PanelSessionTest() override {
    const PanelState state = session.State();
    panel.log += state.reason + "|" + state.whyViewing + "|" + state.operatorName + "|" + state.pageName + "\n";
    for (const PressReport& report : session.TakeReports()) panel.log += report.text + "\n";
    ExpectAsRecorded([this] { return panel.log; });
  }

  // As a window does: a step whenever one is due, with what is pressed.
  void Run(Duration span, const std::optional<PanelPlace>& pressed = std::nullopt) {
    const Instant end = pacer.Now() + span;
    while (pacer.Now() < end) {
      if (session.Step(pressed)) continue;
      pacer.Sleep(std::clamp<Duration>(session.NextStep().value_or(5ms), 1ms, 5ms));
    }
  }
  void Operate() {
    session.AskToOperate("An\tna \xC2\x81", false);
    Run(300ms);
    ASSERT_EQ(session.State().mode, PanelMode::Operate);
    EXPECT_EQ(panel.events.back().operatorName, "An?na ?") << "nothing that a controller refuses in a name";
    (void)session.TakeReports();
    panel.sent.clear();
    panel.events.clear();
  }
  // Without the questions for changes.
  std::vector<std::string> Sent() {
    std::vector<std::string> sent = std::exchange(panel.sent, {});
    std::erase(sent, "c");
    return sent;
  }

  VirtualPacer pacer;
  FakePanel panel{pacer};
  ScreenResources resources;
  PanelSession session{{.pacer = pacer, .link = panel, .resources = resources, .changes = &panel}};
};

TEST_F(PanelSessionTest, InViewNoInputLeavesHoweverItIsCalled) {
  EXPECT_EQ(session.State().sight, PanelSight::Live);
  const auto nothing = [&] {
    EXPECT_EQ(session.Press(kStart), PressRefusal::OnlyViewing);
    Run(1s, kStart);
    EXPECT_THAT(Sent(), IsEmpty());
  };
  nothing();
  Operate();
  session.Leave();
  Run(100ms, kStart);
  EXPECT_THAT(Sent(), ElementsAre("Le"));
  nothing();
  panel.verdict = PanelVerdict::NoLease;
  session.AskToOperate("Anna", false);
  Run(100ms);
  EXPECT_THAT(Sent(), ElementsAre("Op"));
  EXPECT_EQ(session.State().whyViewing, "Somebody else operates the panel.");
  nothing();
}

TEST_F(PanelSessionTest, AButtonIsPressedHeldAndLetGo) {
  Operate();
  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
  Run(700ms, kStart);
  EXPECT_EQ(session.State().held, kStart);
  Run(100ms);
  EXPECT_THAT(Sent(), ElementsAre("Do", "Ho", "Ho", "Ho", "Up"));
  EXPECT_FALSE(session.State().held);
  EXPECT_THAT(panel.recorded, ElementsAre("operate the panel", "press and hold button \"Start\" on page 1"));
  const auto reports = session.TakeReports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].result, PressReport::Result::Done);

  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
  Run(100ms);  // let go before it was sent
  EXPECT_THAT(Sent(), ElementsAre("Ta"));

  Run(10s);
  panel.sent.clear();
  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
  Run(300ms);
  EXPECT_GE(std::ranges::count(panel.sent, "c"), 5) << "what comes of it is seen at once, also on a screen at rest";
}

// What is pressed now is all that renews, so each of these ends in letting go, and none of them in a press.
TEST_F(PanelSessionTest, WhateverEndsAHoldLetsGo) {
  const PanelPlace jog{.key = std::nullopt, .x = 25, .y = 5};
  const struct {
    const char* name;
    std::function<void()> end;
    std::optional<PanelPlace> pressed;
    std::vector<std::string> sent;
  } cases[] = {
      {"released", [] {}, std::nullopt, {"Up"}},
      {"slid off", [] {}, PanelPlace{.key = std::nullopt, .x = 31, .y = 5}, {"Up"}},
      {"window hung", [&] { pacer.Sleep(600ms); }, jog, {"Up"}},
      {"left", [&] { session.Leave(); }, jog, {"Le"}},
      {"hidden", [&] { session.Show(false); }, std::nullopt, {"Up"}},
      {"paused", [&] { session.Pause(); }, jog, {"Up"}},
      {"button gone", [&] { panel.Show({{65, 0, ""}}); }, jog, {"Up"}},
      {"let go by the controller", [&] { panel.isHeld = false; }, jog, {}},
      {"lease lost", [&] { panel.GiveLeaseElsewhere(); }, jog, {}},
      {"reconnected", [&] { ++panel.connection; }, jog, {}},
  };
  for (const auto& [name, end, pressed, sent] : cases) {
    SCOPED_TRACE(name);
    panel.Show({Touch(65, {20, 0, 10, 10}, "Jog", 2)});
    panel.isLeaseElsewhere = false;
    session.Show(true);
    session.Resume();
    Run(500ms);
    session.Leave();
    Run(100ms);
    Operate();
    ASSERT_EQ(session.Press(jog), PressRefusal::None);
    Run(50ms, jog);
    ASSERT_EQ(session.State().held, jog);
    (void)Sent();
    end();
    Run(1s, pressed);
    std::vector<std::string> after = Sent();
    std::erase(after, "Ho");
    EXPECT_EQ(after, sent);
    EXPECT_FALSE(session.State().held);
    panel.isHeld = false;
  }
}

TEST_F(PanelSessionTest, NothingIsPressedThatWasNotSeen) {
  Operate();
  const auto refused = [&](const PanelPlace& place) { return session.Press(place); };
  EXPECT_EQ(refused({.key = std::nullopt, .x = 15, .y = 5}), PressRefusal::NothingThere);
  EXPECT_EQ(refused({.key = 3}), PressRefusal::NothingThere);
  panel.Show({Touch(64, {0, 0, 10, 10}, "Start", 1, 2)});
  Run(600ms);
  EXPECT_EQ(refused(kStart), PressRefusal::Disabled);
  panel.Show({Touch(64, {0, 0, 10, 10}, "Stop")});
  while (session.Model()->Get<TouchItem>(64)->isDisabled) Run(1ms);
  EXPECT_EQ(refused(kStart), PressRefusal::JustChanged);
  Run(300ms);
  panel.Show({Touch(70, {50, 0, 10, 10}, "New")});
  while (!session.Model()->Get<TouchItem>(70)) Run(1ms);
  EXPECT_EQ(session.Press({.key = std::nullopt, .x = 55, .y = 5}), PressRefusal::None) << "nothing else can be meant";
  Run(300ms);
  EXPECT_THAT(Sent(), ElementsAre("Ta"));
  (void)session.TakeReports();

  // It changes while the press waits for the link: the link is busy with another one when it is made.
  panel.onSend = [&] {
    panel.onSend = nullptr;
    EXPECT_EQ(session.Press({.key = std::nullopt, .x = 25, .y = 5}), PressRefusal::None);
    EXPECT_FALSE(session.Step(std::nullopt)) << "one step at a time";
    panel.Show({Touch(65, {20, 0, 10, 10}, "Open", 2)});
  };
  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
  Run(500ms);
  EXPECT_THAT(Sent(), ElementsAre("Ta"));
  const auto reports = session.TakeReports();
  ASSERT_EQ(reports.size(), 2U);
  EXPECT_EQ(reports[1].refusal, PressRefusal::Changed);

  // That it looks pressed makes no other thing of it.
  panel.Show({Touch(64, {0, 0, 10, 10}, "Stop", 1, 4)});
  Run(33ms);
  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
  session.Show(false);
  pacer.Sleep(1100ms);
  Run(10ms);
  EXPECT_EQ(refused(kStart), PressRefusal::OldScreen);
  EXPECT_THAT(Sent(), IsEmpty());
}

// On another page the same word may start another machine.
TEST_F(PanelSessionTest, DuringAPageChangeWhatCanOnlyBeMeantIsPressedAtOnce) {
  Operate();
  panel.Show({Touch(66, {40, 0, 10, 10}, "Recipes", 5), Touch(67, {60, 0, 10, 10}, "Menu")});
  Run(500ms);
  panel.Show({Page(2), Touch(64, {0, 0, 10, 10}, "Start"), Touch(66, {40, 0, 10, 10}, "Recipes", 5),
              Touch(70, {80, 0, 10, 10}, "Oven"), Touch(71, {55, 0, 20, 20}, "Keypad")});
  while (session.State().page != 2) Run(1ms);
  const struct {
    int x;
    PressRefusal refusal;
  } cases[] = {{5, PressRefusal::JustChanged},    // "Start" of the page before lay there
               {45, PressRefusal::None},          // a link, which moves nothing
               {85, PressRefusal::None},          // nothing lay there
               {65, PressRefusal::JustChanged}};  // lies over where "Menu" was
  for (const auto& each : cases) {
    EXPECT_EQ(session.Press({.key = std::nullopt, .x = each.x, .y = 5}), each.refusal) << each.x;
  }
  Run(250ms);
  EXPECT_THAT(Sent(), ElementsAre("Ta", "Ta"));
  EXPECT_EQ(session.Press(kStart), PressRefusal::None);
}

// Of a page that comes in pieces: what was drawn when it was pressed, or lay there before and is the same.
TEST_F(PanelSessionTest, WhatIsStillOnItsWayIsPressedWhenItIsWhatWasSeen) {
  using enum PressRefusal;
  Operate();
  const PanelRecord menu = Touch(66, {80, 0, 10, 10}, "Menu", 5);
  const PanelRecord drawn = Rectangle(70, {50, 0, 10, 10}, 0xFFFF);
  const PanelRecord oven = Touch(71, {50, 0, 10, 10}, "Oven");
  const PanelRecord elsewhere = Rectangle(80, {0, 20, 5, 5}, 0xFFFF);
  const struct {
    const char* name;
    std::vector<PanelRecord> before, after;  // the press
    int x;
    bool isKept;
    std::string first;  // that is sent
    PressRefusal refusal;
  } cases[] = {{"seen", {drawn}, {elsewhere, oven}, 55, false, "Ta", None},
               {"seen, and held", {drawn}, {elsewhere, oven}, 55, true, "Do", None},
               {"drawn later", {}, {drawn, oven}, 55, false, "", Changed},
               {"nothing", {drawn}, {elsewhere}, 55, false, "", NothingThere},
               {"disabled", {drawn}, {Touch(71, {50, 0, 10, 10}, "Oven", 1, 2)}, 55, false, "", Disabled},
               {"another page", {drawn}, {Page(99), oven}, 55, false, "", Changed},
               {"a link of both pages", {}, {Rectangle(65, {80, 0, 10, 10}, 0xFFFF), menu}, 85, false, "Ta", None},
               {"another machine", {}, {Touch(64, {0, 0, 10, 10}, "Start")}, 5, false, "", JustChanged},
               {"never whole", {drawn}, std::vector(900, elsewhere), 55, false, "", TooSlow}};
  int page = 1;
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    panel.most = 1000;
    panel.Show({Page(++page), Touch(64, {0, 0, 10, 10}, "Start"), menu});
    Run(3s);
    (void)Sent();
    panel.most = 1;
    panel.Show({Page(++page)});
    panel.Show(each.before);
    panel.Show(each.after);
    while (session.State().page != page) Run(1ms);
    for (std::size_t i = 0; i < each.before.size(); ++i) Run(1ms);
    const PanelPlace place{.key = std::nullopt, .x = each.x, .y = 5};
    EXPECT_EQ(session.Press(place), None);
    Run(1200ms, each.isKept ? std::optional(place) : std::nullopt);
    const auto sent = Sent();
    EXPECT_EQ(sent.empty() ? "" : sent.front(), each.first);
    const auto reports = session.TakeReports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].refusal, each.refusal);
  }  // Tabs: two pressed one behind the other, the second while the first turns the page.
  panel.most = 1000;
  panel.Show({Page(++page), menu, Touch(67, {60, 0, 10, 10}, "Recipes", 5)});
  Run(3s);
  panel.onSend = [&] {
    panel.onSend = nullptr;
    EXPECT_EQ(session.Press({.key = std::nullopt, .x = 85, .y = 5}), None);
    panel.Show({Page(++page), Touch(75, {80, 0, 10, 10}, "Menu", 5)});
  };
  EXPECT_EQ(session.Press({.key = std::nullopt, .x = 65, .y = 5}), None);
  Run(300ms);
  EXPECT_THAT(Sent(), ElementsAre("Ta", "Ta"));
  EXPECT_EQ(panel.events.back().page, page);
}

TEST_F(PanelSessionTest, APressWhoseAnswerIsLostIsToldAsUnsureAndNotRepeated) {
  Operate();
  panel.isDown = true;
  ASSERT_EQ(session.Press(kStart), PressRefusal::None);
  Run(2s, kStart);
  EXPECT_THAT(Sent(), ElementsAre("Do"));
  auto reports = session.TakeReports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].result, PressReport::Result::Unsure);
  PanelState state = session.State();
  EXPECT_EQ(state.mode, PanelMode::View);
  EXPECT_EQ(state.sight, PanelSight::Old);
  EXPECT_THAT(state.whyViewing, HasSubstr("link was lost"));
  panel.isDown = false;
  Run(1s, kStart);
  EXPECT_EQ(session.State().sight, PanelSight::Live);
  EXPECT_THAT(Sent(), IsEmpty());

  for (const auto verdict : {PanelVerdict::NotWhatWasSeen, PanelVerdict::OperatedAtPanel, PanelVerdict::Late}) {
    panel.verdict = PanelVerdict::Done;
    if (session.State().mode == PanelMode::View) Operate();
    panel.verdict = verdict;
    ASSERT_EQ(session.Press(kStart), PressRefusal::None);
    Run(300ms, kStart);
    reports = session.TakeReports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].verdict, verdict);
    EXPECT_THAT(reports[0].text, HasSubstr("The controller has pressed nothing"));
    EXPECT_FALSE(session.State().held);
  }
}

TEST_F(PanelSessionTest, AScreenThatCannotBeStaysOldUntilItIsToldAnew) {
  const Picture before = *session.Dots();
  panel.Show({{64, 99, "what is this"}, Rectangle(70, {0, 0, 50, 50}, 0xFFFF)});
  Run(3s);
  EXPECT_EQ(session.State().sight, PanelSight::Old);
  EXPECT_THAT(session.State().reason, HasSubstr("slot 64"));
  EXPECT_EQ(*session.Dots(), before) << "nothing of it is shown";
  panel.epoch = 10;
  panel.panel.pages = 5;
  panel.Show({});
  Run(1s);
  EXPECT_EQ(session.State().sight, PanelSight::Old) << "it is told from the start, and still cannot be";
  session.LoseLink("The cable is out.");
  EXPECT_EQ(session.State().reason, "The cable is out.");
}

TEST_F(PanelSessionTest, ARestartIsFollowedAndNothingIsAskedForWhileHidden) {
  Operate();
  panel.epoch = 10;
  panel.panel.pages = 5;
  Run(1s);
  EXPECT_EQ(session.Panel()->pages, 5);
  EXPECT_EQ(session.State().whyViewing, "The panel is another one now.") << "consent was for the other";
  EXPECT_EQ(session.State().page, 1);
  EXPECT_FALSE(session.TakeChanged().empty());
  session.Show(false);
  panel.sent.clear();
  Run(5s);
  EXPECT_THAT(panel.sent, IsEmpty());
  EXPECT_FALSE(session.NextStep());
  session.Show(true);
  EXPECT_EQ(session.NextStep(), 0us);
}

// Hands that press whatever there is on screens that change, over a link that fails at times: each request, and what
// was told, is the same again.
TEST_F(PanelSessionTest, WildHandsAreFollowedAlwaysAlike) {
  std::mt19937 chance(7);
  const auto below = [&chance](unsigned count) { return static_cast<int>(chance() % count); };
  for (int i = 0; i < 1000; ++i) {
    const PanelPlace place{.key = std::nullopt, .x = 5 + 20 * below(3), .y = 5};
    const std::optional<PanelPlace> pressed = below(3) > 0 ? std::optional(place) : std::nullopt;
    const int slot = 64 + below(3);
    const std::string name(1, static_cast<char>('A' + below(2)));
    const PanelRecord touch = Touch(slot, {20 * (slot - 64), 0, 10, 10}, name, 1 + below(5), below(8) / 6 * 2);
    const int what = below(60);
    if (i % 25 == 0) {  // all is well again
      panel.isDown = panel.isLeaseElsewhere = false;
      panel.verdict = PanelVerdict::Done;
      panel.most = 1000;
      session.Show(true);
      session.Resume();
    }
    if (what < 8 || what > 26) panel.log += "press: " + std::to_string(static_cast<int>(session.Press(place))) + "\n";
    if (what >= 8 && what < 12) panel.Show({touch});
    if (what == 12) panel.Show({Page(1 + below(3)), touch});
    if (what == 13) panel.Show({{static_cast<std::uint16_t>(slot), 0, ""}});
    if (what == 14 || session.State().mode == PanelMode::View) session.AskToOperate("Anna", below(2) == 0);
    if (what == 15) below(3) == 0 ? session.Leave() : session.DropPresses();
    if (what == 16) panel.isDown = below(3) == 0, panel.isSpared = below(2) == 0;
    if (what == 17) panel.verdict = static_cast<PanelVerdict>(below(3) == 0 ? below(8) : 0);
    if (what == 18) panel.isHeld = false;
    if (what == 19) session.Show(below(4) > 0);
    if (what == 20) below(3) == 0 ? session.Pause() : session.Resume();
    if (what == 21) panel.most = below(3) == 0 ? 1 : 1000;
    if (what == 22 && below(3) == 0) ++panel.connection;
    if (what == 23 && below(3) == 0) ++panel.epoch;
    if (what == 24) panel.isLeaseElsewhere = below(3) == 0;
    if (what == 25) session.AskNow(), pacer.Sleep(below(700) * 1ms);
    Run((below(4) == 0 ? 10 : 1) * below(60) * 1ms, pressed);
    for (const PressReport& report : session.TakeReports()) {
      panel.log += report.what + ": " + report.text;
      for (const int part : {int(report.result), int(report.action), int(report.verdict)})
        panel.log += " " + std::to_string(part);
      panel.log += "\n";
    }
    const PanelState state = session.State();
    if (i % 10 == 0) panel.log += std::to_string(state.age / 1ms) + " " + state.reason + "|" + state.whyViewing + "\n";
  }
}

}  // namespace
}  // namespace kv::panel
