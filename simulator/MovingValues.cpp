#include "simulator/MovingValues.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <numbers>

namespace sim {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Hundredths = std::chrono::duration<std::int64_t, std::centi>;

constexpr std::uint32_t kTimerHoldTime = 100;  // hundredths

// Nothing changes within these; a client that asks thousands of times a second need not wait for the same values.
constexpr kv::Duration kClockStep = milliseconds(500);
constexpr kv::Duration kProgramStep = Hundredths(1);

std::uint64_t CountOf(kv::Duration span, kv::Duration unit) {
  return static_cast<std::uint64_t>(span / unit);
}

std::uint32_t Ramp(std::uint64_t step) {
  const std::uint64_t place = step % 2000;
  return static_cast<std::uint32_t>(place <= 1000 ? place : 2000 - place);
}

// A single as the controller keeps it: the high half of its bits in the low half of the cell.
std::uint32_t AsMF(double value) {
  return std::rotl(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 16);
}

}  // namespace

void MovingValues::SetFirstValues(Operands& operands) {
  operands.SetCell(Area::TimerPreset, 0, 1000);
  operands.SetCell(Area::TimerCurrent, 0, 1000);
  operands.SetCell(Area::CounterPreset, 0, 100);
}

void MovingValues::Advance(Operands& operands, kv::Duration elapsed, bool running) {
  mUpTime += elapsed;
  if (const auto step = CountOf(mUpTime, kClockStep); step != mClockShown) {
    ShowClock(operands);
    mClockShown = step;
  }
  if (!running) return;
  mRunTime += elapsed;
  if (const auto step = CountOf(mRunTime, kProgramStep); step != mProgramShown) {
    RunTimer(operands, step - mProgramShown.value_or(0));
    ShowProgram(operands);
    mProgramShown = step;
  }
}

void MovingValues::ShowClock(Operands& operands) const {
  constexpr auto kPowerUp = std::chrono::sys_days(std::chrono::year(2024) / 1 / 1) + hours(8);
  const auto now = kPowerUp + mUpTime;
  const auto midnight = std::chrono::floor<std::chrono::days>(now);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss time(std::chrono::floor<seconds>(now - midnight));
  operands.SetCell(Area::SI, 30, static_cast<std::uint32_t>(time.seconds().count()));
  operands.SetCell(Area::SI, 31, static_cast<std::uint32_t>(time.minutes().count()));
  operands.SetCell(Area::SI, 32, static_cast<std::uint32_t>(time.hours().count()));
  operands.SetCell(Area::SI, 33, static_cast<unsigned>(date.day()));
  operands.SetCell(Area::SI, 34, static_cast<unsigned>(date.month()));
  operands.SetCell(Area::SI, 35, static_cast<std::uint32_t>(static_cast<int>(date.year())));
  operands.SetCell(Area::SB, 3, CountOf(mUpTime, milliseconds(500)) % 2 == 0 ? 1 : 0);
}

void MovingValues::ShowProgram(Operands& operands) const {
  const std::uint64_t second = CountOf(mRunTime, seconds(1));
  const std::uint64_t hundredth = CountOf(mRunTime, Hundredths(1));
  operands.SetCell(Area::MB, 100, second / 2 % 2);
  operands.SetCell(Area::Input, 0, second % 2);
  operands.SetCell(Area::Input, 1, Chance(second, 1) % 2);
  operands.SetCell(Area::MI, 100, Ramp(hundredth));
  operands.SetCell(Area::MI, 101, Chance(second, 2) % 100);
  operands.SetCell(Area::ML, 100, static_cast<std::uint32_t>(hundredth / 10));
  operands.SetCell(Area::MF, 10,
                   AsMF(100 * std::sin(2 * std::numbers::pi * static_cast<double>(hundredth % 6000) / 6000)));
  const std::uint64_t preset = operands.Cell(Area::CounterPreset, 0);
  const std::uint64_t current = second % (preset + 1);
  operands.SetCell(Area::CounterCurrent, 0, static_cast<std::uint32_t>(current));
  operands.SetCell(Area::CounterBit, 0, current == preset ? 1 : 0);
}

void MovingValues::RunTimer(Operands& operands, std::uint64_t hundredths) {
  const std::uint32_t preset = operands.Cell(Area::TimerPreset, 0);
  std::uint32_t current = operands.Cell(Area::TimerCurrent, 0);
  if (hundredths > current)
    hundredths = current + (hundredths - current) % (preset + kTimerHoldTime);  // whole rounds change nothing
  while (hundredths > 0) {
    if (current > 0) {
      const auto step = static_cast<std::uint32_t>(std::min<std::uint64_t>(hundredths, current));
      current -= step;
      hundredths -= step;
      mTimerHold = 0;
      continue;
    }
    const auto step = static_cast<std::uint32_t>(std::min<std::uint64_t>(hundredths, kTimerHoldTime - mTimerHold));
    mTimerHold += step;
    hundredths -= step;
    if (mTimerHold < kTimerHoldTime) break;
    current = preset;
    mTimerHold = 0;
  }
  operands.SetCell(Area::TimerCurrent, 0, current);
  operands.SetCell(Area::TimerBit, 0, current == 0 ? 1 : 0);
}

// SplitMix64's mixing step: neighbouring seconds and seeds give unrelated numbers.
std::uint32_t MovingValues::Chance(std::uint64_t second, std::uint32_t stream) const {
  std::uint64_t mixed = mSeed + (second * 4 + stream) * 0x9E3779B97F4A7C15;
  mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
  return static_cast<std::uint32_t>(mixed >> 33);
}

}  // namespace sim
