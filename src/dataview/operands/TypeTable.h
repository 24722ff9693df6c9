#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

#include "dataview/operands/OperandTypes.h"
#include "link/Channel.h"

// The one table behind the operand catalogue. Only the sources of this folder include it: everyone else asks the
// functions of OperandCatalogue.h and RegionTransfer.h.
namespace kv::mdlDataTypesView {

// How a value read from the controller becomes a raw value text.
enum class RawKind { Bit, Signed16, Signed32, Unsigned, Float, Time };

// What a text must convert to before it may be written.
enum class RangeRule { Unchecked, Bit, Signed16, Signed32, Unsigned32, Float };

// Operands of a type by the model's group.
struct GroupCounts {
  std::int32_t colour;
  std::int32_t largeMemory;
  std::int32_t compact;
};

// The channel's operation that reads a type from a compact controller; none for types that it does not have.
using BitRead = Channel::BitValues (Channel::*)(std::int16_t, std::int16_t, std::uint8_t);
using WordRead = Channel::WordValues (Channel::*)(std::int16_t, std::int16_t, std::uint8_t);
using TimerRead = Channel::TimerWords (Channel::*)(std::int16_t, std::int16_t, std::uint8_t);
using CompactRead = std::variant<std::monostate, BitRead, WordRead, TimerRead>;

// The channel's operation that writes a type to either family; none for a read-only type.
using BitWrite = bool (Channel::*)(std::int16_t, Channel::BitSpan, std::uint8_t);
using WordWrite = bool (Channel::*)(std::int16_t, Channel::WordSpan, std::uint8_t);
using LongWrite = bool (Channel::*)(std::int16_t, Channel::LongSpan, std::uint8_t);
using UnsignedWrite = bool (Channel::*)(std::int16_t, Channel::UnsignedSpan, std::uint8_t);
using FloatWrite = bool (Channel::*)(std::int16_t, Channel::FloatWordSpan, std::uint8_t);
using WriteOperation = std::variant<std::monostate, BitWrite, WordWrite, LongWrite, UnsignedWrite, FloatWrite>;

struct TypeFacts {
  std::string_view name;
  std::int32_t hexChars;    // of one operand in a request; 2 only for the bit types
  std::int32_t imageWidth;  // bytes of one operand in a row's byte image; 0: the row shows its raw value texts
  RawKind raw;
  std::int32_t driverTypeCode;  // for the list read; 0: it cannot be read in a list
  std::int32_t part;            // which of a timer's or counter's three numbers: 0 preset, 1 current, 2 bit
  GroupCounts counts;
  GroupCounts legacyCounts;  // with an older O/S
  RangeRule range;
  CompactRead compactRead;
  WriteOperation write;
};

// The facts of a type; null for a code that is none.
[[nodiscard]] const TypeFacts* TypeFactsOf(OperandTypeCode type);

}  // namespace kv::mdlDataTypesView
