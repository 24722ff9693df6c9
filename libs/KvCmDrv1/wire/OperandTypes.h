#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kv {

// How one operand travels.
enum class OperandShape {
  Bit,      // 2 digits, 00 or 01; a bit of a block message
  Word,     // 4 digits; 2 bytes
  Long,     // 8 digits; 4 bytes
  Timer,    // preset(8) current(8) bit(2); 4, 4 and 1 bytes
  Counter,  // preset(4) current(4) bit(2); 2, 2 and 1 bytes
};

// One row of the protocol's table of operand types.
struct OperandType {
  std::int32_t code;
  std::string_view name;  // as error texts say it
  OperandShape shape;
  int maxPerRequest;      // operands that one request carries
  std::uint32_t largest;  // the largest value that may be written
};

// The type codes by name, as far as this library asks for them itself.
namespace OperandCode {
inline constexpr std::int32_t MB = 0x01, SB = 0x02, MI = 0x03, SI = 0x04, ML = 0x05, MF = 0x07;
inline constexpr std::int32_t Input = 0x09, Output = 0x0A, DW = 0x10;
inline constexpr std::int32_t XB = 0x40, XI = 0x41, XL = 0x42, XDW = 0x43;
inline constexpr std::int32_t DBI = 0x50, TimerPreset = 0x51, TimerCurrent = 0x52, TimerPresetWord = 0x53;
inline constexpr std::int32_t TimerCurrentWord = 0x54, TimerBit = 0x55, CounterPreset = 0x56, CounterCurrent = 0x57;
}  // namespace OperandCode

// From this code on, types travel in ASCII frames only.
inline constexpr std::int32_t kFirstAsciiOnlyCode = 0x50;

// Records that one list request carries.
inline constexpr std::size_t kMaxRecordsPerRequest = 16;

// Digits of the most values that one request or record is answered with; a block message has half as many bytes.
inline constexpr std::size_t kMaxValueDigits = 600;  // 60 counters

// Null for a code that the protocol does not have; 0 is one of these.
[[nodiscard]] const OperandType* FindOperandType(std::int32_t code);

// Digits of one operand in an ASCII frame.
[[nodiscard]] std::size_t DigitsOf(OperandShape shape);

// How many numbers the tools get for one operand: 3 for timers and counters (preset, current, bit), else 1.
[[nodiscard]] std::size_t NumbersOf(OperandShape shape);

// Operands `start` to `start` + `count` - 1 of one type.
struct OperandRange {
  const OperandType* type = nullptr;
  std::uint16_t start = 0;
  std::uint16_t count = 0;
};

}  // namespace kv
