// The host's screen is the simulated controller's own, dot for dot, whatever happens on the way.

#include <gmock/gmock.h>

#include <random>

#include "KvCmDrv1/wire/PanelCodec.h"
#include "KvTele2/panel/PanelSession.h"
#include "KvTele2/panel/ScreenText.h"
#include "simulator/panel/Drawing.h"
#include "simulator/panel/Fonts.h"
#include "tests/driver/Fixture.h"
#include "tests/panel/Records.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;
using namespace test;

// A random item of a colour display: kind and body.
struct RandomItem {
  explicit RandomItem(std::mt19937& random) {
    const auto number = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    const std::string place = Words({number(90), number(70), number(60), number(40)});
    constexpr int kKinds[] = {0, 6, 16, 17, 18, 19, 20, 21};
    kind = kKinds[number(8)];
    if (kind == 6) body = place + Byte(1 + number(5)) + Byte(number(8)) + "name";
    if (kind == 16) body = place + Words({number(65536)});
    if (kind == 17) body = place + Byte(number(9)) + Words({number(65536), number(65536)});
    if (kind == 18) body = place + Words({number(65536)});
    if (kind == 20) body = Words({number(90), number(70), 1});
    if (kind == 21) {
      body = place + Byte(number(2)) + Words({number(10001), number(65536), number(65536)});
    }
    if (kind != 19) return;
    body = Words({number(90), number(70), number(90), 1 + number(4), number(65536), number(65536)}) +
           Byte(number(3) | number(2) << 2);
    for (int i = number(12); i-- > 0;) body += static_cast<char>(number(256));
  }
  int kind;
  std::string body;
};

// For a long run: --gtest_shuffle --gtest_repeat=N, which takes another seed each time.
TEST(BothEnds, DrawTheSameDotsAndTheHostOnlyThoseThatHaveChanged) {
  std::mt19937 random(static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed()));
  ScreenResources resources;
  for (const sim::PanelFont& font : sim::PanelFonts()) {
    ASSERT_TRUE(resources.Add(PanelResourceKind::Font, font.id, font.data));
  }
  const std::string image = SmallBitmap();
  ASSERT_TRUE(resources.Add(PanelResourceKind::Image, 1, image));
  sim::Screen screen(9);
  ScreenModel model(ColourPanel(128, 96));
  Drawing drawing(model, resources);
  for (int round = 0; round < 250; ++round) {
    if (round % 60 == 0) screen.ShowPage(1, static_cast<std::uint16_t>(random()), "page");
    for (auto i = random() % (round % 50 == 0 ? 100 : 6); i-- > 0;) {
      const RandomItem item(random);
      screen.Put(64 + random() % 150, static_cast<sim::RecordKind>(item.kind), item.body);
    }
    const Picture before = drawing.Dots();
    std::vector<PixelRect> areas;
    do {
      const auto told = screen.Since(model.Revision().epoch, model.Revision().number, 84 + random() % 1000);
      std::string data = Words({9}) + std::string(14, '\0') + told.records;
      PutLittleEndian(data.data() + 2, told.number, 4);
      data[12] = static_cast<char>((told.hasMore ? 1 : 0) | (told.beginsAnew ? 0x20 : 0));
      const auto delta = model.Take(ReadPanelChanges(data).value());
      ASSERT_TRUE(delta) << delta.error();
      drawing.Note(*delta);
      std::ranges::copy(drawing.Draw(), std::back_inserter(areas));
    } while (!model.IsWhole());
    const sim::Picture wanted =
        sim::DrawScreen(screen, 128, 96, [&](std::uint16_t id) { return id == 1 ? std::string_view(image) : ""; });
    for (int y = 0; y < 96; ++y) {
      for (int x = 0; x < 128; ++x) {
        const Dot dot = drawing.Dots().At(x, y);
        ASSERT_EQ(dot, kOpaque | wanted.At(x, y)) << "round " << round << " at " << x << "," << y;
        const auto holds = [&](const PixelRect& area) { return area.Holds(x, y); };
        ASSERT_TRUE(dot == before.At(x, y) || std::ranges::any_of(areas, holds)) << "not told: " << x << "," << y;
      }
    }
  }
}

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

// Lost, late, doubled, damaged and cut replies: what was pressed was pressed once, or is told as not done or unsure.
// The key turns pages, so each press that was executed shows; and in the end the screen is the controller's own.
TEST(BothEnds, UnderFaultsAPressHappensOnceOrIsToldAsNotDone) {
  constexpr int kPages = 6;
  const std::string faults[] = {"noreply:every=4",      "double:every=4",        "damage:every=4",
                                "cut:after=30,every=4", "damage:dir=in,every=4", "late:ms=300,every=4",
                                "lost:at=20,every=13",  "lost:at=20,on=PE",      "lost:at=20,on=block,nth=40"};
  for (const std::string model : {"K220-22-R1", "Q51"}) {
    for (const std::string& fault : faults) {
      SCOPED_TRACE(model + " " + fault);
      Watcher host(model);
      host.Run(1s);
      EXPECT_TRUE(host.Operate());
      const int first = host.session.State().page;
      host.fixture.plant.UseFaults({fault});
      int done = 0;
      int unsure = 0;
      for (int i = 0; i < 5; ++i) {
        if (host.session.State().mode == PanelMode::View) (void)host.Operate();
        const PanelPlace right{.key = std::uint8_t{19}};
        (void)host.session.Press(right);
        host.Run(200ms, right);
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
      const int turned = (host.session.State().page - first + kPages) % kPages;
      EXPECT_GE(turned, done);
      EXPECT_LE(turned, done + unsure);
      EXPECT_GE(done + unsure, fault.starts_with("lost") ? 1 : 5);
      PanelSession fresh(
          {.pacer = host.fixture.pacer, .link = *host.fixture.channel.Panel(), .resources = host.resources});
      while (!fresh.Model() || !fresh.Model()->IsWhole()) (void)fresh.Step(std::nullopt);
      EXPECT_EQ(AllOf(host.session, host.resources), AllOf(fresh, host.resources));
    }
  }
}

}  // namespace
}  // namespace kv::panel
