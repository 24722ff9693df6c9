#pragma once

#include <cstdint>

#include "base/Time.h"
#include "link/Channel.h"

namespace kv::mdlDataTypesView {

class RegionEngine;
class ViewDesk;

// Reads all regions again and again, without a pause, until it is told to stop. The user's clicks are handled between
// two passes, and in a pass that takes long also between two regions; what ends the mode ends it with the pass.
class OnlineMode {
 public:
  OnlineMode(ViewDesk& desk, RegionEngine& engine) : mDesk(desk), mEngine(engine) {}

  // Returns when the mode has ended: after Stop, when the user cancels a wait, or with the first error.
  void Run();
  // Ends the mode with the pass that runs.
  void Stop() { mIsRunning = false; }
  // The same before the next region: nobody looks at the rest of the pass.
  void StopAtOnce();

 private:
  void OnePass(Channel& channel);
  void CountPass();

  ViewDesk& mDesk;
  RegionEngine& mEngine;
  bool mIsRunning = false;
  Instant mCountedFrom{};
  std::uint64_t mCounted = 0;  // passes since then
};

}  // namespace kv::mdlDataTypesView
