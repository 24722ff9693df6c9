#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace sim {

// What a slot of a screen can hold; the numbers are those on the wire (docs/controller-protocol.md, section 10).
enum class RecordKind : std::uint8_t {
  Nothing = 0,
  Page = 1,
  Operator = 2,
  Row = 3,
  Cursor = 4,
  Lamps = 5,
  TouchArea = 6,  // and the meaning of a key
  Rectangle = 16,
  Frame = 17,
  Line = 18,
  Text = 19,
  Image = 20,
  Bar = 21,
};

// What a touch area or a key does.
enum class Role : std::uint8_t { Once = 1, Held = 2, Switch = 3, Entry = 4, Link = 5 };

// States of a touch area or a key, and attributes of a character cell, bit by bit.
inline constexpr std::uint8_t kOn = 1;
inline constexpr std::uint8_t kDisabled = 2;
inline constexpr std::uint8_t kPressed = 4;
inline constexpr std::uint8_t kInverse = 1;
inline constexpr std::uint8_t kBlinking = 2;
inline constexpr std::uint8_t kUnderlined = 4;

enum class Align : std::uint8_t { Left = 0, Centre = 1, Right = 2 };
enum class Direction : std::uint8_t { ToTheRight = 0, Upwards = 1 };
enum class CursorForm : std::uint8_t { None = 0, Underline = 1, Block = 2 };
enum class Lamp : std::uint8_t { Off = 0, On = 1, Blinking = 2 };

// A place on a colour screen, in dots from its upper left corner.
struct Box {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  [[nodiscard]] constexpr bool Contains(int atX, int atY) const {
    return atX >= x && atX - x < width && atY >= y && atY - y < height;
  }
  friend constexpr bool operator==(const Box&, const Box&) = default;
};

// Red in bits 11 to 15, green in 5 to 10, blue in 0 to 4.
using Colour = std::uint16_t;

[[nodiscard]] constexpr Colour Rgb(int red, int green, int blue) {
  return static_cast<Colour>(red / 8 << 11 | green / 4 << 5 | blue / 8);
}

// How a text stands in its place.
struct TextLook {
  int font = 1;
  Colour colour = 0;
  Colour background = 0;
  bool hasBackground = false;
  Align align = Align::Left;
};

// The bodies of records. Texts that are too long are cut to what a record may hold.
[[nodiscard]] std::string PageBody(std::uint16_t number, Colour background, std::string_view name);
[[nodiscard]] std::string OperatorBody(std::string_view name);
[[nodiscard]] std::string RowBody(std::string_view characters, std::string_view attributes);
[[nodiscard]] std::string CursorBody(int column, int row, CursorForm form);
[[nodiscard]] std::string LampsBody(std::span<const Lamp> lamps);
[[nodiscard]] std::string TouchAreaBody(const Box& box, Role role, std::uint8_t state, std::string_view name);
[[nodiscard]] std::string RectangleBody(const Box& box, Colour colour);
[[nodiscard]] std::string FrameBody(const Box& box, int thickness, Colour upperLeft, Colour lowerRight);
[[nodiscard]] std::string LineBody(int x1, int y1, int x2, int y2, Colour colour);
[[nodiscard]] std::string TextBody(int x, int y, int width, const TextLook& look, std::string_view text);
[[nodiscard]] std::string ImageBody(int x, int y, std::uint16_t id);
[[nodiscard]] std::string BarBody(const Box& box, Direction direction, int share, Colour colour, Colour background);

// Where a touch area lies, as its body tells.
[[nodiscard]] Box BoxOfTouchArea(std::string_view body);

}  // namespace sim
