#include <gmock/gmock.h>

#include "tests/driver/Fixture.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Notes what it hears of, and what the controller has executed until then.
struct Observer final : ChangeObserver, PasswordSource {
  explicit Observer(Plant& itsPlant) : plant(itsPlant) {}

  void BeginOperation(const Operation& operation) override { heard.push_back("[" + operation.what); }
  void EndOperation(const std::optional<ChangeEnd>&) override { heard.emplace_back("]"); }
  std::expected<void, LinkError> BeforeRequest(const ChangeRequest& request) override {
    EXPECT_EQ(plant.controller->Executions(), executed) << "before it is sent";
    EXPECT_EQ(request.controller.model, "K220-22-R1");
    EXPECT_TRUE(request.controller.serialNumber);
    EXPECT_EQ(request.link, "COM3, 115200 8N1, unit 1");
    heard.push_back(request.meaning);
    if (!refuses) return {};
    return std::unexpected(LinkError{.code = LinkErrorCode::NotRecorded, .happened = "no room", .isNotExecuted = true});
  }
  void AfterRequest(const ChangeEnd& end) override { ends.push_back(end.result); }
  std::string Head() const override { return ""; }
  std::optional<Secret> Password(const PasswordWanted&) override { return Secret("key"); }
  std::string Cure() const override { return ""; }

  Plant& plant;
  bool refuses = false;
  int executed = 0;
  std::vector<std::string> heard;
  std::vector<ChangeResult> ends;
};

struct Request {
  const char* name;
  std::function<bool(Channel&)> send;
  std::string meaning;  // that is announced; empty: it is a read
  ChangeResult end = ChangeResult::Done;
};

const std::array<std::int16_t, 2> kValues{1, 2};

bool Raw(Channel& channel, std::string_view bytes) {
  return channel.GetSerialPort()->Output(bytes);
}

const Request kRequests[] = {
    {"a read", [](Channel& c) { return c.ReadMI(0, 2, 1).has_value(); }, ""},
    {"memory", [](Channel& c) { return c.ReadMemoryBlock(0x00300000, 16, 1).has_value(); }, ""},
    {"identification", [](Channel& c) { return c.GetVersionInfo(1).has_value(); }, ""},
    {"state", [](Channel& c) { return c.GetControllerInfo(1).has_value(); }, ""},
    {"access", [](Channel& c) { return c.EnsureAccess(1); }, ""},
    {"segment table", [](Channel& c) { return c.SendCommand("GI1       ").has_value(); }, ""},
    {"announcement", [](Channel& c) { return c.SendCommand("PV000A").has_value(); }, ""},
    {"raw read", [](Channel& c) { return Raw(c, BuildFrame(1, "ID")); }, ""},
    {"write", [](Channel& c) { return c.WriteMI(0, kValues, 1); }, "unit 1: write MI 0..1"},
    {"stop", [](Channel& c) { return c.StopController(1); }, "unit 1: stop"},
    {"begin of a restore", [](Channel& c) { return c.SendCommand("CCM").has_value(); },
     "unit 1: begin of a memory restore"},
    {"no command", [](Channel& c) { return c.SendCommand("ZZ").has_value(); }, "unit 1: unknown command",
     ChangeResult::Refused},
    {"raw line", [](Channel& c) { return Raw(c, BuildFrame(1, "CCR")); }, "unit 1: run", ChangeResult::Sent},
    {"raw bytes", [](Channel& c) { return Raw(c, "/01ID\r/01CCSXX\r"); }, "unit 1: identification", ChangeResult::Sent},
};

// Whatever way a request takes: it is heard of before it goes out, and what became of it afterwards.
TEST(Changes, EveryRequestThatIsNoReadIsAnnounced) {
  for (const Request& each : kRequests) {
    SCOPED_TRACE(each.name);
    Fixture fixture("K220-22-R1");
    Observer observer(fixture.plant);
    fixture.channel.ObserveChanges(&observer);
    const bool isRead = each.meaning.empty();
    EXPECT_TRUE(each.send(fixture.channel)) << fixture.Error().Text();
    EXPECT_EQ(observer.heard, isRead ? std::vector<std::string>() : std::vector{each.meaning});
    EXPECT_EQ(observer.ends, isRead ? std::vector<ChangeResult>() : std::vector{each.end});

    EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1));  // a raw line is through before
    observer.executed = fixture.plant.controller->Executions();
    observer.refuses = true;
    const bool isSent = each.send(fixture.channel);
    EXPECT_EQ(isSent, isRead);
    EXPECT_TRUE(isRead || fixture.plant.controller->Executions() == observer.executed) << "sent all the same";
    EXPECT_EQ(fixture.Error().code, isRead ? LinkErrorCode::None : LinkErrorCode::NotRecorded);
  }
}

TEST(Changes, BlockMessagesAreAnnouncedByTheirKind) {
  Fixture fixture("K220-22-R1");
  Observer observer(fixture.plant);
  fixture.channel.ObserveChanges(&observer);
  EXPECT_TRUE(BeginDownload(fixture.channel));
  EXPECT_THAT(observer.heard, ElementsAre(HasSubstr("begin a project download")));
  EXPECT_THAT(observer.ends, ElementsAre(ChangeResult::Done));
}

// It goes out twice, and is one change.
TEST(Changes, ARequestThatNeedsThePasswordIsAnnouncedOnce) {
  Fixture fixture("K220-22-R1", SerialSettings(), "key");
  Observer observer(fixture.plant);
  fixture.channel.UsePasswords(&observer);
  fixture.channel.ObserveChanges(&observer);
  EXPECT_TRUE(fixture.channel.WriteMI(0, kValues, 1));
  EXPECT_THAT(observer.heard, ElementsAre("unit 1: write MI 0..1"));
  EXPECT_THAT(observer.ends, ElementsAre(ChangeResult::Done));
}

TEST(Changes, ALostRequestMayHaveBeenExecuted) {
  Fixture fixture("K220-22-R1");
  Observer observer(fixture.plant);
  fixture.channel.ObserveChanges(&observer);
  fixture.plant.isSilent = true;
  EXPECT_FALSE(fixture.channel.WriteMI(0, kValues, 1));
  EXPECT_THAT(observer.ends, ElementsAre(ChangeResult::Failed));
  fixture.plant.isReachable = false;
  fixture.plant.isCut = true;
  EXPECT_FALSE(fixture.channel.WriteMI(0, kValues, 1));
  EXPECT_EQ(observer.heard.size(), 1U) << "nothing went out";
}

}  // namespace
}  // namespace kv
