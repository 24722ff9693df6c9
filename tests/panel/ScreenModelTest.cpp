#include <gmock/gmock.h>

#include "KvTele2/panel/ScreenModel.h"
#include "KvTele2/panel/ScreenText.h"
#include "tests/panel/Records.h"

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

// Each case is a record that the page does not allow; what was there before stays, also what came in front of it.
TEST(ScreenModel, WhatDoesNotKeepToThePageIsRefusedWhole) {
  const auto record = [](int slot, int kind, std::string body) {
    return PanelRecord{static_cast<std::uint16_t>(slot), static_cast<std::uint8_t>(kind), std::move(body)};
  };
  const PanelRecord colour[] = {record(0, 0, ""),
                                record(0, 1, "abc"),
                                record(1, 2, std::string(21, 'x')),
                                record(16, 3, std::string(24, ' ')),
                                record(63, 16, Words({0, 0, 1, 1, 0})),
                                record(64, 16, Words({0, 0, 1, 1})),
                                record(64, 16, Words({0, 0, 1, 1, 0, 0})),
                                record(64, 16, Words({4096, 0, 1, 1, 0})),
                                record(64, 22, Words({0, 0, 1, 1, 0})),
                                record(64, 21, Words({0, 0, 1, 1}) + Byte(0) + Words({10001, 0, 0})),
                                record(64, 21, Words({0, 0, 1, 1}) + Byte(2) + Words({100, 0, 0})),
                                Text(64, 0, 0, 10, 1, std::string(61, 'x')),
                                Text(64, 0, 0, 10, 1, "x", 3),
                                Text(64, 0, 0, 10, 1, "x", 8),
                                Touch(64, {0, 0, 1, 1}, "x", 0),
                                Touch(64, {0, 0, 1, 1}, "x", 6),
                                Touch(64, {0, 0, 1, 1}, "x", 1, 8)};
  const PanelRecord text[] = {Row(2, "one row too many", 16),
                              Row(0, "short", 15),
                              Row(0, "bit 3", 16, 0x80),
                              Page(1, 5),
                              record(2, 4, Byte(16) + Byte(0) + Byte(1)),
                              record(2, 4, Byte(0) + Byte(0) + Byte(3)),
                              record(3, 5, Byte(0x03)),
                              record(3, 5, std::string(11, '\0')),
                              Touch(36, {0, 0, 0, 0}, "of no key"),
                              Touch(35, {0, 0, 1, 0}, "a key with a place"),
                              Rectangle(64, {0, 0, 1, 1}, 0)};
  const auto refuses = [](const PanelDescription& panel, const PanelRecord& bad, const PanelRecord& good) {
    ScreenModel model(panel);
    ASSERT_TRUE(model.Take(Told({Page(1)})));
    const auto taken = model.Take(Told({good, bad}, 1));
    ASSERT_FALSE(taken) << "slot " << bad.slot << " kind " << int{bad.kind} << " of " << bad.body.size();
    EXPECT_EQ(model.Revision(), (PanelRevision{9, 1}));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(model.Slot(good.slot)));
  };
  for (const PanelRecord& bad : colour) refuses(ColourPanel(100, 50), bad, Rectangle(100, {0, 0, 1, 1}, 0));
  for (const PanelRecord& bad : text) refuses(TextPanel(16, 2), bad, Row(1, "good", 16));
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
