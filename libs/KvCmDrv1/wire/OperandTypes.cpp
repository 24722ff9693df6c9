#include "KvCmDrv1/wire/OperandTypes.h"

#include <algorithm>
#include <array>

#include "link/OperandList.h"

namespace kv {
namespace {

using enum OperandShape;
constexpr std::uint32_t kWord = 0xFFFF;
constexpr std::uint32_t kLong = 0xFFFFFFFF;

// clang-format off
constexpr auto kTypes = std::to_array<OperandType>({
    // code  name               shape    max. largest
    {0x01, "MB",                Bit,     120, 1},
    {0x02, "SB",                Bit,     120, 1},
    {0x03, "MI",                Word,    60,  kWord},
    {0x04, "SI",                Word,    60,  kWord},
    {0x05, "ML",                Long,    30,  kLong},
    {0x06, "SL",                Long,    30,  kLong},
    {0x07, "MF",                Long,    30,  kLong},
    {0x09, "INPUT",             Bit,     120, 1},
    {0x0A, "OUTPUT",            Bit,     120, 1},
    {0x0B, "TIMER",             Timer,   30,  kLongestTime},
    {0x0C, "COUNTER",           Counter, 60,  kWord},
    {0x10, "DW",                Long,    30,  kLong},
    {0x24, "SDW",               Long,    30,  kLong},
    {0x40, "XB",                Bit,     120, 1},
    {0x41, "XI",                Word,    60,  kWord},
    {0x42, "XL",                Long,    30,  kLong},
    {0x43, "XDW",               Long,    30,  kLong},
    {0x50, "DBI",               Word,    60,  kWord},
    {0x51, "TIMER PRESET",      Long,    30,  kLongestTime},
    {0x52, "TIMER CURRENT",     Long,    30,  kLongestTime},
    {0x53, "TIMER PRESET",      Word,    60,  kWord},
    {0x54, "TIMER CURRENT",     Word,    60,  kWord},
    {0x55, "TIMER VALUE",       Bit,     120, 1},
    {0x56, "COUNTER PRESET",    Long,    60,  kWord},
    {0x57, "COUNTER CURRENT",   Long,    60,  kWord},
});
// clang-format on

constexpr std::size_t Digits(OperandShape shape) {
  switch (shape) {
    case Bit:
      return 2;
    case Word:
      return 4;
    case Long:
      return 8;
    case Timer:
      return 18;
    case Counter:
      return 10;
  }
  return 0;
}

constexpr std::size_t MaxValueDigits() {
  std::size_t most = 0;
  for (const OperandType& type : kTypes) {
    most = std::max(most, static_cast<std::size_t>(type.maxPerRequest) * Digits(type.shape));
  }
  return most;
}
static_assert(MaxValueDigits() == kMaxValueDigits);

}  // namespace

const OperandType* FindOperandType(std::int32_t code) {
  const auto found = std::ranges::find(kTypes, code, &OperandType::code);
  return found == kTypes.end() ? nullptr : &*found;
}

std::size_t DigitsOf(OperandShape shape) {
  return Digits(shape);
}

std::size_t NumbersOf(OperandShape shape) {
  return shape == Timer || shape == Counter ? 3 : 1;
}

}  // namespace kv
