#include "simulator/OperandTypes.h"

#include <algorithm>

namespace sim {
namespace {

constexpr std::uint32_t kWord = 0xFFFF;
constexpr std::uint32_t kDouble = 0xFFFFFFFF;
constexpr std::uint32_t kLongestTime = 35999999;  // 99:59:59.99 in hundredths of a second

// clang-format off
constexpr AreaRow kAreas[] = {
    // area               name              greatest      Aurex large comp.    older: Aurex large comp.
    {Area::MB,             "MB",             1,            {4096, 8192,  256}, {1024, 4096,  256}},
    {Area::SB,             "SB",             1,            { 512,  512,  256}, { 512,  512,  256}},
    {Area::MI,             "MI",             kWord,        {2048, 4096,  256}, {1024, 2048,  256}},
    {Area::SI,             "SI",             kWord,        { 512,  512,  256}, { 512,  512,  256}},
    {Area::ML,             "ML",             kDouble,      { 256,  512,    0}, { 256,  256,    0}},
    {Area::SL,             "SL",             kDouble,      {  56,   56,    0}, {  56,   56,    0}},
    {Area::MF,             "MF",             kDouble,      {  24,   64,    0}, {   0,   24,    0}},
    {Area::Input,          "INPUT",          1,            { 544,  544,  256}, { 544,  544,  256}},
    {Area::Output,         "OUTPUT",         1,            { 544,  544,  256}, { 544,  544,  256}},
    {Area::DW,             "DW",             kDouble,      {  64,  256,    0}, {  64,   64,    0}},
    {Area::SDW,            "SDW",            kDouble,      {  64,   64,    0}, {  64,   64,    0}},
    {Area::XB,             "XB",             1,            {1024, 1024,    0}, {   0,    0,    0}},
    {Area::XI,             "XI",             kWord,        { 512,  512,    0}, {   0,    0,    0}},
    {Area::XL,             "XL",             kDouble,      { 256,  256,    0}, {   0,    0,    0}},
    {Area::XDW,            "XDW",            kDouble,      {  64,   64,    0}, {   0,    0,    0}},
    {Area::DBI,            "DBI",            kWord,        {   0,    0, 1024}, {   0,    0, 1024}},
    {Area::TimerPreset,    "TIMER-PRESET",   kLongestTime, { 192,  384,   64}, { 128,  192,   64}},
    {Area::TimerCurrent,   "TIMER-CURRENT",  kLongestTime, { 192,  384,   64}, { 128,  192,   64}},
    {Area::TimerBit,       "TIMER-BIT",      1,            { 192,  384,   64}, { 128,  192,   64}},
    {Area::CounterPreset,  "COUNTER-PRESET", kWord,        {  24,   32,    0}, {   0,   24,    0}},
    {Area::CounterCurrent, "COUNTER-CURRENT", kWord,       {  24,   32,    0}, {   0,   24,    0}},
    {Area::CounterBit,     "COUNTER-BIT",    1,            {  24,   32,    0}, {   0,   24,    0}},
};
static_assert(std::size(kAreas) == kAreaCount);

constexpr std::array<Area, 3> kTimer   = {Area::TimerPreset, Area::TimerCurrent, Area::TimerBit};
constexpr std::array<Area, 3> kCounter = {Area::CounterPreset, Area::CounterCurrent, Area::CounterBit};

constexpr OperandTypeRow kTypes[] = {
    // code  n  areas                    digits     most write  timer word
    {0x01, 1, {Area::MB},             {2},       120, true,  false},
    {0x02, 1, {Area::SB},             {2},       120, false, false},
    {0x03, 1, {Area::MI},             {4},        60, true,  false},
    {0x04, 1, {Area::SI},             {4},        60, false, false},
    {0x05, 1, {Area::ML},             {8},        30, true,  false},
    {0x06, 1, {Area::SL},             {8},        30, false, false},
    {0x07, 1, {Area::MF},             {8},        30, true,  false},
    {0x09, 1, {Area::Input},          {2},       120, false, false},
    {0x0A, 1, {Area::Output},         {2},       120, false, false},
    {0x0B, 3, kTimer,                 {8, 8, 2},  30, false, false},
    {0x0C, 3, kCounter,               {4, 4, 2},  60, false, false},
    {0x10, 1, {Area::DW},             {8},        30, true,  false},
    {0x24, 1, {Area::SDW},            {8},        30, false, false},
    {0x40, 1, {Area::XB},             {2},       120, true,  false},
    {0x41, 1, {Area::XI},             {4},        60, true,  false},
    {0x42, 1, {Area::XL},             {8},        30, true,  false},
    {0x43, 1, {Area::XDW},            {8},        30, true,  false},
    {0x50, 1, {Area::DBI},            {4},        60, true,  false},
    {0x51, 1, {Area::TimerPreset},    {8},        30, true,  false},
    {0x52, 1, {Area::TimerCurrent},   {8},        30, true,  false},
    {0x53, 1, {Area::TimerPreset},    {4},        60, false, true},
    {0x54, 1, {Area::TimerCurrent},   {4},        60, false, true},
    {0x55, 1, {Area::TimerBit},       {2},       120, false, false},
    {0x56, 1, {Area::CounterPreset},  {8},        60, true,  false},
    {0x57, 1, {Area::CounterCurrent}, {8},        60, true,  false},
};
// clang-format on

}  // namespace

std::span<const AreaRow> AllAreas() {
  return kAreas;
}

const AreaRow& RowOf(Area area) {
  return kAreas[static_cast<std::size_t>(area)];
}

std::size_t CellCount(Area area, OperandGroup group, bool olderOs) {
  const AreaRow& row = RowOf(area);
  const auto& counts = olderOs ? row.olderCounts : row.counts;
  return counts[static_cast<std::size_t>(group)];
}

const OperandTypeRow* FindOperandType(std::uint32_t code) {
  const auto type = std::ranges::find(kTypes, code, &OperandTypeRow::code);
  return type == std::end(kTypes) ? nullptr : &*type;
}

}  // namespace sim
