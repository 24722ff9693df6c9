// The recipe, and the page on which one of its values is typed.

#include <string>

#include "simulator/panel/ColourPages.h"
#include "simulator/panel/Theme.h"

namespace sim::pages {
namespace {

using Size = PageBuilder::Size;

void DrawSetting(PageBuilder& page, const PanelView& view, int setting) {
  const int y = 64 + setting * 84;
  const char* name = plant::kSettingTable[setting].name;
  const Box field{260, y, 280, 64};
  page.Text({32, y, 220, 64}, Size::Large, name, theme::kText);
  page.Rectangle(field, theme::kSunk);
  page.Text({270, y, 256, 64}, Size::Large, SettingText(view, setting), theme::kAccent, Align::Right);
  page.Area(field, {.role = Role::Entry, .name = name, .order = {Command::EditValue, setting}});
}

// A digit or a word of the keypad, by row and column.
struct Key {
  const char* name;
  Order order;
};
constexpr int kColumns = 3;
constexpr Key kKeypad[] = {
    {"7", {Command::Digit, 7}},         {"8", {Command::Digit, 8}}, {"9", {Command::Digit, 9}},
    {"4", {Command::Digit, 4}},         {"5", {Command::Digit, 5}}, {"6", {Command::Digit, 6}},
    {"1", {Command::Digit, 1}},         {"2", {Command::Digit, 2}}, {"3", {Command::Digit, 3}},
    {"Del", {Command::DeleteDigit, 0}}, {"0", {Command::Digit, 0}}, {"OK", {Command::Confirm, 0}},
};
constexpr Box kPad{400, 60, 384, 404};
constexpr Box kKeySize{0, 0, kPad.width / kColumns, kPad.height / 4};

void DrawKeypad(PageBuilder& page) {
  page.Rectangle(kPad, theme::kCard);
  for (int line = 1; line < kColumns; ++line) {
    const int x = kPad.x + line * kKeySize.width;
    page.Line(x, kPad.y, x, kPad.y + kPad.height, theme::kGround);
  }
  for (int line = 1; line < 4; ++line) {
    const int y = kPad.y + line * kKeySize.height;
    page.Line(kPad.x, y, kPad.x + kPad.width, y, theme::kGround);
  }
  int place = 0;
  for (const Key& key : kKeypad) {
    const Box box{kPad.x + place % kColumns * kKeySize.width, kPad.y + place / kColumns * kKeySize.height,
                  kKeySize.width, kKeySize.height};
    const Colour colour = key.order.command == Command::Confirm ? theme::kAccent : theme::kText;
    page.Text(box, Size::Large, key.name, colour, Align::Centre);
    page.Area(box, {.name = key.name, .order = key.order});
    ++place;
  }
}

}  // namespace

void Recipe(PageBuilder& page, const PanelView& view) {
  for (int setting = 0; setting < plant::kSettings; ++setting) DrawSetting(page, view, setting);
  const bool refills = view.operands.Bit(plant::kRefills);
  const Box toggle{260, 326, 280, 64};
  page.Text({32, 326, 220, 64}, Size::Large, "Refill", theme::kText);
  page.Rectangle(toggle, refills ? theme::kGreen : theme::kCard);
  page.Text(toggle, Size::Large, refills ? "by itself" : "off", theme::kText, Align::Centre);
  page.Area(toggle, {.role = Role::Switch,
                     .state = static_cast<std::uint8_t>(refills ? kOn : 0),
                     .name = "Refill",
                     .order = {Command::ToggleRefill}});
  page.Button({570, 64, 204, 64}, theme::kChosen, {.name = "New batch", .order = {Command::NewBatch}});
}

void EnterValue(PageBuilder& page, const PanelView& view) {
  const Entry entry = view.entry.value_or(Entry{});
  const plant::Setting& setting = plant::kSettingTable[entry.setting];
  const std::string range = std::to_string(setting.least) + " to " + std::to_string(setting.most);
  page.Rectangle({24, 60, 352, 80}, theme::kSunk);
  page.Text({36, 60, 328, 80}, Size::Huge, TypedText(entry), entry.isRefused ? theme::kRed : theme::kAccent,
            Align::Right);
  page.Text({24, 150, 352, 30}, Size::Normal, range, entry.isRefused ? theme::kRed : theme::kMuted, Align::Right);
  page.Button({24, 392, 160, 72}, theme::kChosen, {.name = "Esc", .order = {Command::Cancel}});
  DrawKeypad(page);
}

}  // namespace sim::pages
