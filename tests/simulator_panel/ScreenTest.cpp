// The records of a screen, and what makes another thing of them.

#include "simulator/panel/Screen.h"

#include <gtest/gtest.h>

#include "tests/driver/GoldenFrames.h"

namespace sim::test {
namespace {

// The bytes of each kind of record, as they were worked out from the page.
TEST(Screen, RecordsAreTheGoldenOnes) {
  Screen text(0x1234);
  text.Put(1, RecordKind::Operator, OperatorBody("x"));
  text.Put(1, RecordKind::Operator, OperatorBody(""));
  text.ShowPage(2, 0, "Recipe");
  text.Put(2, RecordKind::Cursor, CursorBody(11, 1, CursorForm::Block));
  const Lamp lamps[] = {Lamp::On, Lamp::Off, Lamp::Blinking, Lamp::Off};
  text.Put(3, RecordKind::Lamps, LampsBody(lamps));
  text.Put(16, RecordKind::Row, RowBody("Caf\xE9 3  ", std::string("\1\1\3\0\0\0\0\4", 8)));
  text.Put(32, RecordKind::TouchArea, TouchAreaBody({}, Role::Once, kOn, "Start"));
  Screen colour(0xFFFF);
  colour.Put(1, RecordKind::Operator, OperatorBody("anna"));
  colour.ShowPage(1, Rgb(24, 36, 48), "Overview");
  colour.Put(64, RecordKind::Rectangle, RectangleBody({10, 20, 300, 4}, Rgb(255, 0, 0)));
  colour.Put(65, RecordKind::Frame, FrameBody({0, 0, 800, 480}, 3, Rgb(0, 255, 0), Rgb(0, 0, 255)));
  colour.Put(66, RecordKind::Line, LineBody(799, 0, 0, 479, 0xFFFF));
  const TextLook look{.font = 3, .colour = 0xFFFF, .hasBackground = true, .align = Align::Right};
  colour.Put(67, RecordKind::Text,
             TextBody(5, 6, 200, look,
                      "50 \xB0"
                      "C"));
  colour.Put(68, RecordKind::Image, ImageBody(40, 50, 22));
  colour.Put(69, RecordKind::Bar, BarBody({7, 8, 9, 100}, Direction::Upwards, 8250, Rgb(232, 128, 40), 0));
  colour.Put(70, RecordKind::TouchArea, TouchAreaBody({10, 20, 300, 64}, Role::Held, kOn | kPressed, "Pump"));
  int compared = 0;
  for (const auto& [file, screen] : {std::pair("ascii.txt", &text), std::pair("block.txt", &colour)}) {
    for (const GoldenFrame& golden : ReadGoldenFrames(file)) {
      if (golden.name != "panel-changes" || golden.isRequest) continue;
      const bool isText = screen == &text;
      const std::string data = FromHex(isText ? golden.Field("text").substr(6) : golden.Field("payload"));
      EXPECT_EQ(data.substr(16), screen->Since(0, 0, 8000).records) << file;
      ++compared;
    }
  }
  EXPECT_EQ(compared, 2);
}

// Else who types quickly would be refused: each key makes the screen newer twice.
TEST(Screen, ThatSomethingLooksPressedMakesNoOtherThingOfIt) {
  Screen screen(1);
  const auto put = [&screen](std::uint8_t state) {
    const std::uint32_t before = screen.Number();
    screen.Put(64, RecordKind::TouchArea, TouchAreaBody({0, 0, 9, 9}, Role::Entry, state, "5"));
    return screen.HasAreaChangedAt(4, 4, before);
  };
  EXPECT_TRUE(put(0));
  EXPECT_FALSE(put(kPressed));
  EXPECT_TRUE(put(kOn | kPressed));
  EXPECT_FALSE(put(kOn));
}

}  // namespace
}  // namespace sim::test
