#pragma once

#include <memory>

namespace kv {

// Catches Ctrl-C, the request to terminate and the loss of the terminal (unless the program was started to outlive it,
// as nohup does) for as long as it lives; what was in force before is given back at the end. The first one is kept, the
// second one before Clear() ends the process at once with exit code 130.
class StopSignal {
 public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  [[nodiscard]] static bool Raised();
  static void Clear();

 private:
  struct Previous;
  std::unique_ptr<Previous> mPrevious;
};

}  // namespace kv
