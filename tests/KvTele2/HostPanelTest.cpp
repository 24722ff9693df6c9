#include "KvTele2/PanelText.h"
#include "tests/KvTele2/HostFixture.h"

namespace kv {
namespace {

using panel::PanelMode;
using testing::AllOf;
using testing::HasSubstr;

// A panel that notes what it is asked: "d" its description, "c" changes, "b" the begin of something new, "a" access,
// and the numbers of actions but Leave.
struct FakePanelLink final : PanelLink {
  std::optional<PanelDescription> Describe(std::uint8_t) override {
    asked += 'd';
    return description;
  }
  std::optional<PanelChanges> Changes(const PanelChangesRequest&, std::uint8_t) override {
    if (asked.empty() || asked.back() == 'd') asked += 'c';  // the first ones are enough
    if (error.code != LinkErrorCode::None) return {};
    return Answer(0);
  }
  std::optional<PanelChanges> Send(const PanelEvent& event, std::uint8_t) override {
    if (event.action == PanelAction::Leave) return Answer(0);
    asked += static_cast<char>('0' + static_cast<int>(event.action));
    takesOver = event.takesOver;
    return Answer(77);
  }
  std::optional<PanelDirectory> Directory(PanelResourceKind, std::uint8_t) override { return PanelDirectory{}; }
  std::optional<Bytes> ReadPiece(PanelResourceKind, std::uint16_t, std::uint32_t, std::uint32_t,
                                 std::uint8_t) override {
    return {};
  }
  std::optional<PanelLinkCost> Cost(std::uint8_t) override { return PanelLinkCost{.mostPiece = 512}; }
  unsigned Connection() const override { return connection; }
  const LinkError& LastError() const override { return error; }

  PanelChanges Answer(std::uint16_t newLease) {
    PanelChanges changes{.upTo = {9, 2}, .stamp = 1, .page = 1, .beginsAnew = true, .lease = newLease};
    changes.isLeaseGood = true;
    changes.isLeaseElsewhere = !other.empty();
    changes.records = {{.slot = 0, .kind = 1, .body = std::string("\1\0\0\0", 4)},
                       {.slot = 1, .kind = 2, .body = other}};
    return changes;
  }

  PanelDescription description{.kind = PanelKind::Colour, .width = 100, .height = 50, .pages = 1};
  std::string other;  // who has the lease
  unsigned connection = 1;
  bool takesOver = false;
  LinkError error;
  std::string asked;
};

struct PanelChannel final : test::FakeChannel {
  PanelLink* Panel() override { return &panel; }
  void BeginOperation() override { panel.asked += 'b'; }
  bool EnsureAccess(std::uint8_t) override {
    panel.asked += 'a';
    onAccess();
    return true;
  }
  FakePanelLink panel;
  std::function<void()> onAccess = [] {};
};

class HostPanelTest : public TelepanelHostTest {
 protected:
  HostPanelTest() {
    with->version = channel->version;
    with->info = channel->info;
    channel = with;
    host.Click("ID_OnLine");
    Step();
  }
  void Step(int count = 3) {
    for (int i = 0; i < count; ++i) {
      host.StepPanel({});
      pacer.Sleep(std::chrono::milliseconds(33));
    }
  }
  [[nodiscard]] PanelMode Mode() { return host.Panel()->State().mode; }
  [[nodiscard]] std::string TakeAsked() { return std::exchange(with->panel.asked, {}); }

  std::shared_ptr<PanelChannel> with = std::make_shared<PanelChannel>();
};

TEST_F(HostPanelTest, ConsentToOperateHoldsForThatConnectionUserAndPersonOnly) {
  EXPECT_EQ(MiddlePageOf(host.State()), MiddlePage::Panel);
  EXPECT_EQ(TakeAsked().substr(0, 2), "dc");
  const struct {
    const char* what;
    std::string other;
    std::function<void()> meanwhile;  // while the password is asked for
    std::string sent;
    bool isAsked = true;
  } cases[] = {
      {"consent", "", [] {}, "ba1"},
      {"back from View", "", [] {}, "ba1", false},
      {"another connection", "", [this] { ++with->panel.connection; }, "ba", false},
      {"after that", "", [] {}, "ba1"},
      {"another user", "", [] {}, "ba1"},
      {"taken over from Anna", "Anna", [] {}, "ba1"},
      {"Bert has come since", "Anna", [this] { with->panel.other = "Bert"; }, "ba"},
      {"somebody has come since", "", [this] { with->panel.other = "Bert"; }, "ba"},
  };
  for (const auto& each : cases) {
    with->panel.other = each.other;
    Step(40);
    (void)TakeAsked();
    with->onAccess = each.meanwhile;
    const std::size_t before = prompts.Boxes().size();
    if (each.what == std::string_view("another user")) host.SetUserName("Carla");
    if (each.isAsked) prompts.Press(PromptAnswer::Yes);
    host.Click(command::kOperate);
    Step();
    EXPECT_EQ(prompts.Boxes().size() - before, each.isAsked ? 1U : 0U) << each.what;
    EXPECT_TRUE(prompts.Boxes().back().canLose);
    EXPECT_THAT(prompts.Boxes().back().text, AllOf(HasSubstr("K220-22-R1"), HasSubstr("serial number 2748"),
                                                   HasSubstr("COM3"), HasSubstr(each.other)));
    EXPECT_EQ(TakeAsked(), each.sent) << each.what;
    EXPECT_EQ(Mode() == PanelMode::Operate, each.sent == "ba1") << each.what;
    EXPECT_TRUE(Mode() != PanelMode::Operate || with->panel.takesOver == !each.other.empty()) << each.what;
    host.Click(command::kViewOnly);
    EXPECT_EQ(Mode(), PanelMode::View);
    Step();
  }
}

TEST_F(HostPanelTest, ToolsHaveTheLinkAloneAndALossEndsOperating) {
  prompts.Press(PromptAnswer::Yes);
  host.Click(command::kOperate);
  Step();
  ASSERT_EQ(Mode(), PanelMode::Operate);
  const auto atWork = host.OnToolClicked;
  host.OnToolClicked = [&](const std::string&, const std::string&) {
    (void)TakeAsked();
    Step(100);
    EXPECT_EQ(with->panel.asked, "");
    EXPECT_EQ(Mode(), PanelMode::View) << "the controller has ended the lease";
    EXPECT_THAT(PanelOldText(host.Panel()->State()), HasSubstr("Paused"));
  };
  host.Click("ID_DataTypes");
  host.OnToolClicked = atWork;
  Step();
  EXPECT_EQ(PanelOldText(host.Panel()->State()), "");

  with->panel.error = {.code = LinkErrorCode::NoReply, .happened = "no reply"};
  Step(40);
  EXPECT_EQ(Mode(), PanelMode::View);
  (void)TakeAsked();
  Step(60);
  EXPECT_EQ(TakeAsked(), "") << "the host's own question looks for the controller";
  EXPECT_THAT(PanelOldText(host.Panel()->State()), AllOf(HasSubstr("s old"), HasSubstr("No reply")));
  with->panel.error = {};
  host.Tick();
  Step();
  EXPECT_EQ(PanelOldText(host.Panel()->State()), "");
  EXPECT_EQ(Mode(), PanelMode::View);
  const std::size_t before = prompts.Boxes().size();
  prompts.Press(PromptAnswer::No);
  host.Click(command::kOperate);
  EXPECT_EQ(prompts.Boxes().size(), before + 1) << "nobody has seen what the machine did meanwhile";
}

TEST_F(HostPanelTest, ACacheOfAnotherModelIsRefusedAndTheOneInUseStays) {
  const auto put = [this](const char* name, const char* model, std::uint32_t serial) {
    const auto file = folder.Path() / name;
    cache::CacheContent content{.owner = cache::CacheOwner{.version = {.model = model}, .serialNumber = serial}};
    content.fonts.emplace();
    EXPECT_TRUE(cache::SaveCacheFile(file, content));
    return Utf8FromPath(file);
  };
  const std::string own = put("own.ktc", "K220-22-R1", 2748);
  EXPECT_TRUE(host.OpenColourCache(own).value());
  const std::string working = TemporaryFolder::Content(folder.Path() / "APP_TEMP.ktc");
  prompts.Press(PromptAnswer::Ok);
  const std::string other = put("other.ktc", "K450-45", 2748);
  EXPECT_FALSE(host.OpenColourCache(other).value());
  EXPECT_THAT(prompts.Boxes().back().text, AllOf(HasSubstr("K450-45"), HasSubstr("K220-22-R1"), HasSubstr("stays")));
  EXPECT_TRUE(TemporaryFolder::Content(folder.Path() / "APP_TEMP.ktc") == working);
  EXPECT_TRUE(host.OpenColourCache(put("sister.ktc", "K220-22-R1", 99)).value());
  const std::string whole = TemporaryFolder::Content(folder.Path() / "own.ktc");
  const std::string cut = Utf8FromPath(folder.Put("cut.ktc", whole.substr(0, whole.size() - 4096)));
  EXPECT_THAT(host.OpenColourCache(cut).error(), AllOf(HasSubstr("cut.ktc"), HasSubstr("What to do: import")));
  EXPECT_EQ(host.ChooseColourCache({cut, other, own}, "K220-22-R1"), own);
  EXPECT_EQ(host.ChooseColourCache({other, cut}, "K220-22-R1"), other) << "none fits, which is told when it is used";
}

}  // namespace
}  // namespace kv
