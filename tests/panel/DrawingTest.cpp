#include <gmock/gmock.h>

#include <map>

#include "KvTele2/panel/Drawing.h"
#include "tests/panel/Records.h"

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

TEST(ScreenResources, WhatIsNoFontAndNoImageIsRefusedAndCountsAsMissing) {
  const auto with = [](std::string bytes, std::size_t at, int byte) {
    bytes[at] = static_cast<char>(byte);
    return bytes;
  };
  const std::string font = SmallFont();
  const std::string image = SmallBitmap();
  const std::pair<std::size_t, int> inFont[] = {
      {0, 'X'}, {4, 1}, {5, 5}, {5, 65}, {6, 7}, {8, 0}, {9, 1}, {10, 65}, {10, 9},
  };
  std::vector<std::string> badFonts = {"", font.substr(0, font.size() - 1), font + "x"};
  for (const auto& [at, byte] : inFont) badFonts.push_back(with(font, at, byte));
  for (const std::string& bad : badFonts) {
    ScreenResources resources;
    ASSERT_TRUE(resources.Add(PanelResourceKind::Font, 1, font));
    EXPECT_FALSE(resources.Add(PanelResourceKind::Font, 1, bad)) << bad.size();
    EXPECT_EQ(resources.FontOf(1), nullptr);
  }
  const std::pair<std::size_t, int> inImage[] = {
      {0, 'X'}, {10, 53}, {13, 1}, {14, 39}, {18, 0}, {21, 0x80}, {22, 0}, {25, 0x80}, {24, 1}, {28, 8}, {30, 1},
  };
  std::vector<std::string> badImages = {"", image.substr(0, image.size() - 1)};
  for (const auto& [at, byte] : inImage) badImages.push_back(with(image, at, byte));
  for (const std::string& bad : badImages) EXPECT_FALSE(ParseScreenImage(bad)) << bad.size();
}

}  // namespace
}  // namespace kv::panel
