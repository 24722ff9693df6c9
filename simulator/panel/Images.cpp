#include "simulator/panel/Images.h"

#include <array>
#include <cstdlib>
#include <string_view>

#include "simulator/panel/Canvas.h"
#include "simulator/panel/Fonts.h"
#include "simulator/panel/ImageShapes.h"

namespace sim {
namespace {

using Size = Layout::TextSize;

constexpr Dot kLiquid = 0xE88028;
constexpr Dot kGlassEdge = 0xB4D8E8;
constexpr Dot kDark = 0x101820;
constexpr Dot kWhite = 0xF0F6FA;

void DrawLogo(Canvas& canvas, const Scale& to) {
  const auto sky = [&](int, int y) { return Between(0x2C98D8, 0x145888, y, canvas.Height()); };
  canvas.Paint(Ellipse(to(28), to(28), to(26), to(26)), sky);
  canvas.Paint(Both(Ellipse(to(28), to(28), to(26), to(26)), Ellipse(to(14), to(58), to(30), to(24))), Dot{0x3CA868});
  canvas.Paint(Both(Ellipse(to(28), to(28), to(26), to(26)), Ellipse(to(46), to(62), to(28), to(24))), Dot{0x287C4C});
  canvas.Paint(Drop(to(28), to(9), to(8)), Dot{0xF0A040});
  const int font = to.Font(Size::Large);
  const int top = canvas.Height() / 2 - FontWithId(font).Height();
  canvas.Write(to.Dots(62), top, font, "Hillbrook", kWhite);
  const int small = to.Font(Size::Normal);
  canvas.Write(to.Dots(62), canvas.Height() / 2 + to.Dots(3), small, "Fruit Juices", 0x90B8D0);
}

void DrawTank(Canvas& canvas, const Scale& to) {
  for (const int leg : {16, 72}) canvas.Paint(RoundedBox(to(leg), to(104), to(8), to(25), to(1)), Dot{0x5C6C7C});
  canvas.Paint(RoundedBox(to(43), to(108), to(9), to(38), to(1)), Steel(to(43), to(9)));
  canvas.Paint(RoundedBox(to(36), to(1), to(24), to(12), to(3)), Steel(to(36), to(24)));
  canvas.Paint(RoundedBox(to(4), to(7), to(88), to(108), to(22)), Steel(to(4), to(88)));
  for (const int seam : {24, 104}) canvas.Paint(RoundedBox(to(5), to(seam), to(86), to(1), 0), Dot{0x70808C});
  canvas.Paint(RoundedBox(to(33), to(26), to(30), to(78), to(5)), kDark);
  for (int mark = 0; mark <= 4; ++mark) {
    canvas.Paint(RoundedBox(to(66), to(30) + to(70) * mark / 4, to(mark % 2 == 0 ? 10 : 6), to(1), 0), kDark);
  }
}

void DrawBowl(Canvas& canvas, const Scale& to) {
  canvas.Paint(RoundedBox(to(57), to(48), to(16), to(12), to(2)), Steel(to(57), to(16)));
  canvas.Paint(RoundedBox(to(61), to(58), to(8), to(11), to(1)), Steel(to(61), to(8)));
  canvas.Paint(RoundedBox(to(1), to(1), to(128), to(10), to(4)), Steel(to(1), to(128)));
  canvas.Paint(RoundedBox(to(4), to(6), to(122), to(44), to(12)), Steel(to(4), to(122)));
  canvas.Paint(RoundedBox(to(13), to(12), to(104), to(30), to(4)), kDark);
}

void DrawConveyor(Canvas& canvas, const Scale& to) {
  const auto whole = RoundedBox(-to(4), 0, to(272), to(11), 0);
  canvas.Paint(whole, [&](int, int y) { return Between(0x586878, 0x28323C, y, to.Dots(11)); });
  for (int link = 0; link < 264; link += 22) {
    canvas.Paint(RoundedBox(to(link), to(1), to(2), to(8), 0), Dot{0x1C242C});
  }
  canvas.Paint(RoundedBox(-to(4), to(11), to(272), to(13), 0),
               [&](int, int y) { return Between(0xA8B8C4, 0x687884, y - to.Dots(11), to.Dots(13)); });
  for (int roller = 16; roller < 264; roller += 33) {
    canvas.Paint(Ellipse(to(roller), to(17), to(5), to(5)), Dot{0x404C58});
    canvas.Paint(Ellipse(to(roller), to(17), to(2), to(2)), Dot{0xC8D4DC});
  }
}

// A bottle as a shape, `edge` inside of its outline.
auto BottleShape(const Scale& to, int edge) {
  const auto neck = RoundedBox(to(11 + edge), to(4), to(12 - 2 * edge), to(20), to(2));
  const auto shoulder = Ellipse(to(17), to(30), to(14 - edge), to(12 - edge));
  const auto body = RoundedBox(to(2 + edge), to(28), to(30 - 2 * edge), to(55 - edge), to(6 - edge));
  return [=](int x, int y) { return body(x, y) || shoulder(x, y) || neck(x, y); };
}

void DrawBottle(Canvas& canvas, const Scale& to) {
  canvas.Paint(BottleShape(to, 0), kGlassEdge);
  canvas.CutOut(BottleShape(to, 2));
  canvas.Paint(RoundedBox(to(7), to(34), to(2), to(38), to(1)), kWhite);
}

void DrawFullBottle(Canvas& canvas, const Scale& to) {
  canvas.Paint(BottleShape(to, 0), kGlassEdge);
  canvas.Paint(BottleShape(to, 2), [&](int x, int) { return Between(kLiquid, 0xA05010, x, canvas.Width()); });
  canvas.Paint(RoundedBox(to(10), to(1), to(14), to(9), to(2)), Dot{0x2C98D8});
  canvas.Paint(RoundedBox(to(4), to(42), to(26), to(26), 0), kWhite);
  canvas.Paint(Drop(to(17), to(45), to(6)), kLiquid);
  canvas.Paint(RoundedBox(to(7), to(33), to(2), to(7), to(1)), kWhite);
}

void DrawPump(Canvas& canvas, const Scale& to, Dot heart) {
  canvas.Paint(RoundedBox(to(4), to(37), to(36), to(6), to(1)), Dot{0x5C6C7C});
  canvas.Paint(RoundedBox(to(28), to(3), to(16), to(16), to(1)), Steel(to(28), to(16)));
  canvas.Paint(Ellipse(to(22), to(22), to(18), to(18)), Steel(to(4), to(36)));
  canvas.Paint(Ellipse(to(22), to(22), to(12), to(12)), kDark);
  canvas.Paint(Ellipse(to(22), to(22), to(10), to(10)), heart);
  canvas.Paint(Triangle(to(17), to(15), to(17), to(29), to(30), to(22)), kWhite);
}

void DrawLamp(Canvas& canvas, const Scale& to, Dot colour) {
  canvas.Paint(Ellipse(to(11), to(11), to(10), to(10)), Dot{0x687884});
  canvas.Paint(Ellipse(to(11), to(11), to(8), to(8)), [&](int x, int y) {
    return Between(Between(colour, 0xFFFFFF, 2, 5), colour, std::min(x + y, canvas.Width()), canvas.Width());
  });
}

void DrawWarning(Canvas& canvas, const Scale& to) {
  canvas.Paint(Triangle(to(18), to(1), to(1), to(31), to(35), to(31)), kDark);
  canvas.Paint(Triangle(to(18), to(4), to(4), to(29), to(32), to(29)), Dot{0xF0A830});
  canvas.Paint(RoundedBox(to(16), to(12), to(4), to(9), to(1)), kDark);
  canvas.Paint(RoundedBox(to(16), to(23), to(4), to(4), to(1)), kDark);
}

// The sign of a tab, in a square of 24 around its middle.
void DrawSign(Canvas& canvas, const Scale& to, int tab, int x, int y) {
  const auto box = [&](int left, int top, int width, int height, int radius, Dot colour) {
    canvas.Paint(RoundedBox(x + to(left), y + to(top), to(width), to(height), to(radius)), colour);
  };
  switch (tab) {
    case 0:  // a bottle
      box(-3, -12, 6, 9, 1, 0x2C98D8);
      box(-6, -5, 12, 17, 3, kGlassEdge);
      box(-4, 2, 8, 8, 1, kLiquid);
      break;
    case 1:  // a sheet
      box(-9, -12, 18, 24, 2, kWhite);
      for (const int line : {-8, -3, 2, 7}) box(-6, line, line == 7 ? 7 : 12, 2, 0, 0x2C78A8);
      break;
    case 2:  // sliders
      for (const int slider : {-8, 0, 8}) {
        box(slider - 1, -11, 2, 22, 1, 0x90A8B8);
        box(slider - 4, slider == 0 ? 2 : -7, 8, 5, 1, 0x38B0E8);
      }
      break;
    case 3:  // a bell
      canvas.Paint(Ellipse(x, y - to(3), to(8), to(8)), Dot{0xF0A830});
      box(-8, -3, 16, 9, 0, 0xF0A830);
      box(-11, 5, 22, 3, 1, 0xF0A830);
      canvas.Paint(Ellipse(x, y + to(9), to(3), to(2)), Dot{0xF0A830});
      break;
    case 4:  // columns
      for (int column = 0; column < 4; ++column) {
        const int height = std::array{9, 16, 12, 22}[static_cast<std::size_t>(column)];
        box(-11 + 6 * column, 11 - height, 4, height, 0, column == 3 ? 0x3CC878 : 0x38B0E8);
      }
      break;
    default:  // an i
      canvas.Paint(Ellipse(x, y, to(12), to(12)), Dot{0x38B0E8});
      box(-2, -8, 4, 4, 2, kWhite);
      box(-2, -2, 4, 10, 1, kWhite);
  }
}

constexpr std::array<std::string_view, image::kTabs> kTabNames = {"Overview", "Recipe", "Manual",
                                                                  "Alarms",   "Trend",  "Info"};

void DrawTab(Canvas& canvas, const Scale& to, int tab) {
  DrawSign(canvas, to, tab, to(image::kTabWidth / 2), to(14));
  const int font = to.Font(Size::Small);
  const std::string_view name = kTabNames[static_cast<std::size_t>(tab)];
  const FontReader reader = FontWithId(font);
  canvas.Write((canvas.Width() - reader.WidthOf(name)) / 2, canvas.Height() - reader.Height(), font, name, kWhite);
}

struct Drawn {
  std::uint16_t id;
  std::string_view name;
  int width;
  int height;
  void (*draw)(Canvas&, const Scale&);
};

// clang-format off
constexpr Drawn kDrawings[] = {
    {image::Logo,       "Logo",          190,  56, DrawLogo},
    {image::Tank,       "Tank",           96, 146, DrawTank},
    {image::Bowl,       "Filler bowl",   130,  70, DrawBowl},
    {image::Conveyor,   "Conveyor",      264,  24, DrawConveyor},
    {image::Bottle,     "Bottle",         34,  84, DrawBottle},
    {image::FullBottle, "Bottle, full",   34,  84, DrawFullBottle},
    {image::Pump,       "Pump",           48,  44, [](Canvas& c, const Scale& to) { DrawPump(c, to, 0x687884); }},
    {image::PumpRuns,   "Pump, running",  48,  44, [](Canvas& c, const Scale& to) { DrawPump(c, to, 0x30B868); }},
    {image::LampOff,    "Lamp, off",      22,  22, [](Canvas& c, const Scale& to) { DrawLamp(c, to, 0x283440); }},
    {image::LampOn,     "Lamp, on",       22,  22, [](Canvas& c, const Scale& to) { DrawLamp(c, to, 0x30C868); }},
    {image::LampAlarm,  "Lamp, alarm",    22,  22, [](Canvas& c, const Scale& to) { DrawLamp(c, to, 0xE04848); }},
    {image::Warning,    "Warning",        36,  32, DrawWarning},
};
// clang-format on

std::string Bitmap(const Layout& layout, int width, int height, Dot ground, auto&& draw) {
  Canvas canvas(layout.Length(width), layout.Length(height), ground);
  draw(canvas, Scale(layout));
  return ToBitmap(canvas.Finish());
}

}  // namespace

std::vector<PanelImage> DrawImages(const Layout& layout) {
  std::vector<PanelImage> images;
  for (const Drawn& drawn : kDrawings) {
    images.push_back(
        {drawn.id, std::string(drawn.name), Bitmap(layout, drawn.width, drawn.height, kPageGround, drawn.draw)});
  }
  for (int tab = 0; tab < image::kTabs; ++tab) {
    const auto draw = [tab](Canvas& canvas, const Scale& to) { DrawTab(canvas, to, tab); };
    images.push_back({static_cast<std::uint16_t>(image::FirstTab + tab),
                      "Tab " + std::string(kTabNames[static_cast<std::size_t>(tab)]),
                      Bitmap(layout, image::kTabWidth, image::kTabHeight, kTabGround, draw)});
  }
  return images;
}

}  // namespace sim
