// The demonstration plant and its pages, on every size of display.

#include <set>

#include "PanelClient.h"
#include "base/Crc32.h"
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

// How many different dots a picture has: one with smooth images and texts has many.
std::size_t DifferentDots(const Picture& picture) {
  std::set<Dot> dots;
  for (int y = 0; y < picture.Height(); y += 5) {
    for (int x = 0; x < picture.Width(); x += 5) dots.insert(picture.At(x, y));
  }
  return dots.size();
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
      EXPECT_GT(DifferentDots(client.fixture.It().PanelPicture()), 20U);
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

TEST(PanelPages, EveryTextPageIsReachedAndFilled) {
  for (const char* model : {"Q50", "Q51", "K230", "K220-22-R1"}) {
    PanelClient client = Crowded(model);
    for (const std::string page : {"Recipe", "Manual", "Alarms", "Levels", "Info", "Overview"}) {
      SCOPED_TRACE(std::string(model) + ", " + page);
      EXPECT_EQ(client.Send(6, 19), 0) << "Right";
      EXPECT_EQ(client.screen.slots[0].second.substr(4), page);
      const Display display = FindModel(model)->display;
      for (int row = 0; row < display.height; ++row) {
        const std::string& body = client.screen.slots[16 + static_cast<std::uint32_t>(row)].second;
        EXPECT_EQ(body.size(), static_cast<std::size_t>(display.width + display.width / 2));
        const bool isLevel = page == "Levels" && row < 2;
        EXPECT_TRUE(!isLevel || body.starts_with(row == 0 ? "Tank" : "Bowl")) << body;
      }
    }
  }
}

TEST(PanelPages, StandsStillUntilStartAndMovesTheOperandsThen) {
  for (const char* model : {"K670", "Q50"}) {
    SCOPED_TRACE(model);
    PanelClient client(model);
    client.fixture.Write("0100C80001", "01");
    client.fixture.Write("0300CB0002", "03200258");
    client.fixture.Wait(1h);
    EXPECT_TRUE(client.Word(203) == 800 && client.Word(204) == 600 && client.Word(205) == 0);
    client.Look();
    EXPECT_EQ(client.Operate(), 0);
    EXPECT_EQ(client.Press("Start"), 0);
    client.fixture.Wait(60s);
    EXPECT_NEAR(client.Word(205), 29, 1) << "30 bottles a minute and some run-up";
    EXPECT_EQ(client.Word(207), 30);
    EXPECT_LT(client.Word(203), 800);
    client.Look();
    EXPECT_TRUE(client.Shows("RUNNING"));
    client.fixture.Write("0300CD0001", "00F9");  // one bottle is left of the batch
    client.fixture.Wait(10s);
    client.Look();
    EXPECT_TRUE(client.Shows("STOPPED") && client.Shows("250"));
    EXPECT_EQ(client.Bit(207) + client.Bit(211), 2) << "the batch is finished, and nobody has seen it";
    EXPECT_EQ(client.Operate(), 0) << "the lease has ended meanwhile";
    EXPECT_EQ(client.Press("Start"), 0);
    EXPECT_EQ(client.Word(205), 0) << "a new batch";
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

TEST(PanelPages, AValueIsTyped) {
  for (const char* model : {"K670", "Q50"}) {
    SCOPED_TRACE(model);
    const bool isText = std::string(model) == "Q50";
    PanelClient client(model);
    EXPECT_EQ(client.Operate(), 0);
    EXPECT_EQ(client.Press("Recipe"), 0);
    EXPECT_EQ(client.Press(isText ? "Change" : "Volume"), 0);
    for (const char* key : {"9", "9", "9", "9", "OK"}) EXPECT_EQ(client.Press(key), 0) << key;
    EXPECT_EQ(client.Word(200), 500) << "out of range";
    for (const char* key : {"7", "1", isText ? "Delete" : "Del", "5", "0", "OK"})
      EXPECT_EQ(client.Press(key), 0) << key;
    EXPECT_EQ(client.Word(200), 750);
    EXPECT_TRUE(client.Shows("750 ml"));
  }
}

TEST(PanelPages, FontsAndImagesAreWhatTheDirectorySays) {
  Fixture fixture("TQ45");
  const std::string description = fixture.Block(270).payload;
  for (const std::uint16_t kind : {std::uint16_t{1}, std::uint16_t{2}}) {
    const std::string directory = fixture.Block(258, 0, 0, kind).payload;
    const std::uint32_t count = NumberAt(directory, 0, 2);
    ASSERT_EQ(directory.size(), 2 + 42 * count);
    EXPECT_EQ(fixture.Block(258, count - 1, 0, kind).payload,
              directory.substr(0, 2) + directory.substr(directory.size() - 42));
    EXPECT_EQ(fixture.Block(258, count, 0, kind).payload.size(), 2U);
    EXPECT_EQ(NumberAt(description, kind == 1 ? 8 : 12, 4), kv::Crc32(std::string_view(directory).substr(2)));
    for (std::uint32_t entry = 0; entry < count; ++entry) {
      const std::size_t at = 2 + 42 * entry;
      const std::uint32_t length = NumberAt(directory, at + 2, 4);
      std::string data;
      while (data.size() < length) {
        const auto size = std::min<std::size_t>(4096, length - data.size());
        data += fixture
                    .Block(259, static_cast<std::uint32_t>(data.size()), static_cast<std::uint32_t>(size), kind,
                           static_cast<std::uint16_t>(NumberAt(directory, at, 2)))
                    .payload;
      }
      EXPECT_EQ(kv::Crc32(data), NumberAt(directory, at + 6, 4));
      EXPECT_EQ(data.substr(0, 2), kind == 1 ? "KF" : "BM");
      EXPECT_TRUE(kind == 1 || NumberAt(data, 2, 4) == length);
    }
  }
}

}  // namespace
}  // namespace sim::test
