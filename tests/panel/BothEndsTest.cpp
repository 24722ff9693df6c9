// What is pressed on a host's screen happens in the simulated controller, whatever happens on the way.

#include <gmock/gmock.h>

#include "KvTele2/panel/PanelSession.h"
#include "KvTele2/panel/ScreenText.h"
#include "tests/driver/Fixture.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;

// Everything that a host can know of a screen, as text.
std::string AllOf(const PanelSession& session, const ScreenResources& resources) {
  std::string all = PlainText(*session.Model(), resources);
  for (const ScreenText& text : TextsOf(*session.Model(), resources)) {
    all += text.text + (text.touch ? TouchText(*text.touch) : "") + "\n";
  }
  return all;
}

struct Watcher {
  explicit Watcher(const std::string& model)
      : fixture(model), session({.pacer = fixture.pacer, .link = *fixture.channel.Panel(), .resources = resources}) {}
  void Run(Duration span, const std::optional<PanelPlace>& pressed = std::nullopt) {
    const Instant end = fixture.pacer.Now() + span;
    while (fixture.pacer.Now() < end) {
      if (!session.Step(pressed)) fixture.pacer.Sleep(std::clamp<Duration>(session.NextStep().value_or(5ms), 1ms, 5ms));
    }
  }
  bool Operate() {
    session.AskToOperate("Anna", true);
    Run(400ms);
    return session.State().mode == PanelMode::Operate;
  }
  // What has this name, on either kind of display.
  std::optional<PanelPlace> Find(const std::string& name) {
    for (const ScreenText& text : TextsOf(*session.Model(), resources)) {
      if (!text.touch || text.touch->name != name) continue;
      return PanelPlace{.key = text.key, .x = text.place.x + 5, .y = text.place.y + 5};
    }
    return std::nullopt;
  }

  Fixture fixture;
  ScreenResources resources;
  PanelSession session;
};

TEST(BothEnds, AButtonThatIsPressedStartsTheMachineAndAHeldOneMovesItAsLongAsItIsHeld) {
  for (const std::string model : {"K670", "K220-22-R1", "Q51", "PX1"}) {
    SCOPED_TRACE(model);
    Watcher host(model);
    host.Run(1s);
    ASSERT_TRUE(host.Operate());
    const auto press = [&](const std::string& name, Duration held) {
      const auto place = host.Find(name);
      ASSERT_TRUE(place) << name;
      ASSERT_EQ(host.session.Press(*place), PressRefusal::None);
      host.Run(held, place);
      host.Run(1s);
    };
    press("Start", 300ms);
    EXPECT_THAT(AllOf(host.session, host.resources), ::testing::HasSubstr("RUNNING"));
    press("Stop", 50ms);
    EXPECT_THAT(AllOf(host.session, host.resources), ::testing::Not(::testing::HasSubstr("RUNNING")));
    for (const PressReport& report : host.session.TakeReports()) EXPECT_EQ(report.result, PressReport::Result::Done);
  }
}

// On a line of 115200 baud, whose time is counted here byte by byte.
TEST(BothEnds, ATouchAndAPageChangeOnAUsualSerialLineAreQuick) {
  Watcher host("K670");
  host.Run(1s);
  ASSERT_TRUE(host.Operate());
  const auto touch = [&](const std::string& name, const auto& isSeen) {
    const auto place = host.Find(name);
    EXPECT_TRUE(place) << name;
    const Instant start = host.fixture.pacer.Now();
    EXPECT_EQ(host.session.Press(place.value_or(PanelPlace{})), PressRefusal::None);
    while (!isSeen() && host.fixture.pacer.Now() < start + 2s) host.Run(1ms, place);
    return host.fixture.pacer.Now() - start;
  };
  const auto bytes = [&] {
    const LinkQuality quality = host.fixture.channel.Quality();
    return quality.bytesSent + quality.bytesReceived;
  };
  const auto touched = touch("Start", [&] { return PlainText(*host.session.Model(), {}).contains("RUNNING"); });
  EXPECT_LE(touched, 30ms);
  host.Run(500ms);
  const std::uint64_t before = bytes();
  const auto changed = touch("Alarms", [&] { return host.session.State().page == 4 && host.session.State().isWhole; });
  EXPECT_LE(changed, 100ms);
  EXPECT_LE(bytes() - before, 800U);
  host.Run(500ms);
  (void)touch("Overview", [&] { return host.session.State().page == 1; });
  host.Run(400ms);  // what has just come is not pressed
  EXPECT_LE(touch("Stop", [&] { return !host.session.TakeReports().empty(); }), 80ms);
}

// What is pressed under faults, and what counts how often it was executed: a key that turns pages, or a digit that is
// typed on a display that is touched.
struct Counted {
  explicit Counted(Watcher& watched) : host(watched) {
    for (const char* name : {"Recipe", "Volume", "8"}) {
      if (host.session.Panel()->kind == PanelKind::Text) break;
      if (place.x != 0) (void)host.session.Press(place);
      host.Run(1s);
      place = host.Find(name).value_or(PanelPlace{});
    }
    (void)host.session.TakeReports();
    before = Count();
  }
  [[nodiscard]] int Count() const {
    const std::string text = PlainText(*host.session.Model(), host.resources);
    return place.key ? host.session.State().page : static_cast<int>(std::ranges::count(text, '8'));
  }
  [[nodiscard]] int Times() const {
    constexpr int kPages = 6;
    return place.key ? (Count() - before + kPages) % kPages : Count() - before;
  }
  Watcher& host;
  PanelPlace place = host.session.Panel()->kind == PanelKind::Text ? PanelPlace{.key = std::uint8_t{19}} : PanelPlace{};
  int before = 0;
};

// Lost, late, doubled, damaged and cut replies, at times and at each exchange in turn: what was pressed was pressed
// once, or is told as not done or unsure; and in the end the screen is the controller's own.
TEST(BothEnds, UnderFaultsAPressHappensOnceOrIsToldAsNotDone) {
  std::vector<std::string> faults{"noreply:every=4",     "double:every=4",        "damage:every=4",
                                  "double:every=4",      "damage:dir=in,every=4", "late:ms=300,every=4",
                                  "lost:at=20,every=13", "lost:at=20,on=PE",      "lost:at=20,on=block,nth=40"};
  for (const std::string kind : {"noreply:", "double:", "late:ms=300,", "cut:after=30,", "lost:at=20,"}) {
    for (int nth = 1; nth <= 8; ++nth) faults.push_back(kind + "nth=" + std::to_string(nth));
  }
  for (const std::string model : {"K220-22-R1", "Q51", "K670"}) {
    for (const std::string& fault : faults) {
      SCOPED_TRACE(model + " " + fault);
      const int presses = fault.contains("nth=") ? 2 : 4;
      Watcher host(model);
      host.Run(1s);
      EXPECT_TRUE(host.Operate());
      const Counted counted(host);
      host.fixture.plant.UseFaults({fault});
      int done = 0;
      int unsure = 0;
      for (int i = 0; i < presses; ++i) {
        if (host.session.State().mode == PanelMode::View) (void)host.Operate();
        (void)host.session.Press(counted.place);
        host.Run(200ms, counted.place);
        host.Run(800ms);
        for (const PressReport& report : host.session.TakeReports()) {
          if (report.action != PanelAction::Down && report.action != PanelAction::Tap) continue;
          done += report.result == PressReport::Result::Done ? 1 : 0;
          unsure += report.result == PressReport::Result::Unsure ? 1 : 0;
        }
      }
      host.fixture.plant.UseFaults({});
      host.session.Leave();
      host.Run(3s);
      EXPECT_EQ(host.session.State().sight, PanelSight::Live);
      EXPECT_GE(counted.Times(), done);
      EXPECT_LE(counted.Times(), done + unsure);
      EXPECT_GE(done + unsure, fault.starts_with("lost") ? 1 : presses);
      PanelSession fresh(
          {.pacer = host.fixture.pacer, .link = *host.fixture.channel.Panel(), .resources = host.resources});
      while (!fresh.Model() || !fresh.Model()->IsWhole()) (void)fresh.Step(std::nullopt);
      EXPECT_EQ(AllOf(host.session, host.resources), AllOf(fresh, host.resources));
    }
  }
}

// When, on a serial line: that depends on how long the longest reply takes on it.
TEST(BothEnds, WhatIsLostIsAskedForAgain) {
  for (const std::string model : {"Q51", "K670"}) {
    for (const std::string fault : {"noreply:every=3", "double:every=4", "late:ms=700,every=5", "lost:at=9,nth=7",
                                    "noreply:on=PE,nth=1", "noreply:on=PE"}) {
      Watcher host(model);
      host.Run(1s);
      EXPECT_TRUE(host.Operate());
      host.fixture.plant.UseFaults({fault});
      (void)host.session.Press(host.Find("Start").value_or(PanelPlace{}));
      host.Run(4s);
      host.session.Leave();
      host.Run(1s);
    }
  }
}

TEST(BothEnds, NothingIsPressedAfterTheLinkWentToAnotherController) {
  sim::SimulatorOptions another;
  another.serialNumber = 99;
  for (const std::string model : {"K670", "K220-22-R1"}) {
    Watcher host(model);
    host.Run(1s);
    ASSERT_TRUE(host.Operate());
    const PanelPlace start = host.Find("Start").value_or(PanelPlace{});
    EXPECT_EQ(host.session.Press(start), PressRefusal::None) << "on its way";
    host.fixture.plant.isCut = true;
    host.fixture.plant.Connect(model, {}, another);
    for (int i = 0; i < 5; ++i) {
      host.Run(1s, start);
      EXPECT_FALSE(host.Operate());
      (void)host.session.Press(start);
    }
    const auto& other = *host.fixture.plant.controller;
    EXPECT_EQ(other.Executions() + other.MostBlockExecutions(), 0) << model;
  }
}

}  // namespace
}  // namespace kv::panel
