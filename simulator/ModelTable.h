#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/panel/Display.h"

namespace sim {

enum class Family : std::uint8_t {
  Aurex,    // understands block messages
  Compact,  // ASCII frames only; keeps its timers as timer words
};

// How many operands of each type a controller has (simulator/OperandTypes.cpp).
enum class OperandGroup : std::uint8_t { Aurex, LargeMemory, Compact };

enum class VersionStyle : std::uint8_t {
  Digits,  // "4.60", build "19"
  Fields,  // "HW 1.0;BT 1.2;FL 2.0;O/S 1.10;", build "B19;"
};

// Which segments the controller has (simulator/Memory.cpp).
enum class MemoryLayout : std::uint8_t { Small, Plain, Large };

// Bits of the panel information byte that a model is born with.
inline constexpr std::uint8_t kDisplay = 1;
inline constexpr std::uint8_t kKeypad = 2;
inline constexpr std::uint8_t kColour = 4;

// One simulated model.
struct Model {
  std::string_view name;      // what it is asked for by
  std::string_view reported;  // its model text while its O/S runs
  std::string_view bootText;  // its model text while its boot loader runs
  std::string_view hardware;  // hardware code
  Family family;
  OperandGroup operands;
  MemoryLayout memory;
  VersionStyle versionStyle;
  std::string_view osVersion;  // the O/S it has when nothing else is asked for
  int osBuild;                 // 0 to 99
  std::string_view osModel;    // what an O/S image made for it carries: 4 characters Aurex, 3 compact
  std::uint8_t panel;          // kDisplay, kKeypad, kColour
  Display display;

  [[nodiscard]] constexpr bool UnderstandsBlocks() const { return family == Family::Aurex; }
  [[nodiscard]] constexpr bool HasColour() const { return (panel & kColour) != 0; }
};

// All models, in the order of a list for people.
[[nodiscard]] std::span<const Model> AllModels();

// The model of that name, of one of the short names ("K670", "K670-T40"), or the first that reports the text
// ("Q50-2-R34"); null when there is none.
[[nodiscard]] const Model* FindModel(std::string_view name);

}  // namespace sim
