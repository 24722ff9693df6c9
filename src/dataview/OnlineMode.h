#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Time.h"
#include "link/Channel.h"

namespace kv::mdlDataTypesView {

class RegionEngine;
class ViewContext;

// Watches the regions: reads all of them again and again, without a pause, until it is told to stop. The user's clicks
// are handled between two passes, and in a pass that takes long also between two regions; what ends the mode ends it
// with the pass.
//
// After a loss it can go on by itself, with growing pauses between its tries, with the controller that was watched and
// no other one.
class OnlineMode {
 public:
  OnlineMode(ViewContext& context, RegionEngine& engine) : mContext(context), mEngine(engine) {}

  enum class With { Any, SameController };

  // Returns when the mode has ended: after Stop, when the user cancels a wait, or with the first error.
  void Run(With with);
  // Ends the mode with the pass that runs.
  void Stop() { mIsRunning = false; }
  // The same before the next region: nobody looks at the rest of the pass.
  void StopAtOnce();

  // Whether it goes on by itself after a loss; stays set until the user takes it back or stops a try.
  void SetGoesOn(bool goesOn);
  [[nodiscard]] bool GoesOn() const { return mGoesOn; }
  // Why it cannot go on by itself after this loss; empty when it can, and when there is none.
  [[nodiscard]] std::string WhyNotGoOn() const;
  // Whether the next try is to be made now: Run(With::SameController).
  [[nodiscard]] bool IsTryDue() const;

 private:
  void Watch(With with);
  [[nodiscard]] bool IsRightController(Channel& channel, With with);
  void OnePass(Channel& channel);
  void CountPass();
  void NoteEnd();

  ViewContext& mContext;
  RegionEngine& mEngine;
  bool mIsRunning = false;
  bool mGoesOn = false;
  std::optional<std::uint32_t> mSerialNumber;  // of the controller that was watched last
  int mFailures = 0;                           // in a row
  Instant mNextTry{};
  std::string mAbout;  // what there is to say of the controller and the regions
  Instant mCountedFrom{};
  std::uint64_t mCounted = 0;  // passes since then
};

}  // namespace kv::mdlDataTypesView
