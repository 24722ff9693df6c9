#include "KvTele2/ui/PanelKeyMap.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kv {
namespace {

struct KeyRow {
  std::string_view name;  // as controllers call it
  int key;
  int orKey;         // 0: no other
  const char* text;  // for tooltips
};

// clang-format off
constexpr std::array kRows{
    KeyRow{"F1",    Qt::Key_F1,     0,                 "F1"},
    KeyRow{"F2",    Qt::Key_F2,     0,                 "F2"},
    KeyRow{"F3",    Qt::Key_F3,     0,                 "F3"},
    KeyRow{"F4",    Qt::Key_F4,     0,                 "F4"},
    KeyRow{"F5",    Qt::Key_F5,     0,                 "F5"},
    KeyRow{"F6",    Qt::Key_F6,     0,                 "F6"},
    KeyRow{"F7",    Qt::Key_F7,     0,                 "F7"},
    KeyRow{"F8",    Qt::Key_F8,     0,                 "F8"},
    KeyRow{"0",     Qt::Key_0,      0,                 "0"},
    KeyRow{"1",     Qt::Key_1,      0,                 "1"},
    KeyRow{"2",     Qt::Key_2,      0,                 "2"},
    KeyRow{"3",     Qt::Key_3,      0,                 "3"},
    KeyRow{"4",     Qt::Key_4,      0,                 "4"},
    KeyRow{"5",     Qt::Key_5,      0,                 "5"},
    KeyRow{"6",     Qt::Key_6,      0,                 "6"},
    KeyRow{"7",     Qt::Key_7,      0,                 "7"},
    KeyRow{"8",     Qt::Key_8,      0,                 "8"},
    KeyRow{"9",     Qt::Key_9,      0,                 "9"},
    KeyRow{".",     Qt::Key_Period, Qt::Key_Comma,     ". or ,"},
    KeyRow{"-",     Qt::Key_Minus,  0,                 "-"},
    KeyRow{"Enter", Qt::Key_Return, Qt::Key_Enter,     "Enter or Return"},
    KeyRow{"Esc",   Qt::Key_Escape, 0,                 "Esc, not in full screen"},
    KeyRow{"Up",    Qt::Key_Up,     0,                 "Up"},
    KeyRow{"Down",  Qt::Key_Down,   0,                 "Down"},
    KeyRow{"Left",  Qt::Key_Left,   0,                 "Left"},
    KeyRow{"Right", Qt::Key_Right,  0,                 "Right"},
    KeyRow{"Del",   Qt::Key_Delete, Qt::Key_Backspace, "Delete or Backspace"},
};
// clang-format on

}  // namespace

std::optional<std::uint8_t> ControllerKeyOf(const PanelDescription& panel, int key) {
  const auto row =
      std::ranges::find_if(kRows, [key](const KeyRow& each) { return each.key == key || each.orKey == key; });
  if (key == 0 || row == kRows.end()) return std::nullopt;
  const auto found = std::ranges::find(panel.keys, row->name, &PanelKey::name);
  return found == panel.keys.end() ? std::nullopt : std::optional(found->id);
}

QString KeyboardText(const PanelKey& key) {
  const auto row = std::ranges::find(kRows, std::string_view(key.name), &KeyRow::name);
  return row == kRows.end() ? QString() : QString(row->text);
}

}  // namespace kv
