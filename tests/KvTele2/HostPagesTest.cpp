// What the pages and the side of the main window show, and what is done from them.

#include <set>

#include "KvTele2/Sign.h"
#include "host/shared/GridFileNames.h"
#include "tests/KvTele2/HostFixture.h"

namespace kv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;

TEST(SignTest, EveryStateIsToldByItsShapeAndItsWords) {
  using enum ConnectionState;
  const struct {
    ConnectionState connection;
    const char* told;  // by the controller; null: none is known
    bool isSilent;
    const char* heading;
    const char* machine;
    const char* link;
  } cases[] = {
      {Offline, nullptr, false, "Line 3 - K220 - Off line", "-", "Closed"},
      {Offline, "stopped", false, "Line 3 - K220 - Off line", "Stopped", "Closed"},  // refused
      {Connecting, nullptr, false, "Line 3 - K220 - Connecting", "-", "Connecting"},
      {Online, "running", false, "Line 3 - K670 - Running", "Running", "Answers"},
      {Online, "stopped", false, "Line 3 - K670 - Stopped", "Stopped", "Answers"},
      {Online, "loading", false, "Line 3 - K670 - Loading", "Loading", "Answers"},
      {Online, "boot loader", false, "Line 3 - K670 - Boot loader", "Boot loader", "Answers"},
      {Online, "", false, "Line 3 - K670 - On line", "Not known", "Answers"},
      {Online, "running", true, "Line 3 - K670 - No answer", "Running", "No answer"},
      {Lost, "running", false, "Line 3 - K670 - Connection lost", "Was running", "Lost"},
  };
  std::map<SignShape, std::set<SignColour>> colours;
  std::map<std::string, SignShape> shapes;
  for (const auto& each : cases) {
    HostState state;
    state.session = "Line 3";
    state.model = "K220-22-R1";
    state.connection = each.connection;
    state.isSilent = each.isSilent;
    if (each.told) {
      state.controller.emplace().model = "K670-67-C30 / K390-29-C30";
      state.controller->state = each.told;
    }
    EXPECT_EQ(HeadingText(state), each.heading);
    EXPECT_EQ(MachineSign(state).word, each.machine) << each.heading;
    EXPECT_EQ(LinkSign(state).word, each.link) << each.heading;
    EXPECT_EQ(TilesNote(state).contains("the Downloader"), MachineSign(state).word == "Boot loader");
    for (const Sign& sign : {MachineSign(state), LinkSign(state)}) colours[sign.shape].insert(sign.colour);
    shapes.try_emplace(each.machine, MachineSign(state).shape);
  }
  for (const auto& [shape, of] : colours) EXPECT_EQ(of.size(), 1u) << "a colour tells nothing that the shape does not";
  EXPECT_EQ(
      std::set({shapes["Running"], shapes["Stopped"], shapes["Loading"], shapes["Boot loader"], shapes["-"]}).size(),
      5u);
}

TEST(LinkFactsTest, ARoundTripHasTwoDecimals) {
  const std::pair<Duration, const char*> rows[] = {
      {0us, ""}, {4us, "0.00 ms"}, {94us, "0.09 ms"}, {95us, "0.10 ms"}, {1234us, "1.23 ms"}, {1995us, "2.00 ms"},
  };
  for (const auto& [span, text] : rows) EXPECT_EQ(LinkFactsOf({.roundTrip = span}).roundTrip, text);
}

TEST_F(TelepanelHostTest, ALostControllerIsCountedDownToTheNextTry) {
  host.Click(command::kOnLine);
  LoseController();
  channel->error.code = LinkErrorCode::NoReply;
  Pass(8s);
  EXPECT_EQ(RetryText(view.shown), "Next try in 5 s") << "the pauses grow";
}

TEST_F(TelepanelHostTest, AnotherModelIsTakenOverAndNothingGoesWithoutAQuestion) {
  const struct {
    const char* selected;
    const char* reported;
    const char* model;
    bool hasGrids;
    bool isRefused;
    std::optional<PromptAnswer> answer;  // nothing: no question
  } cases[] = {
      {"K220-22-R1", "Q50-2-R34", "Q50", false, false, {}},
      {"K220-22-R1", "Q50-2-R34", "Q50", true, false, PromptAnswer::Yes},
      {"K220-22-R1", "Q50-2-R34", "Q50", true, false, PromptAnswer::No},
      {"K220-22-R1", "PX1-R8", "PX1", true, true, {}},  // has the operands of the K220
  };
  for (const auto& each : cases) {
    host.SetModel(each.selected);
    channel->version->model = each.reported;
    if (each.hasGrids) folder.Put(kOperandsGridFile, "");
    onLine = [&] {
      if (!each.isRefused) return Connect();
      host.BeginConnect();
      host.AttachChannel(channel);
      host.ConnectionRefused("Too old.", {*channel->version, channel->info});
    };
    host.Click(command::kOnLine);
    clicked.clear();
    if (each.answer) prompts.Press(*each.answer);
    const std::size_t boxes = prompts.Boxes().size();
    host.Click(command::kTakeModel);
    ASSERT_EQ(prompts.Boxes().size() - boxes, each.answer ? 1u : 0u);
    if (each.answer) {
      EXPECT_THAT(prompts.Boxes().back().text,
                  HasSubstr(std::string("model ") + each.model + " in the session 'Default'"));
      EXPECT_TRUE(prompts.Boxes().back().canLose);
    }
    if (each.answer == PromptAnswer::No) {
      EXPECT_THAT(clicked, IsEmpty());
    } else {
      EXPECT_THAT(clicked, ElementsAre(std::string("ID_OPLC_Model ") + each.model, "ID_OnLine"));
    }
    host.SetModel(each.model);
    onLine = [this] { Connect(); };
    channel->version->model = each.model;
    host.Click(command::kOffLine);
    host.Click(command::kOnLine);
    host.Click(command::kOffLine);
  }
  folder.Put(kRegionsGridFile, "");
  host.SetModel("K220-22-R1");
  clicked.clear();
  prompts.Press(PromptAnswer::No);
  host.Click(command::kModel, "Q50");
  EXPECT_THAT(clicked, IsEmpty()) << "the list of models asks the same";
}

// The sessions of a program; each activation is told to the host as the program does it.
struct FakeSessions final : SessionChoice {
  explicit FakeSessions(TelepanelHost& of) : host(of) {}
  [[nodiscard]] std::vector<SessionCard> Sessions() const override { return cards; }
  [[nodiscard]] std::string SessionsFault() const override { return {}; }
  bool ActivateSession(const std::string& name) override {
    if (std::ranges::find(cards, name, &SessionCard::name) == cards.end()) return false;
    host.SetSessionName(name);
    return true;
  }
  bool CreateSession(const std::string& name) override {
    cards.push_back({.name = name});
    return ActivateSession(name);
  }
  bool ActivateSimulated(const std::string& name, const std::string& model) override {
    simulated = model;
    return CreateSession(name);
  }

  TelepanelHost& host;
  std::vector<SessionCard> cards{{.name = "Default"}, {.name = "Bakery"}};
  std::string simulated;
};

TEST_F(TelepanelHostTest, TheStartPageGoesOnLineWithTheSessionThatIsChosen) {
  FakeSessions sessions(host);
  EXPECT_NE(host.WhyDisabled(command::kSimulate), "");
  host.SetSessionChoice(&sessions);
  const auto start = [&](std::string_view id, const std::string& name) {
    host.Click(id, name);
    const std::string shown = HeadingText(view.shown);
    EXPECT_NE(host.IsOnline(), host.WhyDisabled(command::kStartSession).empty());
    host.Click(command::kOffLine);
    return shown;
  };
  EXPECT_EQ(start(command::kStartSession, "Bakery"), "Bakery - K220 - Running");
  EXPECT_EQ(start(command::kStartSession, "Bakery"), "Bakery - K220 - Running");
  EXPECT_EQ(start(command::kSimulate, ""), "Simulated K670 - K220 - Running");
  EXPECT_THAT(sessions.simulated, testing::StartsWith("K670"));
  sessions.cards.pop_back();
  EXPECT_EQ(start(command::kStartSession, "Simulated K670 2"), "Simulated K670 - K220 - Off line");
  EXPECT_EQ(view.shown.sessions.size(), 2u) << "the cards follow";
  prompts.Enter("Mill");
  host.Click(command::kNewSession);
  EXPECT_EQ(HeadingText(view.shown), "Mill - K220 - Off line");
  EXPECT_EQ(view.shown.sessions.size(), 3u);
}

struct FakeTiles final : RegionTiles {
  explicit FakeTiles(VirtualPacer& of) : pacer(of) {}
  void LoadTiles() override { tiles.resize(count); }
  [[nodiscard]] std::span<const RegionTile> Tiles() const override { return tiles; }
  std::expected<void, LinkError> ReadTile(std::size_t index, Channel&, Instant now) override {
    reads.push_back(index);
    pacer.Sleep(takes);
    tiles[index].fault = index == refused ? "refused" : "";
    if (index == refused) return std::unexpected(LinkError{.code = LinkErrorCode::Refused});
    if (lost) return std::unexpected(LinkError{.code = LinkErrorCode::NoReply, .happened = "no reply"});
    tiles[index].values = "  1 2";
    tiles[index].readAt = now;
    return {};
  }

  VirtualPacer& pacer;
  std::size_t count = 3;
  std::size_t refused = 99;
  Duration takes = 1ms;
  bool lost = false;
  std::vector<std::size_t> reads;
  std::vector<RegionTile> tiles;
};

TEST_F(TelepanelHostTest, TheTilesAreReadCalmlyAndTellTheirAge) {
  FakeTiles tiles(pacer);
  tiles.refused = 1;
  host.SetRegionTiles(&tiles);
  host.Click(command::kOnLine);
  EXPECT_EQ(view.shown.tiles.size(), 3u);
  Pass(20s);
  EXPECT_THAT(tiles.reads, testing::SizeIs(testing::AllOf(testing::Ge(14u), testing::Le(21u))));
  EXPECT_EQ(std::ranges::count(tiles.reads, 1u), 1) << "what is refused is asked for again much later";
  EXPECT_EQ(view.shown.tiles[0].values, "1 2");

  tiles.takes = 150ms;
  tiles.count = 30;
  tiles.refused = 99;
  tiles.reads.clear();
  host.Click("ID_DataTypes");  // has changed the regions
  Pass(10s);
  EXPECT_EQ(view.shown.tiles.size(), 30u);
  EXPECT_LE(tiles.reads.size(), 20u) << "at most two of them a second on a slow line";
  EXPECT_EQ(std::set(tiles.reads.begin(), tiles.reads.end()).size(), tiles.reads.size()) << "each in its turn";

  host.OnToolClicked = [&](const std::string&, const std::string&) {
    tiles.reads.clear();
    Pass(15s);
  };
  host.Click("ID_DumpPLC");
  EXPECT_THAT(tiles.reads, IsEmpty()) << "the tool has the link";
  EXPECT_TRUE(view.shown.tiles[0].isOld);
  tiles.lost = true;
  LoseController();
  channel->error.code = LinkErrorCode::NoReply;
  Pass(3s);
  EXPECT_EQ(view.shown.connection, ConnectionState::Lost);
  EXPECT_THAT(view.shown.tiles[0].age, testing::EndsWith(" s ago")) << "the last values stay, with their age";
  host.Click(command::kOffLine);
  EXPECT_THAT(view.shown.tiles, IsEmpty());
}

}  // namespace
}  // namespace kv
