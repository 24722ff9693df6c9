// Screens that change at random, over lines on which everything goes wrong: what a host shows as the screen of now is,
// dot for dot, what the controller had within the age that the host names.
//
// KV_CHANGES is the number of changes when it is set, a million before a release.

#include <gmock/gmock.h>

#include <cstdlib>
#include <deque>
#include <random>

#include "KvCmDrv1/wire/PanelCodec.h"
#include "KvTele2/panel/PanelSession.h"
#include "base/Crc32.h"
#include "base/Numbers.h"
#include "simulator/HexText.h"
#include "simulator/panel/Drawing.h"
#include "simulator/panel/Fonts.h"
#include "simulator/panel/Panel.h"
#include "tests/matrix/MatrixFixture.h"
#include "tests/panel/Records.h"
#include "tests/support/WeatherSeeds.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;
using namespace test;

ScreenResources PanelResources() {
  ScreenResources resources;
  for (const sim::PanelFont& font : sim::PanelFonts()) {
    EXPECT_TRUE(resources.Add(PanelResourceKind::Font, font.id, font.data));
  }
  EXPECT_TRUE(resources.Add(PanelResourceKind::Image, 1, SmallBitmap()));
  return resources;
}

// A random item of a display: kind and body. Nine kinds of a colour display, two of a text display.
struct RandomItem {
  RandomItem(std::mt19937& random, bool isColour) {
    const auto number = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    if (!isColour) {
      kind = number(4) == 0 ? 4 : 3;
      slot = kind == 4 ? 2U : 16U + random() % 4;
      if (kind == 4) body = Byte(number(20)) + Byte(number(4)) + Byte(number(3));
      for (int i = 0; kind == 3 && i < 30; ++i) body += Byte(i < 20 ? number(256) : number(256) & 0x77);
      return;
    }
    const std::string place = Words({number(90), number(70), number(60), number(40)});
    constexpr int kKinds[] = {0, 6, 16, 17, 18, 19, 20, 21};
    kind = kKinds[number(8)];
    slot = 64 + random() % 150;
    if (kind == 6) body = place + Byte(1 + number(5)) + Byte(number(8)) + "name";
    if (kind == 16 || kind == 18) body = place + Words({number(65536)});
    if (kind == 17) body = place + Byte(number(9)) + Words({number(65536), number(65536)});
    if (kind == 20) body = Words({number(90), number(70), 1});
    if (kind == 21) body = place + Byte(number(2)) + Words({number(10001), number(65536), number(65536)});
    if (kind != 19) return;
    body = Words({number(90), number(70), number(90), 1 + number(4), number(65536), number(65536)}) +
           Byte(number(3) | number(2) << 2);
    for (int i = number(12); i-- > 0;) body += static_cast<char>(number(256));
  }
  int kind = 0;
  std::size_t slot = 0;
  std::string body;
};

// A controller whose screen anybody may fill; all else is another one's.
class WildController final : public sim::Controller {
 public:
  WildController(std::unique_ptr<sim::Controller> inner, const sim::Display& display)
      : mInner(std::move(inner)), mDisplay(display) {}

  void Change() {
    const auto chance = mRandom() % 600;
    if (chance == 0) return Restart();
    const auto background = static_cast<sim::Colour>(IsColour() ? mRandom() : 0);
    if (chance < 8) return mScreen.ShowPage(static_cast<std::uint16_t>(1 + chance % 3), background, "page");
    const RandomItem item(mRandom, IsColour());
    mScreen.Put(item.slot, static_cast<sim::RecordKind>(item.kind), item.body);
    ++mChanges;
  }
  [[nodiscard]] int Changes() const { return mChanges; }
  // Whether the screen had these dots when it was asked for, at this moment or later.
  [[nodiscard]] bool HadSince(Instant from, std::uint32_t dots) const {
    return std::ranges::any_of(mTold, [&](const auto& one) { return one.first >= from && one.second == dots; });
  }
  // The check of the dots that it shows now.
  [[nodiscard]] std::uint32_t Dots() const { return CheckOf(IsColour() ? ColourDots() : TextDots()); }
  [[nodiscard]] static std::uint32_t CheckOf(const Picture& picture) {
    return Crc32({reinterpret_cast<const char*>(picture.Dots().data()), picture.Dots().size_bytes()});
  }

  void Advance(Instant now) override {
    mNow = now;
    mInner->Advance(now);
  }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    constexpr std::size_t kEcho = 6;  // letters and tag
    constexpr std::size_t kCheck = 8;
    if (!text.starts_with("PD") && !text.starts_with("PC")) return mInner->ExecuteText(text, connection);
    const std::string data = sim::HexReader(text.substr(kEcho, text.size() - kEcho - kCheck)).RestAsBytes();
    sim::TextReply reply;
    reply.text = text.substr(0, kEcho);
    sim::AppendHexOfBytes(reply.text, text[1] == 'D' ? Describe() : Tell(data, 512));
    return reply;
  }
  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    if (request.opCode == 270) return {.payload = Describe()};
    if (request.opCode == 271) return {.payload = Tell(request.payload, 8192)};
    return mInner->ExecuteBlock(request, connection);
  }
  void Restart() override {
    mInner->Restart();
    mScreen = sim::Screen(static_cast<std::uint16_t>(mScreen.Epoch() + 1));
  }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override { mInner->SetLying(lying); }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

 private:
  [[nodiscard]] bool IsColour() const { return mDisplay.kind == sim::Display::Kind::ColourDots; }
  [[nodiscard]] std::string Describe() const { return sim::Panel(mDisplay, 1).Describe(0, 0); }
  [[nodiscard]] std::string Tell(std::string_view data, std::size_t limit) {
    const auto request = sim::ReadChangesRequest(data, limit).value();
    const std::string reply = Since(request.epoch, request.number, request.most - sim::ChangesHead::kSize);
    mTold.emplace_back(mNow, Dots());
    if (mTold.size() > 300) mTold.pop_front();
    return reply;
  }
  [[nodiscard]] std::string Since(std::uint16_t epoch, std::uint32_t number, std::size_t room) const {
    const auto told = mScreen.Since(epoch, number, room);
    return sim::WriteChangesHead(
               {.epoch = mScreen.Epoch(),
                .number = told.number,
                .page = mScreen.Page(),
                .flags = static_cast<std::uint8_t>((told.hasMore ? 1 : 0) | (told.beginsAnew ? 32 : 0))}) +
           told.records;
  }
  [[nodiscard]] Picture ColourDots() const {
    const sim::Picture drawn = sim::DrawScreen(mScreen, mDisplay.width, mDisplay.height, [&](std::uint16_t id) {
      return id == 1 ? std::string_view(mImage) : "";
    });
    Picture dots(drawn.Width(), drawn.Height(), 0);
    for (int y = 0; y < drawn.Height(); ++y) {
      for (int x = 0; x < drawn.Width(); ++x) dots.Row(y)[static_cast<std::size_t>(x)] = kOpaque | drawn.At(x, y);
    }
    return dots;
  }
  // Nothing else draws a text display, so this is what a host sees that has never seen it before.
  [[nodiscard]] Picture TextDots() const {
    const ScreenResources none;
    ScreenModel model(ReadPanelDescription(Describe()).value());
    EXPECT_TRUE(model.Take(ReadPanelChanges(Since(0, 0, 8192)).value()));
    Drawing drawing(model, none);
    (void)drawing.Draw();
    return drawing.Dots();
  }

  std::unique_ptr<sim::Controller> mInner;
  sim::Display mDisplay;
  std::string mImage = SmallBitmap();
  std::mt19937 mRandom{20261122};
  sim::Screen mScreen{9};
  int mChanges = 0;
  Instant mNow{};
  std::deque<std::pair<Instant, std::uint32_t>> mTold;  // when, and the check of all its dots then
};

class Watched {
 public:
  Watched(const std::string& model, const sim::Display& display) {
    sim::SimulatorOptions options;
    options.model = model;
    options.baud = 115200;
    auto made = std::make_unique<WildController>(sim::Controller::Create(options).value(), display);
    controller = made.get();
    simulated = sim::SimulatedController::CreateAround(std::move(made), options).value();
    channel = driver.GetChannel();
    session.emplace(PanelParts{.pacer = pacer, .link = *channel->Panel(), .resources = resources});
  }
  // Waits for the next exchange and makes it, and holds what is shown against what the controller had.
  void Step() {
    const Picture before = session->Dots() ? *session->Dots() : Picture();
    while (!session->Step(std::nullopt)) {
      pacer.Sleep(std::max<Duration>(session->NextStep().value_or(5ms), 1ms));
      Check();
    }
    Check();
    if (!session->Dots() || session->Dots()->Bounds() != before.Bounds()) return;
    const std::vector<PixelRect> areas = session->TakeChanged();
    for (int y = 0; y < before.Height(); ++y) {
      for (int x = 0; x < before.Width(); ++x) {
        if (before.At(x, y) == session->Dots()->At(x, y)) continue;
        const auto holds = [&](const PixelRect& area) { return area.Holds(x, y); };
        ASSERT_TRUE(std::ranges::any_of(areas, holds)) << "not told: " << x << "," << y;
      }
    }
  }
  void Check() {
    const PanelState state = session->State();
    const bool isOfNow = state.sight == PanelSight::Live && state.isWhole;
    ++(isOfNow ? live : old);
    if (!isOfNow) return;
    ASSERT_LE(state.age, 1s);
    ASSERT_TRUE(controller->HadSince(pacer.Now() - state.age, WildController::CheckOf(*session->Dots())));
  }

  VirtualPacer pacer;
  WildController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  Driver driver{pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr};
  std::shared_ptr<Channel> channel;
  ScreenResources resources = PanelResources();
  std::optional<PanelSession> session;
  int live = 0;
  int old = 0;  // or not whole
};

TEST(WildScreen, IsShownAsTheControllerHasItOrIsMarkedAsOld) {
  const char* text = std::getenv("KV_CHANGES");
  const int changes = text != nullptr ? static_cast<int>(ParseInteger(text).value_or(0)) : 4000;
  const std::vector<std::string> storm = {"noreply:p=0.1",        "late:ms=300,p=0.1",  "double:p=0.1",
                                          "damage:chars=2,p=0.1", "cut:after=40,p=0.1", "damage:dir=in,p=0.1",
                                          "lost:away=3000,p=0.02"};
  const struct {
    const char* model;
    sim::Display display;
    std::vector<std::string> faults;
    int share;  // of the changes, in hundredths
  } cases[] = {{"K670", sim::ColourDisplay(128, 96), {}, 20},
               {"K670", sim::ColourDisplay(128, 96), kRoughWeather, 50},
               {"K670", sim::ColourDisplay(128, 96), storm, 10},
               {"Q51", sim::TextDisplay(20, 4), kRoughWeather, 20}};
  for (const auto& entry : cases) {
    Watched host(entry.model, entry.display);
    ASSERT_TRUE(host.simulated->UseFaults(entry.faults));
    std::mt19937 random(7);
    const std::int64_t wanted = std::int64_t{changes} * entry.share / 100;
    while (host.controller->Changes() < wanted && !::testing::Test::HasFatalFailure()) {
      for (auto i = random() % (random() % 50 == 0 ? 100 : 6); i-- > 0;) host.controller->Change();
      host.Step();
    }
    ASSERT_TRUE(host.simulated->UseFaults({}));
    for (int i = 0; i < 20; ++i) host.Step();
    ASSERT_EQ(host.session->State().sight, PanelSight::Live);
    EXPECT_EQ(WildController::CheckOf(*host.session->Dots()), host.controller->Dots());
    EXPECT_GT(host.live, host.old / 4) << "it would be no check";
  }
}

}  // namespace
}  // namespace kv::panel
