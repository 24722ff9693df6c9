#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/RegionsFile.h"
#include "link/RedialPlan.h"

namespace kv::cli {

struct WatchOptions {
  std::size_t count = 0;              // ends after so many changes; 0: no limit
  Duration span = Duration::zero();   // ends after so long; zero: no limit
  Duration pause = Duration::zero();  // between two passes
  bool json = false;
};

// Reads regions pass by pass and prints a line for each operand that has another value than at its last reading. What
// is there at first is no change.
//
//   passes -> lost (the link failed; asks again with growing pauses, dials a lost call again) -> passes
//   ends: count or span reached | stopped by the user | refused by the controller, or another one | span over while
//   lost | no more calls to be made, or a link that the settings do not open again
class RegionWatch {
 public:
  // `controller` outlives the watch. The regions are each one request.
  RegionWatch(Environment& environment, ConnectedController& controller, std::vector<Region> regions,
              WatchOptions options);

  // Runs until it ends; the failure is why it did not end as it was meant to.
  [[nodiscard]] OrFailure<void> Run();

  [[nodiscard]] std::size_t Changes() const { return mChanges; }

 private:
  using Texts = std::vector<std::string>;

  [[nodiscard]] OrFailure<Texts> Read(const Region& region);
  [[nodiscard]] OrFailure<void> GetLinkBack(const LinkError& error, bool isNew, Duration pause);
  [[nodiscard]] OrFailure<void> DialAgain(LinkError error);
  [[nodiscard]] OrFailure<void> WaitForLink(const LinkError& error, Duration pause);
  void Show(std::size_t row, Texts texts);
  void ShowChange(const Region& region, std::size_t index, const std::string& before, const std::string& now);
  void Pause(Duration span);
  [[nodiscard]] bool IsOver() const;
  [[nodiscard]] bool IsStopped() const { return mEnvironment.pacer.StopRequested(); }
  [[nodiscard]] Failure StoppedFailure() const;

  Environment& mEnvironment;
  ConnectedController& mController;
  std::vector<Region> mRegions;
  WatchOptions mOptions;
  std::vector<Texts> mLast;  // of each region; empty before its first reading
  Instant mStart;
  RedialPlan mRedials;
  Instant mCallBegan;
  std::size_t mChanges = 0;
};

}  // namespace kv::cli
