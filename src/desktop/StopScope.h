#pragma once

#include "desktop/Pacer.h"

namespace kv {

// One operation that the user can stop, for as long as this object lives. A stop request from before does not end the
// operation, and its own does not end what comes after it. Only these objects take a stop request back.
class [[nodiscard]] StopScope {
 public:
  explicit StopScope(Pacer& pacer) : mPacer(pacer) { mPacer.ClearStop(); }
  ~StopScope() { mPacer.ClearStop(); }
  StopScope(const StopScope&) = delete;
  StopScope& operator=(const StopScope&) = delete;

 private:
  Pacer& mPacer;
};

}  // namespace kv
