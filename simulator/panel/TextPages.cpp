#include "simulator/panel/TextPages.h"

#include <algorithm>
#include <string_view>

namespace sim {
namespace {

using namespace plant;

// Ids of keys.
enum Key : std::size_t { F1, F2, F3, F4, Digit0, Enter = 14, Esc, Up, Down, Left, Right, Del };

constexpr std::array<const char*, kTextPages> kNames = {"Overview", "Recipe", "Manual", "Alarms", "Levels", "Info"};

// Rows of characters with their attributes.
class Rows {
 public:
  Rows(const Display& display, TextContent& content)
      : mColumns(static_cast<std::size_t>(display.width)), mContent(content) {
    const auto rows = static_cast<std::size_t>(display.height);
    content.rows.assign(rows, std::string(mColumns, ' '));
    content.attributes.assign(rows, std::string(mColumns, '\0'));
  }

  [[nodiscard]] std::size_t Columns() const { return mColumns; }
  [[nodiscard]] std::size_t Count() const { return mContent.rows.size(); }

  void Put(std::size_t row, std::size_t column, std::string_view text, std::uint8_t attribute = 0) {
    if (row >= Count()) return;
    for (std::size_t i = 0; i < text.size() && column + i < mColumns; ++i) {
      mContent.rows[row][column + i] = text[i];
      mContent.attributes[row][column + i] = static_cast<char>(attribute);
    }
  }
  // One text at each end.
  void Spread(std::size_t row, std::string_view left, std::string_view right, std::uint8_t leftAttribute = 0) {
    Put(row, 0, left, leftAttribute);
    Put(row, mColumns - std::min(mColumns, right.size()), right);
  }

 private:
  std::size_t mColumns;
  TextContent& mContent;
};

std::string RateText(const PanelView& view) {
  return std::to_string(view.operands.Word(kRate)) + "/min";
}

int FirstUnseen(const PlantOperands& operands) {
  for (int alarm = 0; alarm < kAlarms; ++alarm) {
    if (operands.Bit(kUnseen + alarm)) return alarm;
  }
  return -1;
}

void ShowOverview(Rows& rows, const PanelView& view) {
  const std::string filled = std::to_string(view.operands.Word(kFilled));
  const std::string wanted = std::to_string(view.operands.Word(kBatch));
  rows.Spread(0, "Line 1", StateText(view));
  if (rows.Count() == 2) return rows.Spread(1, filled + "/" + wanted, RateText(view));
  rows.Spread(1, "Filled", filled + " of " + wanted);
  rows.Spread(2, "Rate", RateText(view));
  const int alarm = FirstUnseen(view.operands);
  if (alarm < 0) return rows.Spread(3, "F1 start", "F2 stop");
  rows.Put(3, 0, kAlarmTexts[alarm], kBlinking);
}

// The value that is chosen, or typed; the unit goes where there is no room.
void ShowSetting(Rows& rows, TextContent& content, const PanelView& view, std::size_t row, int setting) {
  const bool isChosen = setting == view.setting;
  const bool isTyped = isChosen && view.entry.has_value();
  const std::string name = kSettingTable[setting].name;
  std::string value = isTyped ? TypedText(*view.entry) : SettingText(view, setting);
  if (name.size() + value.size() >= rows.Columns()) value.resize(value.find(' '));
  rows.Spread(row, name, value, isChosen && rows.Count() > 2 ? kInverse : 0);
  if (!isTyped) return;
  const std::size_t column = rows.Columns() - value.size() + view.entry->digits.size();
  rows.Put(row, column, " ");
  content.cursor = {static_cast<int>(column), static_cast<int>(row), CursorForm::Block};
}

void ShowRecipe(Rows& rows, TextContent& content, const PanelView& view) {
  const Setting& chosen = kSettingTable[view.setting];
  const bool isRefused = view.entry && view.entry->isRefused;
  const std::string range = std::to_string(chosen.least) + ".." + std::to_string(chosen.most);
  rows.Spread(0, isRefused ? "Only" : "Recipe",
              isRefused ? range : std::to_string(view.setting + 1) + "/" + std::to_string(kSettings));
  if (rows.Count() == 2) return ShowSetting(rows, content, view, 1, view.setting);
  for (int setting = 0; setting < kSettings; ++setting) {
    ShowSetting(rows, content, view, static_cast<std::size_t>(setting) + 1, setting);
  }
}

void ShowManual(Rows& rows, const PanelView& view) {
  const auto look = [&](int bit) { return view.Holds({Command::Jog, bit}) ? kInverse : std::uint8_t{0}; };
  if (rows.Count() == 2) {
    rows.Put(0, 0, "F4 belt", look(kJogConveyor));
    rows.Put(0, 9, "Up pump", look(kJogPump));
    rows.Put(1, 0, "Down valve", look(kJogValve));
    return;
  }
  rows.Put(0, 0, view.MachineRuns() ? "Stop the line first" : "Moves while held:");
  rows.Put(1, 0, "F4   conveyor", look(kJogConveyor));
  rows.Put(2, 0, "Up   pump", look(kJogPump));
  rows.Put(3, 0, "Down valve", look(kJogValve));
}

void ShowAlarms(Rows& rows, const PanelView& view) {
  std::size_t row = 1;
  int count = 0;
  for (int alarm = 0; alarm < kAlarms; ++alarm) {
    if (!IsListed(view.operands, alarm)) continue;
    ++count;
    const bool isUnseen = view.operands.Bit(kUnseen + alarm);
    rows.Put(row++, 0, kAlarmTexts[alarm], isUnseen ? kBlinking : std::uint8_t{0});
  }
  rows.Spread(0, "Alarms", std::to_string(count));
  if (count == 0) rows.Put(1, 0, "none");
}

// A bar of inverse blanks between the name and the percentage.
void ShowLevel(Rows& rows, const PanelView& view, std::size_t row, std::string_view name, int word) {
  constexpr std::size_t kBarAt = 5;
  const int level = view.operands.Word(word);
  const std::size_t width = rows.Columns() - kBarAt - 6;
  const auto filled = static_cast<std::size_t>(std::clamp(level, 0, 1000)) * width / 1000;
  rows.Spread(row, name, PercentText(level));
  rows.Put(row, kBarAt, std::string(filled, ' '), kInverse);
  rows.Put(row, kBarAt + filled, std::string(width - filled, '.'));
}

void ShowLevels(Rows& rows, const PanelView& view) {
  ShowLevel(rows, view, 0, "Tank", kTank);
  ShowLevel(rows, view, 1, "Bowl", kBowl);
  rows.Spread(2, "Pump", view.operands.Bit(kPumps) ? "on" : "off");
  rows.Spread(3, "Rejected", std::to_string(view.operands.Word(kRejected)));
  rows.Spread(4, "Filled", std::to_string(view.operands.Word(kFilled)));
  rows.Spread(5, "Rate", RateText(view));
}

// A tall display has room for them on every page.
void ShowLevelsBelow(Rows& rows, const PanelView& view) {
  rows.Put(5, 0, std::string(rows.Columns(), '-'));
  ShowLevel(rows, view, 6, "Tank", kTank);
  ShowLevel(rows, view, 7, "Bowl", kBowl);
}

void ShowInfo(Rows& rows, const PanelView& view) {
  rows.Put(0, 0, view.facts.model);
  rows.Spread(1, "O/S", view.facts.os);
  rows.Spread(2, "Serial", std::to_string(view.facts.serial));
  rows.Put(3, 0, view.facts.project.empty() ? "No project" : view.facts.project);
}

void NameKeysOfRecipe(TextContent& content, const PanelView& view) {
  auto& keys = content.keys;
  for (int digit = 0; digit < 10; ++digit) {
    keys[Digit0 + static_cast<std::size_t>(digit)] =
        Control{.role = Role::Entry, .name = std::to_string(digit), .order = {Command::Digit, digit}};
  }
  if (!view.entry) {
    keys[Enter] = Control{.role = Role::Entry, .name = "Change", .order = {Command::EditValue, view.setting}};
    keys[Up] = Control{.name = "Value before", .order = {Command::PreviousValue}};
    keys[Down] = Control{.name = "Next value", .order = {Command::NextValue}};
    return;
  }
  keys[Enter] = Control{.name = "OK", .order = {Command::Confirm}};
  keys[Esc] = Control{.name = "Cancel", .order = {Command::Cancel}};
  keys[Del] = Control{.name = "Delete", .order = {Command::DeleteDigit}};
}

Control HoldControl(const PanelView& view, std::string name, int bit) {
  const Order order{Command::Jog, bit};
  const bool isBlocked = view.MachineRuns() || !view.programRuns;
  const auto state = static_cast<std::uint8_t>((view.Holds(order) ? kPressed : 0) | (isBlocked ? kDisabled : 0));
  return {Role::Held, state, std::move(name), order};
}

void NameKeys(TextContent& content, const PanelView& view) {
  auto& keys = content.keys;
  const std::uint8_t blocked = view.programRuns ? 0 : kDisabled;
  const auto on = static_cast<std::uint8_t>(view.MachineRuns() ? kOn : 0);
  const bool hasUnseen = CountUnseen(view.operands) > 0;
  keys[F1] = Control{.state = static_cast<std::uint8_t>(blocked | on), .name = "Start", .order = {Command::Start}};
  keys[F2] = Control{.state = blocked, .name = "Stop", .order = {Command::Stop}};
  keys[F3] =
      Control{.state = hasUnseen ? std::uint8_t{0} : kDisabled, .name = "Acknowledge", .order = {Command::Acknowledge}};
  keys[F4] = HoldControl(view, "Conveyor", kJogConveyor);
  if (view.page == PageNumber::Recipe) NameKeysOfRecipe(content, view);
  if (view.page == PageNumber::Manual) {
    keys[Up] = HoldControl(view, "Pump", kJogPump);
    keys[Down] = HoldControl(view, "Valve", kJogValve);
  }
  if (view.entry) return;
  const int page = static_cast<int>(view.page) - 1;
  const auto link = [](int to) {
    const int place = (to + kTextPages) % kTextPages;
    return Control{
        .role = Role::Link, .name = kNames[static_cast<std::size_t>(place)], .order = {Command::ShowPage, place + 1}};
  };
  keys[Left] = link(page - 1);
  keys[Right] = link(page + 1);
}

}  // namespace

TextContent DrawTextPage(const Display& display, const PanelView& view) {
  TextContent content;
  content.number = static_cast<std::uint16_t>(view.page);
  content.name = kNames[static_cast<std::size_t>(content.number) - 1];
  Rows rows(display, content);
  switch (view.page) {
    case PageNumber::Recipe:
      ShowRecipe(rows, content, view);
      break;
    case PageNumber::Manual:
      ShowManual(rows, view);
      break;
    case PageNumber::Alarms:
      ShowAlarms(rows, view);
      break;
    case PageNumber::Trend:
      ShowLevels(rows, view);
      break;
    case PageNumber::Info:
      ShowInfo(rows, view);
      break;
    default:
      ShowOverview(rows, view);
  }
  if (rows.Count() >= 8 && view.page != PageNumber::Trend) ShowLevelsBelow(rows, view);
  const bool runs = view.MachineRuns();
  content.lamps = {runs ? Lamp::On : Lamp::Off, runs ? Lamp::Off : Lamp::On,
                   CountUnseen(view.operands) > 0 ? Lamp::Blinking : Lamp::Off,
                   view.Holds({Command::Jog, kJogConveyor}) ? Lamp::On : Lamp::Off};
  NameKeys(content, view);
  return content;
}

}  // namespace sim
