#pragma once

#include <cstdint>
#include <optional>

#include "base/Time.h"
#include "simulator/Operands.h"

namespace sim {

// The controller's own life: the few cells that change by themselves. All others keep what was written. A cell that the
// model does not have is left out.
//
//   Always
//     SI 30 to 35      second, minute, hour, day, month, year of a clock that shows 2024-01-01 08:00:00 at power-up
//     SB 3             1 in the first half of every second
//   While the program runs ("run time" stands still while it does not; a value written here lasts until the next step)
//     MB 100           changes every 2 s of run time
//     INPUT 0          changes every second
//     INPUT 1          a chance bit of the seed, a new one every second
//     MI 100           ramp from 0 to 1000 and back, one step every 10 ms
//     MI 101           a chance number of the seed from 0 to 99, a new one every second
//     ML 100           tenths of a second of run time
//     MF 10            100 * sin(2 * pi * t / 60 s), t being the run time in hundredths of a second
//     timer 0          current falls from the preset (10 s at power-up) to 0, the bit is 1 for one second, and again
//     counter 0        current counts seconds from 0 to the preset (100 at power-up), the bit is 1 while it is there,
//     and again
//
// Same seed, same times of Advance, same values.
class MovingValues {
 public:
  explicit MovingValues(std::uint64_t seed) : mSeed(seed) {}

  // What a controller has at its first power-up: the presets of timer 0 and counter 0.
  static void SetFirstValues(Operands& operands);

  // Lets `elapsed` pass.
  void Advance(Operands& operands, kv::Duration elapsed, bool running);

 private:
  void ShowClock(Operands& operands) const;
  void ShowProgram(Operands& operands) const;
  void RunTimer(Operands& operands, std::uint64_t hundredths);
  [[nodiscard]] std::uint32_t Chance(std::uint64_t second, std::uint32_t stream) const;

  std::uint64_t mSeed;
  kv::Duration mUpTime{0};
  kv::Duration mRunTime{0};
  std::optional<std::uint64_t> mClockShown;    // the step of the clock that the cells show
  std::optional<std::uint64_t> mProgramShown;  // and that of the program
  std::uint32_t mTimerHold = 0;                // hundredths for which timer 0 has been at its end
};

}  // namespace sim
