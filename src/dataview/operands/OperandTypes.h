#pragma once

#include <cstdint>

namespace kv::mdlDataTypesView {

// The operand types, in the order in which the operand grid shows them. Files and grids hold these numbers; any other
// number has no name, no operands, and nothing offered for it.
enum class OperandTypeCode : std::int32_t {
  MB = 1,
  MI,
  MF,
  ML,
  DW,
  DBI,
  SB,
  SI,
  SL,
  SDW,
  Input,
  Output,
  TimerPreset,
  TimerCurrent,
  TimerValue,
  CounterPreset,
  CounterCurrent,
  CounterValue,
  XB,
  XI,
  XL,
  XDW,
};
inline constexpr std::int32_t kOperandTypeCount = 22;

// In what pieces a row is shown: the number of bytes, 0 for a single bit. A view only; an operand keeps its own width.
enum class SizeCode : std::int32_t { Bit1 = 0, Bit8 = 1, Bit16 = 2, Bit32 = 4 };

// How each piece is written.
enum class FormatCode : std::int32_t { None = 0, Ascii = 1, Binary, Unsigned, Hex, Decimal, Float };

}  // namespace kv::mdlDataTypesView
