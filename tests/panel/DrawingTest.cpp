#include <gmock/gmock.h>

#include <map>

#include "KvTele2/panel/Drawing.h"
#include "tests/panel/Records.h"
#include "tests/support/Recorded.h"

namespace kv::panel {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kRed = 0xF800;
constexpr int kGreen = 0x07E0;
constexpr int kBlue = 0x001F;
constexpr int kWhite = 0xFFFF;

// The picture in letters, row by row: the first of each colour's name, "." for black, which is left out at the ends.
std::string Art(const Picture& picture) {
  const std::map<Dot, char> letters = {{kOpaque, '.'},
                                       {DotOfColour(kRed), 'R'},
                                       {DotOfColour(kGreen), 'G'},
                                       {DotOfColour(kBlue), 'B'},
                                       {DotOfColour(kWhite), 'W'}};
  std::string art;
  for (int y = 0; y < picture.Height(); ++y) {
    if (y > 0) art += '/';
    for (const Dot dot : picture.Row(y)) art += letters.contains(dot) ? letters.at(dot) : '?';
    art.erase(art.find_last_not_of('.') + 1);
  }
  return art.erase(art.find_last_not_of('/') + 1);
}

PanelRecord Item(int kind, std::string body) {
  return {64, static_cast<std::uint8_t>(kind), std::move(body)};
}

TEST(Drawing, EveryItemIsDrawnAsThePageSays) {
  ScreenResources resources;
  ASSERT_TRUE(resources.Add(PanelResourceKind::Font, 1, SmallFont()));
  ASSERT_TRUE(resources.Add(PanelResourceKind::Font, 4, SmallFont(1)));
  ASSERT_TRUE(resources.Add(PanelResourceKind::Image, 2, SmallBitmap()));
  ASSERT_TRUE(resources.Add(PanelResourceKind::Image, 3, SmallBitmap(-2)));
  const struct {
    PanelRecord record;
    std::string art;
  } cases[] = {{Rectangle(64, {1, 1, 3, 2}, kRed), "/.RRR/.RRR"},
               {Rectangle(64, {10, 6, 9, 9}, kRed), "//////..........RR/..........RR"},
               {Item(17, Words({0, 0, 6, 5}) + Byte(2) + Words({kWhite, kBlue})), "WWWWWB/WWWWBB/WW..BB/WBBBBB/BBBBBB"},
               {Item(17, Words({0, 0, 3, 3}) + Byte(9) + Words({kWhite, kBlue})), "WWB/WBB/BBB"},
               {Item(18, Words({9, 6, 1, 2, kGreen})), "//.GG/...GG/.....GG/.......GG/.........G"},
               {Item(18, Words({3, 3, 3, 3, kGreen})), "///...G"},
               {Text(64, 0, 1, 12, 1, "AB"), "/WWWWWWWW/WWWWW..W/WWWWW..W/WWWWW..W/WWWWW..W/WWWWWWWW"},
               {Text(64, 0, 0, 7, 1, "B", 4 | 2), "BBBWWWW/BBBWBBW/BBBWBBW/BBBWBBW/BBBWBBW/BBBWWWW"},
               {Text(64, 2, 0, 6, 1, "AB", 1), "..WWWWWW/..WWWWW/..WWWWW/..WWWWW/..WWWWW/..WWWWWW"},
               {Text(64, 4, 0, 6, 4, "AB", 2), "........WW/........WW/........WW/........WW/........WW/........WW"},
               {Text(64, 0, 0, 12, 1, "x"), "/.W/.W/.W/.W"},
               {Item(20, Words({1, 1, 2})), "/.R/.GB"},
               {Item(20, Words({1, 1, 3})), "/.R/.GB"},
               {Item(21, Words({0, 0, 10, 2}) + Byte(0) + Words({3999, kRed, kBlue})), "RRRBBBBBBB/RRRBBBBBBB"},
               {Item(21, Words({0, 0, 2, 8}) + Byte(1) + Words({5000, kRed, kBlue})), "BB/BB/BB/BB/RR/RR/RR/RR"},
               {Touch(64, {0, 0, 9, 9}, "not seen"), ""}};
  for (const auto& [record, art] : cases) {
    ScreenModel model(ColourPanel(12, 8));
    ASSERT_TRUE(model.Take(Told({Page(1), record})));
    Drawing drawing(model, resources);
    EXPECT_THAT(drawing.Draw(), ElementsAre(PixelRect{0, 0, 12, 8}));
    EXPECT_EQ(Art(drawing.Dots()), art) << "kind " << int{record.kind};
    EXPECT_THAT(drawing.Draw(), IsEmpty()) << "nothing has changed";
  }
}

// What each looks like stands in the record of the test, also where the picture ends.
TEST(Drawing, OfEverySizeAndStyle) {
  ScreenResources resources;
  ASSERT_TRUE(resources.Add(PanelResourceKind::Font, 1, SmallFont()));
  std::string told;
  const auto show = [&](const PanelRecord& record) {
    ScreenModel model(ColourPanel(12, 8));
    const bool isTaken = model.Take(Told({Page(1), record})).has_value();
    Drawing drawing(model, resources);
    (void)drawing.Draw();
    told += std::to_string(record.kind) + " " + Shown(record.body) + ": " + (isTaken ? Art(drawing.Dots()) : "refused");
    const auto gone = model.Take(Told({{record.slot, 0, ""}}, 2));  // what is drawn anew then
    if (gone) drawing.Note(*gone);
    for (const PixelRect& area : drawing.Draw()) {
      for (const int number : {area.x, area.y, area.width, area.height}) told += " " + std::to_string(number);
    }
    told += "\n";
  };
  for (const int place : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
    const int x1 = place % 3 * 6;
    const int y1 = place / 3 * 4;
    for (const int x2 : {0, 5, 13}) {
      for (const int y2 : {0, 3, 9}) show(Item(18, Words({x1, y1, x2, y2, kRed})));
    }
  }
  for (const auto& [width, height] :
       {std::pair(0, 0), {0, 3}, {1, 1}, {2, 1}, {1, 9}, {2, 2}, {3, 5}, {5, 4}, {20, 20}}) {
    const std::string area = Words({1, 1, width, height});
    show(Rectangle(64, {1, 1, width, height}, kGreen));
    for (const int thickness : {0, 1, 2, 9}) show(Item(17, area + Byte(thickness) + Words({kWhite, kBlue})));
    for (const int share : {0, 1, 3333, 3334, 9999, 10000}) {
      for (const int direction : {0, 1}) show(Item(21, area + Byte(direction) + Words({share, kRed, kBlue})));
    }
  }
  for (int style = 0; style < 8; ++style) {
    for (const int width : {0, 1, 4, 8, 9, 11, 12}) {
      for (const int font : {1, 2}) show(Text(64, 1, 1, width, font, "ABx", style));
    }
  }
  for (const int id : {2, 3}) show(Item(20, Words({3, 2, id})));
  ExpectAsRecorded([&told] { return told; });
}

TEST(Drawing, ColoursAreSpreadOverAllShades) {
  EXPECT_EQ(DotOfColour(0), 0xFF000000U);
  EXPECT_EQ(DotOfColour(0xFFFF), 0xFFFFFFFFU);
  EXPECT_EQ(DotOfColour(0x8410), 0xFF848284U);
}

TEST(Drawing, WhatIsMissingIsAFramedPlaceAndIsNamed) {
  ScreenResources resources;
  ScreenModel model(ColourPanel(120, 60));
  ASSERT_TRUE(model.Take(Told({Page(1), Text(64, 0, 0, 40, 5, "Run"), Text(65, 0, 20, 40, 5, "Run")})));
  Drawing drawing(model, resources);
  (void)drawing.Draw();
  EXPECT_THAT(drawing.MissingResources(), ElementsAre(Drawing::Missing{PanelResourceKind::Font, 5}));
  ASSERT_TRUE(model.Take(Told({{66, 20, Words({10, 20, 7})}}, 3)));
  EXPECT_EQ(drawing.MissingResources().size(), 2U);
  const Picture before = drawing.Dots();
  ASSERT_TRUE(resources.Add(PanelResourceKind::Font, 5, SmallFont()));
  EXPECT_THAT(drawing.Draw(), ElementsAre(before.Bounds())) << "drawn anew with what has come";
  EXPECT_NE(drawing.Dots(), before);
}

TEST(Drawing, ATextDisplayShowsItsCellsCursorAndBlinking) {
  const ScreenResources none;
  ScreenModel model(TextPanel(3, 2));
  ASSERT_TRUE(
      model.Take(Told({Page(1), {16, 3, "-I-" + Byte(0x10) + Byte(0x02)}, {2, 4, Byte(1) + Byte(1) + Byte(2)}})));
  Drawing drawing(model, none);
  (void)drawing.Draw();
  const Picture& dots = drawing.Dots();
  ASSERT_EQ(dots.Bounds(), (PixelRect{0, 0, 24, 32}));
  const Dot glass = dots.At(0, 0);
  const Dot ink = dots.At(8, 0);
  EXPECT_NE(glass, ink) << "the second cell is inverse";
  const auto inkIn = [&](int column, int row) {
    int count = 0;
    for (int y = 16 * row; y < 16 * row + 16; ++y) {
      for (int x = 8 * column; x < 8 * column + 8; ++x) count += dots.At(x, y) == ink ? 1 : 0;
    }
    return count;
  };
  EXPECT_EQ(inkIn(0, 0), inkIn(2, 0));
  EXPECT_EQ(inkIn(1, 1), 128) << "the block of the cursor";
  EXPECT_TRUE(drawing.HasBlinking());
  drawing.ShowBlinking(false);
  EXPECT_THAT(drawing.Draw(), ElementsAre(PixelRect{0, 0, 24, 16}));
  EXPECT_EQ(inkIn(2, 0), 0);
  EXPECT_GT(inkIn(0, 0), 0);
  drawing.Note(model.Take(Told({{2, 4, Byte(0) + Byte(0) + Byte(1)}}, 3)).value());
  (void)drawing.Draw();
  EXPECT_EQ(inkIn(1, 1), 0) << "the cursor has left";
}

TEST(Drawing, OfCellsWithEveryCursor) {
  const ScreenResources none;
  std::string told;
  for (int attribute = 0; attribute < 8; ++attribute) {
    for (int place = 0; place < 18; ++place) {
      ScreenModel model(TextPanel(4, 2));
      const PanelRecord cursor{2, 4, Byte(place % 3) + Byte(place / 3 % 2) + Byte(place / 6)};
      ASSERT_TRUE(model.Take(Told({Page(1), Row(0, "A\xE9 ", 4, attribute * 0x11), Row(1, "|_", 4), cursor})));
      Drawing drawing(model, none);
      for (const bool isSeen : {true, false}) {
        drawing.ShowBlinking(isSeen);
        (void)drawing.Draw();
        std::string dots;
        for (int y = 0; y < 32; ++y) {
          for (const Dot dot : drawing.Dots().Row(y)) dots += ToHex(dot, 8);
        }
        told += ToHex(Crc32(dots), 8) + (isSeen ? " " : "\n");
      }
    }
  }
  ExpectAsRecorded([&told] { return told; });
}

TEST(ScreenResources, WhatIsNoFontAndNoImageIsRefusedAndCountsAsMissing) {
  ScreenResources resources;
  const auto isFont = [&resources](const std::string& bytes) {
    const bool isTaken = resources.Add(PanelResourceKind::Font, 1, bytes).has_value();
    EXPECT_EQ(resources.FontOf(1) != nullptr, isTaken);
    return isTaken;
  };
  ExpectAsRecorded([&] { return WhatIsTaken(SmallFont(), isFont); });
  const auto isImage = [](const std::string& bytes) { return ParseScreenImage(bytes).has_value(); };
  for (const int side : {1279, 1280, 1281, 2047, 2048, 2049, 4095, 4096, 4097}) {
    for (const auto& [width, height] : {std::pair(side, 1), {1, side}, {1, -side}, {side, 1024}}) {
      std::string image = SmallBitmap().replace(18, 8, Words({width, 0}) + Words({height, height < 0 ? -1 : 0}));
      image.resize(54 + std::size_t((width * 3 + 3) / 4 * 4) * std::size_t(std::abs(height)));
      ExpectAsRecorded(
          [&] { return std::to_string(width) + " x " + std::to_string(height) + (isImage(image) ? "\n" : ": no\n"); });
    }
  }
  ExpectAsRecorded([&] { return WhatIsTaken(SmallBitmap(), isImage); });
}

}  // namespace
}  // namespace kv::panel
