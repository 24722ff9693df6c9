#pragma once

#include <string>
#include <vector>

#include "base/LittleEndian.h"
#include "link/PanelLink.h"

// Records of a screen, made by hand from the protocol page.
namespace kv::test {

inline std::string Words(std::initializer_list<int> numbers) {
  std::string bytes;
  for (const int number : numbers) AppendLittleEndian(bytes, static_cast<std::uint16_t>(number));
  return bytes;
}

inline std::string Byte(int number) {
  return std::string(1, static_cast<char>(number));
}

inline PanelRecord Page(int number, int background = 0, const std::string& name = {}) {
  return {0, 1, Words({number, background}) + name};
}

inline PanelRecord Touch(int slot, std::initializer_list<int> area, const std::string& name, int role = 1,
                         int state = 0) {
  return {static_cast<std::uint16_t>(slot), 6, Words(area) + Byte(role) + Byte(state) + name};
}

inline PanelRecord Rectangle(int slot, std::initializer_list<int> area, int colour) {
  return {static_cast<std::uint16_t>(slot), 16, Words(area) + Words({colour})};
}

inline PanelRecord Text(int slot, int x, int y, int width, int font, const std::string& text, int style = 0) {
  return {static_cast<std::uint16_t>(slot), 19, Words({x, y, width, font, 0xFFFF, 0x001F}) + Byte(style) + text};
}

inline PanelRecord Row(int row, std::string characters, std::size_t columns, int attributes = 0) {
  characters.resize(columns, ' ');
  return {static_cast<std::uint16_t>(16 + row), 3,
          characters + std::string((columns + 1) / 2, static_cast<char>(attributes))};
}

inline PanelDescription ColourPanel(int width, int height) {
  return {.kind = PanelKind::Colour,
          .width = static_cast<std::uint16_t>(width),
          .height = static_cast<std::uint16_t>(height),
          .pages = 2};
}

inline PanelDescription TextPanel(int columns, int rows) {
  return {.kind = PanelKind::Text,
          .width = static_cast<std::uint16_t>(columns),
          .height = static_cast<std::uint16_t>(rows),
          .pages = 2,
          .keys = {{.id = 3, .lamp = 0, .name = "F1"}, {.id = 7, .lamp = {}, .name = "Esc"}}};
}

// The reply that tells these records and nothing else, `before` being the number until then.
inline PanelChanges Told(std::vector<PanelRecord> records, std::uint32_t before = 0, std::uint16_t epoch = 9) {
  PanelChanges changes;
  changes.upTo = {epoch, before + static_cast<std::uint32_t>(records.size())};
  changes.beginsAnew = before == 0;
  changes.records = std::move(records);
  return changes;
}

// A font of version 2 whose characters "A" and "B" are a full and a hollow box of `width` dots and 6 rows.
inline std::string SmallFont(int width = 4) {
  std::string font = "KFNT" + Byte(2) + Byte(6) + Byte(5) + Byte('A') + Words({2}) + Byte(width) + Byte(width);
  const int full = 0xFF << (8 - width) & 0xFF;
  const int hollow = 0x80 | 1 << (8 - width);
  for (int row = 0; row < 6; ++row) font += Byte(full);
  for (int row = 0; row < 6; ++row) font += Byte(row == 0 || row == 5 ? full : hollow);
  return font;
}

// A bitmap of 24 bits, two dots wide and two high: red and FF00FF above, green and blue below.
inline std::string SmallBitmap(int height = 2) {
  std::string bitmap = "BM" + std::string(8, '\0') + Words({54, 0}) + Words({40, 0}) + Words({2, 0});
  AppendLittleEndian(bitmap, static_cast<std::uint32_t>(height));
  bitmap += Words({1, 24}) + std::string(24, '\0');
  const std::string above = Byte(0) + Byte(0) + Byte(255) + Byte(255) + Byte(0) + Byte(255) + Words({0});
  const std::string below = Byte(0) + Byte(255) + Byte(0) + Byte(255) + Byte(0) + Byte(0) + Words({0});
  return bitmap + (height > 0 ? below + above : above + below);
}

}  // namespace kv::test
