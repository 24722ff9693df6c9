#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/panel/PageBuilder.h"
#include "simulator/panel/PlantOperands.h"

namespace sim {

// What a panel tells of the controller that it belongs to.
struct PanelFacts {
  std::string model;
  std::string os;
  std::uint32_t serial = 0;
  std::string project;
};

// A value of the recipe that is being typed.
struct Entry {
  int setting = 0;
  std::string digits;
  bool isRefused = false;  // what was confirmed is out of range
};

// The pages; those up to Info have tabs on a colour display.
enum class PageNumber : std::uint16_t { Overview = 1, Recipe, Manual, Alarms, Trend, Info, Entry, System };

// All that a page is drawn from.
struct PanelView {
  const PlantOperands& operands;
  const PanelFacts& facts;
  PageNumber page = PageNumber::Overview;
  bool programRuns = true;
  bool isAwake = false;        // the plant moves
  std::optional<Order> held;   // what is pressed at this moment
  std::optional<Entry> entry;  // what is being typed
  int setting = 0;             // the value that a text display has chosen

  [[nodiscard]] bool MachineRuns() const { return programRuns && isAwake && operands.Bit(plant::kRuns); }
  [[nodiscard]] bool Holds(const Order& order) const { return held && *held == order; }
};

// Texts that both kinds of display share.
[[nodiscard]] std::string StateText(const PanelView& view);
[[nodiscard]] std::string PercentText(int thousandths);
[[nodiscard]] std::string SettingText(const PanelView& view, int setting);  // "500 ml"
[[nodiscard]] std::string TypedText(const Entry& entry);                    // the same while it is typed
// Whether an alarm stands in the list: it is there, or was and has not been acknowledged.
[[nodiscard]] bool IsListed(const PlantOperands& operands, int alarm);
[[nodiscard]] std::string AlarmStateText(const PlantOperands& operands, int alarm);
[[nodiscard]] int CountUnseen(const PlantOperands& operands);
// In ten thousandths, as bars have it.
[[nodiscard]] int ShareOf(const PlantOperands& operands, int word);

}  // namespace sim
