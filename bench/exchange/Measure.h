#pragma once

#include <sys/types.h>

namespace bench {

// What some exchanges took, of both sides together.
struct Cost {
  double seconds = 0;     // by the clock
  double cpuSeconds = 0;  // of the processor
};

// Processor time that a process has used; 0 is this one.
[[nodiscard]] double CpuSecondsOf(pid_t process);
[[nodiscard]] double ClockSeconds();

// Runs `work` and tells what it cost this process and `partner`.
template <typename Work>
Cost Measure(pid_t partner, const Work& work) {
  const double cpu = CpuSecondsOf(0) + CpuSecondsOf(partner);
  const double start = ClockSeconds();
  work();
  return {ClockSeconds() - start, CpuSecondsOf(0) + CpuSecondsOf(partner) - cpu};
}

}  // namespace bench
