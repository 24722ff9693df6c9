#include <gmock/gmock.h>

#include "KvTele2/panel/ScreenModel.h"
#include "KvTele2/panel/ScreenText.h"
#include "tests/panel/Records.h"
#include "tests/support/Recorded.h"

namespace kv::panel {
namespace {

using namespace test;
using ::testing::ElementsAre;

TEST(ScreenModel, OfAreasThatOverlapTheUppermostIsTouched) {
  ScreenModel model(ColourPanel(100, 50));
  ASSERT_TRUE(model.Take(Told({Page(1), Touch(64, {0, 0, 20, 20}, "below"), Touch(65, {10, 10, 20, 20}, "above")})));
  EXPECT_EQ(model.AreaAt(12, 12), 65);
  EXPECT_EQ(model.AreaAt(9, 12), 64);
  EXPECT_FALSE(model.AreaAt(30, 30));
}

// Which bytes a record of each kind may have stands in the record of the test. What was there before stays when one is
// refused, also what came in front of it.
TEST(ScreenModel, WhatDoesNotKeepToThePageIsRefusedWhole) {
  const auto record = [](int slot, int kind, std::string body) {
    return PanelRecord{static_cast<std::uint16_t>(slot), static_cast<std::uint8_t>(kind), std::move(body)};
  };
  const std::string box = Words({7, 8, 9, 10});
  const PanelRecord colour[] = {Page(2, 5, "Main"),
                                record(1, 2, "Anna"),
                                Rectangle(64, {7, 8, 9, 10}, 5),
                                record(65, 17, box + Byte(2) + Words({5, 6})),
                                record(66, 18, box + Words({5})),
                                Text(67, 7, 8, 9, 1, "Run", 4),
                                record(68, 20, Words({7, 8, 2})),
                                record(69, 21, box + Byte(1) + Words({9999, 5, 6})),
                                Touch(70, {7, 8, 9, 10}, "Start", 3, 1),
                                record(1023, 16, box + Words({5})),
                                record(63, 16, box + Words({5}))};
  const PanelRecord text[] = {Page(1, 0, "Main"),
                              Row(1, "R \xE9", 3, 0x11),
                              record(2, 4, Byte(1) + Byte(1) + Byte(2)),
                              record(3, 5, Byte(2)),
                              Touch(35, {0, 0, 0, 0}, "Start"),
                              Row(2, "one", 3),
                              Touch(36, {0, 0, 0, 0}, "of no key")};
  const auto takes = [](const PanelDescription& panel, const PanelRecord& other, const PanelRecord& good) {
    ScreenModel model(panel);
    EXPECT_TRUE(model.Take(Told({Page(1)})));
    if (model.Take(Told({good, other}, 1))) return true;
    EXPECT_EQ(model.Revision(), (PanelRevision{9, 1}));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(model.Slot(good.slot)));
    return false;
  };
  const auto judge = [&](const PanelDescription& panel, const auto& records, const PanelRecord& good) {
    std::string rows;
    for (const PanelRecord& each : records) {
      rows += "slot " + std::to_string(each.slot) + ", kind " + std::to_string(each.kind) + "\n";
      rows += WhatIsTaken(each.body,
                          [&](const std::string& body) { return takes(panel, {each.slot, each.kind, body}, good); });
      for (int kind = 0; kind < 24; ++kind) {
        if (takes(panel, record(each.slot, kind, each.body), good)) rows += std::to_string(kind) + " ";
      }
      rows += "may be its kind\n";
    }
    ExpectAsRecorded([&rows] { return rows; });
  };
  judge(ColourPanel(100, 50), colour, Rectangle(100, {0, 0, 1, 1}, 0));
  judge(TextPanel(3, 2), text, Row(0, "x", 3));
}

TEST(ScreenText, IsReadAsAPersonReadsIt) {
  ScreenResources none;
  ScreenModel text(TextPanel(16, 2));
  ASSERT_TRUE(text.Take(Told({Page(1),
                              Row(0,
                                  "T = 20 \xB0"
                                  "C",
                                  16),
                              Touch(35, {0, 0, 0, 0}, "Start", 2, 2)})));
  EXPECT_EQ(PlainText(text, none), "T = 20 °C\n\n");
  const std::vector<ScreenText> texts = TextsOf(text, none);
  ASSERT_EQ(texts.size(), 3U) << "a row and two keys";
  EXPECT_EQ(texts[0].place, (PixelRect{0, 0, 128, 16}));
  EXPECT_EQ(texts[1].text, "F1");
  EXPECT_EQ(TouchText(*texts[1].touch), "button to hold \"Start\", disabled");
  EXPECT_FALSE(texts[2].touch) << "Esc means nothing here";

  ScreenModel colour(ColourPanel(200, 100));
  ASSERT_TRUE(colour.Take(Told({Page(1), Text(70, 100, 12, 50, 1, "right"), Text(71, 0, 60, 50, 1, "below"),
                                Text(72, 0, 10, 50, 1, "left"), Touch(73, {0, 80, 9, 9}, "Stop", 3, 1)})));
  EXPECT_EQ(PlainText(colour, none), "left  right\nbelow\n");
  EXPECT_EQ(TouchText(*TextsOf(colour, none).back().touch), "switch \"Stop\", on");
  EXPECT_EQ(ReadableText("\x1B[2J\x7F Anna\xE9 \n"), " [2J  Anna\xC3\xA9")
      << "nothing that a terminal takes for a command";
}

}  // namespace
}  // namespace kv::panel
