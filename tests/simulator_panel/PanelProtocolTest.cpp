// What becomes of a press, and that nothing is held longer than somebody holds it.

#include <functional>

#include "PanelClient.h"
#include "simulator/SimulatedController.h"

namespace sim::test {
namespace {

constexpr int kJog = 201;
constexpr int kRuns = 200;

// A text display has the key on every page, a colour display the button on one.
PanelClient AtConveyor(const std::string& model = "K670") {
  PanelClient client(model);
  EXPECT_EQ(client.Operate(), 0);
  EXPECT_TRUE(model == "Q51" || client.Press("Manual") == 0);
  return client;
}

TEST(PanelProtocol, EachVerdictInItsOrder) {
  struct Case {
    const char* what;
    std::function<void(PanelClient&)> before;
    int action;
    const char* name;
    int verdict;
    const char* model = "K670";
  };
  const auto stranger = [](PanelClient& c) { c.lease ^= 1; };
  const auto late = [](PanelClient& c) { c.stamp -= 2001; };
  const auto local = [](PanelClient& c) { c.fixture.Write("0100DB0001", "01"); };
  const auto system = [](PanelClient& c) { EXPECT_EQ(c.fixture.Block(260, 1).status, 10); };
  const auto oldArea = [](PanelClient& c) { c.seen = c.number - 200; };
  const auto seenBefore = [](PanelClient& c, const char* pressed) {
    c.seen = c.number;
    EXPECT_EQ(c.Press(pressed, 3), 0);
  };
  const auto running = [](PanelClient& c) {
    EXPECT_EQ(c.Press("Overview"), 0);
    EXPECT_EQ(c.Press("Start"), 0);
    EXPECT_EQ(c.Press("Manual"), 0);
  };
  const Case cases[] = {
      {"done", {}, 3, "Conveyor", 0},
      {"nothing there", {}, 3, "", 1},
      {"another page", [](PanelClient& c) { c.page = 1; }, 3, "Conveyor", 2},
      {"another epoch", [](PanelClient& c) { ++c.epoch; }, 3, "Conveyor", 2},
      {"a number that is still to come", [](PanelClient& c) { c.seen = c.number + 1; }, 3, "Conveyor", 2},
      {"seen before the page came", oldArea, 6, "Conveyor", 2},
      {"an earlier showing of the page, nothing there", oldArea, 6, "", 2},
      {"pressed since", [&](PanelClient& c) { seenBefore(c, "Conveyor"); }, 3, "Conveyor", 0},
      {"a key pressed since", [&](PanelClient& c) { seenBefore(c, "Conveyor"); }, 3, "Conveyor", 0, "Q51"},
      {"a key switched since", [&](PanelClient& c) { seenBefore(c, "Start"); }, 3, "Start", 2, "Q51"},
      {"disabled since", [](PanelClient& c) { c.seen = c.number, (void)c.fixture.Text("CCS"); }, 3, "Conveyor", 2},
      {"late", late, 6, "Conveyor", 3},
      {"from the future", [](PanelClient& c) { c.stamp += 1; }, 6, "Conveyor", 3},
      {"without a lease", stranger, 3, "Conveyor", 4},
      {"without a lease and late", [&](PanelClient& c) { stranger(c), late(c); }, 3, "Conveyor", 4},
      {"somebody is there", local, 3, "Conveyor", 5},
      {"somebody is there, old area", [&](PanelClient& c) { local(c), oldArea(c); }, 3, "Conveyor", 5},
      {"somebody is there, up", local, 5, "Conveyor", 0},
      {"nothing held", {}, 4, "Conveyor", 6},
      {"tapped is not held", [](PanelClient& c) { (void)c.Press("Conveyor", 6); }, 4, "Conveyor", 6},
      {"in SYSTEM mode", system, 3, "Conveyor", 7},
      {"in SYSTEM mode, late", [&](PanelClient& c) { system(c), late(c); }, 3, "Conveyor", 3},
      {"in SYSTEM mode, up", system, 5, "Conveyor", 0},
      {"disabled", running, 3, "Conveyor", 7},
      {"operate while another does", {}, 1, "", 4},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.what);
    PanelClient client = AtConveyor(row.model);
    if (row.before) row.before(client);
    const int wasHeld = client.Bit(kJog);
    const std::string name = row.name;
    EXPECT_EQ(row.action == 1 ? client.Operate()
              : name.empty()  ? client.Send(row.action)
                              : client.Press(name, row.action),
              row.verdict);
    EXPECT_TRUE(row.verdict == 0 || client.Bit(kJog) == wasHeld);
  }
}

TEST(PanelProtocol, WhatIsHeldIsLetGoByItself) {
  struct Case {
    const char* what;
    std::function<void(PanelClient&)> then;
  };
  const Case cases[] = {
      {"half a second of silence", [](PanelClient& c) { c.fixture.Wait(501ms); }},
      {"up", [](PanelClient& c) { EXPECT_EQ(c.Send(5), 0); }},
      {"another press", [](PanelClient& c) { EXPECT_EQ(c.Press("Valve"), 0); }},
      {"another page", [](PanelClient& c) { EXPECT_EQ(c.Press("Info"), 0); }},
      {"the lease is given back", [](PanelClient& c) { EXPECT_EQ(c.Send(2), 0); }},
      {"another one takes over", [](PanelClient& c) { EXPECT_EQ(c.Operate(1), 0); }},
      {"SYSTEM mode", [](PanelClient& c) { (void)c.fixture.Block(260, 1), c.fixture.Wait(0ms); }},
      {"the program stops", [](PanelClient& c) { (void)c.fixture.Text("CCS"), c.fixture.Wait(0ms); }},
      {"somebody is at the panel", [](PanelClient& c) { c.fixture.Write("0100DB0001", "01"), c.fixture.Wait(0ms); }},
      {"the connection ends", [](PanelClient& c) { c.fixture.It().EndConnection(c.fixture.connection); }},
      {"the controller resets", [](PanelClient& c) { (void)c.fixture.Text("CCE"); }},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.what);
    PanelClient client = AtConveyor();
    ASSERT_EQ(client.Press("Conveyor", 3), 0);
    EXPECT_TRUE((client.flags & 64) != 0 && client.Bit(kJog) == 1);
    for (int again = 0; again < 10; ++again) {
      client.fixture.Wait(400ms);
      EXPECT_EQ(client.Send(4), 0);
    }
    EXPECT_EQ(client.Bit(kJog), 1) << "held on for 4 s";
    row.then(client);
    EXPECT_EQ(client.Bit(kJog), 0);
    client.fixture.It().EndConnection(client.fixture.connection);
  }
}

// However late somebody looks, the conveyor has run half a second and no longer.
TEST(PanelProtocol, AHoldEndsAtItsOwnMoment) {
  for (const auto& [action, silence, steps] :
       {std::tuple(3, 600ms, 25), std::tuple(3, 90'000ms, 25), std::tuple(6, 600ms, 5), std::tuple(6, 40ms, 2)}) {
    PanelClient client = AtConveyor();
    const int before = client.Word(208);
    EXPECT_EQ(client.Press("Conveyor", action), 0);
    client.fixture.Wait(silence);
    EXPECT_EQ(client.Word(208) - before, steps * 6) << action;
  }
}

TEST(PanelProtocol, ALeaseIsOneOperators) {
  PanelClient client("Q51");
  EXPECT_EQ(client.Press("Start"), 4) << "looks on";
  EXPECT_EQ(client.Operate(), 0);
  EXPECT_EQ(client.flags & 0x18, 8U);
  EXPECT_EQ(client.screen.slots[1].second, "anna");
  const auto first = client.lease;
  EXPECT_EQ(client.Operate(), 4);
  EXPECT_EQ(client.Operate(1), 0);
  EXPECT_NE(client.lease, first);
  client.fixture.Wait(2999ms);
  client.Look();
  EXPECT_EQ(client.flags & 0x18, 8U) << "named in time";
  client.lease = first;
  client.Look();
  EXPECT_EQ(client.flags & 0x18, 0x10U) << "somebody else has it";
  client.fixture.Wait(3001ms);
  client.Look();
  EXPECT_EQ(client.flags & 0x18, 0U) << "nobody named it for 3 s";
  EXPECT_EQ(client.screen.slots[1].second, "");
}

// A restarted controller is another screen, whose operator and page are gone.
TEST(PanelProtocol, AResetBeginsAnew) {
  PanelClient client = AtConveyor();
  EXPECT_EQ(client.Press("Overview"), 0);
  EXPECT_EQ(client.Press("Start"), 0);
  const auto epoch = client.epoch;
  EXPECT_EQ(client.fixture.Text("CCE"), "CCOK");
  client.Look(8192);
  EXPECT_TRUE(client.epoch != epoch && client.epoch != 0);
  EXPECT_TRUE((client.flags & 0x38) == 32 && client.page == 1);
  EXPECT_EQ(client.Press("Stop"), 4);
  EXPECT_EQ(client.Bit(kRuns), 1);
  const int place = client.Word(208);
  client.fixture.Wait(5s);
  EXPECT_EQ(client.Word(208), place) << "it does not start by itself";
}

}  // namespace
}  // namespace sim::test
