#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/ModelTable.h"

namespace sim {

// A row of cells that a controller keeps. Timers and counters are three rows each.
enum class Area : std::uint8_t {
  MB,
  SB,
  MI,
  SI,
  ML,
  SL,
  MF,
  Input,
  Output,
  DW,
  SDW,
  XB,
  XI,
  XL,
  XDW,
  DBI,
  TimerPreset,
  TimerCurrent,
  TimerBit,
  CounterPreset,
  CounterCurrent,
  CounterBit,
};
inline constexpr std::size_t kAreaCount = 22;

// How many cells an area has in each operand group, and the greatest value of a cell. Addresses begin at 0.
struct AreaRow {
  Area area;
  std::string_view name;  // as in state files
  std::uint32_t greatest;
  std::array<std::uint16_t, 3> counts;       // by OperandGroup
  std::array<std::uint16_t, 3> olderCounts;  // the same under an older O/S
};

[[nodiscard]] std::span<const AreaRow> AllAreas();  // in the order of Area
[[nodiscard]] const AreaRow& RowOf(Area area);
[[nodiscard]] std::size_t CellCount(Area area, OperandGroup group, bool olderOs);

// One operand type as the wire knows it: its code, the areas that make up one operand, and what requests may do with
// it.
struct OperandTypeRow {
  std::uint8_t code;
  std::uint8_t fields;  // how many areas an operand is made of: 1 or 3
  std::array<Area, 3> areas;
  std::array<std::uint8_t, 3> digits;  // of each field in an ASCII frame; 2 is a bit
  std::uint8_t most;                   // operands one request may carry
  bool writable;
  bool asTimerWord;  // the cells are times, the wire shows timer words

  [[nodiscard]] constexpr std::size_t Digits() const { return std::size_t{digits[0]} + digits[1] + digits[2]; }
};

// Types up to this code exist in operand lists of block messages too.
inline constexpr std::uint32_t kLastListedType = 0x4F;

// Null when there is no such type.
[[nodiscard]] const OperandTypeRow* FindOperandType(std::uint32_t code);

}  // namespace sim
