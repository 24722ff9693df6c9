#include "simulator/panel/ScreenRecords.h"

#include <algorithm>
#include <initializer_list>

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kLongestPageName = 40;
constexpr std::size_t kLongestOperator = 20;
constexpr std::size_t kLongestText = 60;
constexpr int kFarthest = 4095;
constexpr int kWholeShare = 10000;

void AppendWord(std::string& body, int value) {
  AppendLittle(body, static_cast<std::uint32_t>(std::clamp(value, 0, kFarthest)), 2);
}

void AppendColour(std::string& body, Colour colour) {
  AppendLittle(body, colour, 2);
}

void AppendByte(std::string& body, int value) {
  body += static_cast<char>(value);
}

std::string Words(std::initializer_list<int> values) {
  std::string body;
  for (const int value : values) AppendWord(body, value);
  return body;
}

std::string OfBox(const Box& box) {
  return Words({box.x, box.y, box.width, box.height});
}

int WordAt(std::string_view body, std::size_t place) {
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(body[at]); };
  return byte(place) | byte(place + 1) << 8;
}

}  // namespace

std::string PageBody(std::uint16_t number, Colour background, std::string_view name) {
  std::string body;
  AppendLittle(body, number, 2);
  AppendColour(body, background);
  return body.append(name.substr(0, kLongestPageName));
}

std::string OperatorBody(std::string_view name) {
  return std::string(name.substr(0, kLongestOperator));
}

std::string RowBody(std::string_view characters, std::string_view attributes) {
  std::string body(characters);
  for (std::size_t cell = 0; cell < attributes.size(); cell += 2) {
    const int right = cell + 1 < attributes.size() ? attributes[cell + 1] : 0;
    AppendByte(body, attributes[cell] | right << 4);
  }
  return body;
}

std::string CursorBody(int column, int row, CursorForm form) {
  return {static_cast<char>(column), static_cast<char>(row), static_cast<char>(form)};
}

std::string LampsBody(std::span<const Lamp> lamps) {
  std::string body((lamps.size() + 3) / 4, '\0');
  for (std::size_t lamp = 0; lamp < lamps.size(); ++lamp) {
    body[lamp / 4] = static_cast<char>(body[lamp / 4] | static_cast<int>(lamps[lamp]) << 2 * (lamp % 4));
  }
  return body;
}

std::string TouchAreaBody(const Box& box, Role role, std::uint8_t state, std::string_view name) {
  std::string body = OfBox(box);
  AppendByte(body, static_cast<int>(role));
  AppendByte(body, state);
  return body.append(name.substr(0, kLongestText));
}

std::string RectangleBody(const Box& box, Colour colour) {
  std::string body = OfBox(box);
  AppendColour(body, colour);
  return body;
}

std::string FrameBody(const Box& box, int thickness, Colour upperLeft, Colour lowerRight) {
  std::string body = OfBox(box);
  AppendByte(body, thickness);
  AppendColour(body, upperLeft);
  AppendColour(body, lowerRight);
  return body;
}

std::string LineBody(int x1, int y1, int x2, int y2, Colour colour) {
  std::string body = Words({x1, y1, x2, y2});
  AppendColour(body, colour);
  return body;
}

std::string TextBody(int x, int y, int width, const TextLook& look, std::string_view text) {
  std::string body = Words({x, y, width, look.font});
  AppendColour(body, look.colour);
  AppendColour(body, look.background);
  AppendByte(body, static_cast<int>(look.align) | (look.hasBackground ? 4 : 0));
  return body.append(text.substr(0, kLongestText));
}

std::string ImageBody(int x, int y, std::uint16_t id) {
  return Words({x, y, id});
}

std::string BarBody(const Box& box, Direction direction, int share, Colour colour, Colour background) {
  std::string body = OfBox(box);
  AppendByte(body, static_cast<int>(direction));
  AppendLittle(body, static_cast<std::uint32_t>(std::clamp(share, 0, kWholeShare)), 2);
  AppendColour(body, colour);
  AppendColour(body, background);
  return body;
}

Box BoxOfTouchArea(std::string_view body) {
  return {WordAt(body, 0), WordAt(body, 2), WordAt(body, 4), WordAt(body, 6)};
}

}  // namespace sim
