// The demonstration plant and its pages, on every size of display.

#include <sstream>

#include "PanelClient.h"
#include "simulator/ModelTable.h"
#include "simulator/panel/Fonts.h"

namespace sim::test {
namespace {

const char* const kTabs[] = {"Recipe", "Manual", "Alarms", "Trend", "Info", "Overview"};

// Everything that can be on a page at once: all alarms, long numbers, the machine at work.
PanelClient Crowded(const std::string& model) {
  PanelClient client(model);
  EXPECT_EQ(client.Operate(), 0);
  EXPECT_EQ(client.Press("Start"), 0);
  for (int word = 200; word < 244; ++word)
    client.fixture.Write("03" + kv::ToHex(static_cast<unsigned>(word), 4) + "0001", "0383");
  client.fixture.Write("0300CA0001", "7530");
  client.fixture.Write("0300CD0001", "752F");
  client.fixture.Write("0100CD0008", "0101010101010101");
  client.Look();
  return client;
}

void ExpectEverythingFits(const PanelClient& client, const Display& display) {
  std::vector<Box> areas;
  for (const auto& [slot, content] : client.screen.slots) {
    const auto& [kind, body] = content;
    if (kind == 19) {
      const FontReader font = FontWithId(static_cast<int>(NumberAt(body, 6, 2)));
      EXPECT_LE(font.WidthOf(body.substr(13)), static_cast<int>(NumberAt(body, 4, 2))) << body.substr(13);
      EXPECT_LE(static_cast<int>(NumberAt(body, 2, 2)) + font.Height(), display.height) << body.substr(13);
    }
    if (kind != 6) continue;
    const Box box = BoxOfTouchArea(body);
    EXPECT_TRUE(box.x + box.width <= display.width && box.y + box.height <= display.height) << body.substr(10);
    EXPECT_TRUE(box.width >= 40 && box.height >= 24) << body.substr(10) << " is too small for a finger";
    for (const Box& other : areas) {
      const bool isApart = box.x >= other.x + other.width || other.x >= box.x + box.width ||
                           box.y >= other.y + other.height || other.y >= box.y + box.height;
      EXPECT_TRUE(isApart) << body.substr(10);
    }
    areas.push_back(box);
  }
}

TEST(PanelPages, EverythingFitsOnEveryColourDisplay) {
  for (const char* model : {"TQ45", "K530", "K670", "K800"}) {
    PanelClient client = Crowded(model);
    for (const std::string tab : kTabs) {
      SCOPED_TRACE(std::string(model) + ", " + tab);
      const std::size_t before = client.bytes;
      EXPECT_EQ(client.Press(tab), 0);
      client.Look();
      EXPECT_LE(client.bytes - before, 800U + 16);  // and the answer to the last look, which has nothing new
      ExpectEverythingFits(client, FindModel(model)->display);
      if (tab != "Recipe") continue;
      const std::size_t onRecipe = client.bytes;
      EXPECT_EQ(client.Press("Batch"), 0);
      client.Look();
      EXPECT_LE(client.bytes - onRecipe, 800U + 16);
      ExpectEverythingFits(client, FindModel(model)->display);
      EXPECT_EQ(client.Press("Esc"), 0);
    }
  }
}

// What each press and each second change on the screen and in the machine is in the record. "~3" waits so many seconds,
// "_Pump" holds on to it.
TEST(PanelPages, EveryControlOfEveryPage) {
  const std::string colour =
      "Manual;_Conveyor;+;_Pump;+;_Valve;+;-;Recipe;Refill;Refill;Speed;1;2;0;OK;Volume;4;9;Del;9;OK;9;9;9;9;9;9;OK;"
      "Esc;"
      "Batch;4;0;OK;New batch;Trend;Overview;Start;~3;Manual;Overview;Stop;Start;~25;Alarms;Acknowledge;Recipe;New "
      "batch;"
      "Batch;9;0;OK;Overview;Start;~60;Trend;Alarms;Acknowledge;Info;Overview";
  const std::string text =
      "Start;~3;Stop;_Conveyor;+;-;Recipe;Change;1;2;Delete;9;9;9;9;9;OK;5;0;OK;Next value;Change;1;2;0;OK;Next value;"
      "Value before;Next value;4;Cancel;4;0;OK;Manual;_Pump;+;-;_Valve;+;-;Alarms;Levels;Info;Overview;Start;~28;"
      "Acknowledge;Recipe;9;0;OK;Overview;Start;~35;Info;Levels;Alarms;Acknowledge;Manual";
  for (const char* model : {"K670", "Q51", "K220", "K230"}) {
    PanelClient client(model);
    EXPECT_EQ(client.Operate(), 0);
    std::istringstream steps(FindModel(model)->display.kind == Display::Kind::TextCells ? text : colour);
    for (std::string step; std::getline(steps, step, ';');) {
      if (step == "+" || step == "-") {
        EXPECT_EQ(client.Send(step == "+" ? 4 : 5), 0);
      } else if (step[0] != '~') {
        client.Press(step.substr(step[0] == '_' ? 1 : 0), step[0] == '_' ? 3 : 6);
      }
      for (int second = step[0] == '~' ? std::stoi(step.substr(1)) : 0; second >= 0; --second) {
        client.fixture.Wait(second == 0 ? 100ms : 1s);
        client.Look();
      }
      for (const char* place : {"0300C8001C", "0100C80014", "0A00000009", "0900000008"})
        (void)client.fixture.Read(place);
    }
  }
}

// A long time in one step is the same as in many.
TEST(PanelPages, ThePlantDoesNotDependOnWhoLooks) {
  std::string values[2];
  for (int turn = 0; turn < 2; ++turn) {
    PanelClient client("K670");
    EXPECT_EQ(client.Operate(), 0);
    EXPECT_EQ(client.Press("Start"), 0);
    for (int step = 0; step < (turn == 0 ? 1 : 4000); ++step) client.fixture.Wait(turn == 0 ? 400s : 100ms);
    values[turn] = client.fixture.Read("0300C80028") + client.fixture.Read("0100C80014");
  }
  EXPECT_EQ(values[0], values[1]);
}

}  // namespace
}  // namespace sim::test
