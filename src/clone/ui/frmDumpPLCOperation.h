#pragma once

#include "clone/ui/frmDumpPLC.h"
#include "desktop/StopScope.h"

namespace kv {

inline constexpr const char* kStoppedBefore = "Stopped before anything was done.";

// Everything that is given back when an operation of the cloner ends, however it ends.
class frmDumpPLC::Operation {
 public:
  Operation(frmDumpPLC& window, std::string_view caption);
  ~Operation();
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

 private:
  frmDumpPLC& mWindow;
  StopScope mStop;
  InputGate mGateBefore;
};

}  // namespace kv
