#include "dataview/operands/TypeTable.h"

#include <array>

namespace kv::mdlDataTypesView {
namespace {

using C = Channel;
using K = RawKind;
using R = RangeRule;
constexpr auto kNone = std::monostate{};
constexpr auto kTimers = kDriverTypeTimers;
constexpr auto kCounters = kDriverTypeCounters;

// In the order of the type codes, 1 first. Counts are: colour, colour with large memory, compact.
// clang-format off
constexpr auto kTypes = std::to_array<TypeFacts>({
    // name       hex img raw            driver part counts            with an older O/S  range          compact read           write
    {"MB",              2, 1, K::Bit,      1,         0, {4096, 8192, 256}, {1024, 4096, 256}, R::Bit,        &C::ReadMB,            &C::WriteMB},
    {"MI",              4, 2, K::Signed16, 3,         0, {2048, 4096, 256}, {1024, 2048, 256}, R::Signed16,   &C::ReadMI,            &C::WriteMI},
    {"MF",              8, 0, K::Float,    7,         0, {24, 64, 0},       {0, 24, 0},        R::Float,      kNone,                 &C::WriteMF},
    {"ML",              8, 4, K::Signed32, 5,         0, {256, 512, 0},     {256, 256, 0},     R::Signed32,   kNone,                 &C::WriteML},
    {"DW",              8, 4, K::Unsigned, 16,        0, {64, 256, 0},      {64, 64, 0},       R::Unsigned32, kNone,                 &C::WriteDW},
    {"DBI",             4, 0, K::Signed16, 0,         0, {0, 0, 1024},      {0, 0, 1024},      R::Signed16,   &C::ReadDBI,           &C::WriteDBI},
    {"SB",              2, 1, K::Bit,      2,         0, {512, 512, 256},   {512, 512, 256},   R::Unchecked,  &C::ReadSB,            kNone},
    {"SI",              4, 2, K::Signed16, 4,         0, {512, 512, 256},   {512, 512, 256},   R::Unchecked,  &C::ReadSI,            kNone},
    {"SL",              8, 4, K::Signed32, 6,         0, {56, 56, 0},       {56, 56, 0},       R::Unchecked,  kNone,                 kNone},
    {"SDW",             8, 4, K::Unsigned, 36,        0, {64, 64, 0},       {64, 64, 0},       R::Unchecked,  kNone,                 kNone},
    {"INPUT",           2, 1, K::Bit,      9,         0, {544, 544, 256},   {544, 544, 256},   R::Unchecked,  &C::ReadInputs,        kNone},
    {"OUTPUT",          2, 1, K::Bit,      10,        0, {544, 544, 256},   {544, 544, 256},   R::Unchecked,  &C::ReadOutputs,       kNone},
    {"TIMER PRESET",    8, 0, K::Time,     kTimers,   0, {192, 384, 64},    {128, 192, 64},    R::Unchecked,  &C::ReadTimerPresets,  &C::WriteTimerPresets},
    {"TIMER CURRENT",   8, 0, K::Time,     kTimers,   1, {192, 384, 64},    {128, 192, 64},    R::Unchecked,  &C::ReadTimerCurrents, &C::WriteTimerCurrents},
    {"TIMER VALUE",     8, 0, K::Bit,      kTimers,   2, {192, 384, 64},    {128, 192, 64},    R::Unchecked,  &C::ReadTimerBits,     kNone},
    {"COUNTER PRESET",  4, 0, K::Unsigned, kCounters, 0, {24, 32, 0},       {0, 24, 0},        R::Signed32,   kNone,                 &C::WriteCounterPresets},
    {"COUNTER CURRENT", 4, 0, K::Unsigned, kCounters, 1, {24, 32, 0},       {0, 24, 0},        R::Signed32,   kNone,                 &C::WriteCounterCurrents},
    {"COUNTER VALUE",   4, 0, K::Bit,      kCounters, 2, {24, 32, 0},       {0, 24, 0},        R::Unchecked,  kNone,                 kNone},
    {"XB",              2, 1, K::Bit,      64,        0, {1024, 1024, 0},   {0, 0, 0},         R::Bit,        kNone,                 &C::WriteXB},
    {"XI",              4, 2, K::Signed16, 65,        0, {512, 512, 0},     {0, 0, 0},         R::Signed16,   kNone,                 &C::WriteXI},
    {"XL",              8, 4, K::Signed32, 66,        0, {256, 256, 0},     {0, 0, 0},         R::Signed32,   kNone,                 &C::WriteXL},
    {"XDW",             8, 4, K::Unsigned, 67,        0, {64, 64, 0},       {0, 0, 0},         R::Unsigned32, kNone,                 &C::WriteXDW},
});
// clang-format on
static_assert(kTypes.size() == kOperandTypeCount);

}  // namespace

const TypeFacts* TypeFactsOf(OperandTypeCode type) {
  const auto code = static_cast<std::int32_t>(type);
  return code >= 1 && code <= kOperandTypeCount ? &kTypes[static_cast<std::size_t>(code - 1)] : nullptr;
}

}  // namespace kv::mdlDataTypesView
