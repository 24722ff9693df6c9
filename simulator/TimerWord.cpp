#include "simulator/TimerWord.h"

namespace sim {
namespace {

struct TimeBase {
  std::uint32_t hundredths;
  std::uint16_t bits;
};

constexpr TimeBase kBases[] = {{1, 0x0000}, {10, 0x8000}, {100, 0x4000}, {1000, 0xC000}};  // the finest first
constexpr std::uint32_t kMostCount = 0x3FFF;

}  // namespace

std::optional<std::uint16_t> ExactTimerWord(std::uint32_t time) {
  for (const TimeBase& base : kBases) {
    const std::uint32_t count = time / base.hundredths;
    if (time % base.hundredths == 0 && count <= kMostCount) return static_cast<std::uint16_t>(base.bits | count);
  }
  return std::nullopt;
}

std::uint16_t NearestTimerWord(std::uint32_t time) {
  if (const auto exact = ExactTimerWord(time)) return *exact;
  for (const TimeBase& base : kBases) {
    const std::uint32_t count = time / base.hundredths;
    if (count <= kMostCount) return static_cast<std::uint16_t>(base.bits | count);
  }
  return 0xFFFF;
}

}  // namespace sim
