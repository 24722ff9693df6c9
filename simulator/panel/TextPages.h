#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "simulator/panel/Display.h"
#include "simulator/panel/PageBuilder.h"
#include "simulator/panel/PanelView.h"

namespace sim {

// The keys beside a text display; the id of a key is its place here.
struct PanelKey {
  const char* name;
  int lamp;  // -1: none
};
inline constexpr std::array<PanelKey, 21> kPanelKeys = {{
    {"F1", 0},     {"F2", 1},   {"F3", 2},  {"F4", 3},    {"0", -1},    {"1", -1},     {"2", -1},
    {"3", -1},     {"4", -1},   {"5", -1},  {"6", -1},    {"7", -1},    {"8", -1},     {"9", -1},
    {"Enter", -1}, {"Esc", -1}, {"Up", -1}, {"Down", -1}, {"Left", -1}, {"Right", -1}, {"Del", -1},
}};
inline constexpr int kTextPages = 6;

// What a page of a text display shows.
struct TextContent {
  struct Cursor {
    int column = 0;
    int row = 0;
    CursorForm form = CursorForm::None;
  };

  std::uint16_t number = 0;
  std::string name;
  std::vector<std::string> rows;
  std::vector<std::string> attributes;  // of each cell of each row
  Cursor cursor;
  std::array<Lamp, 4> lamps{};
  std::array<std::optional<Control>, kPanelKeys.size()> keys;
};

[[nodiscard]] TextContent DrawTextPage(const Display& display, const PanelView& view);

}  // namespace sim
