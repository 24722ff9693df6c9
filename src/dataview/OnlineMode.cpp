#include "dataview/OnlineMode.h"

#include <chrono>

#include "base/ScopeGuard.h"
#include "dataview/ChannelLease.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewDesk.h"

namespace kv::mdlDataTypesView {
namespace {

using namespace std::chrono_literals;

constexpr Duration kCountingTime = 1s;      // over which passes per second are counted
constexpr Duration kFirstCounting = 200ms;  // the same for the first figure: one pass alone tells little
constexpr Duration kIdlePause = 50ms;       // after a pass in which nothing could be asked

}  // namespace

void OnlineMode::Run() {
  mDesk.parts.pacer.ClearStop();
  mDesk.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] {
    mDesk.status.passesPerSecond = 0.0;
    mDesk.SetMode(ViewMode::Idle);
  });
  const ChannelLease channel(mDesk);
  if (!channel || !mEngine.IsSupported(*channel, mDesk.state.regions.Regions())) return;

  mIsRunning = true;
  mCountedFrom = mDesk.Now();
  mCounted = 0;
  mDesk.status.passes = 0;
  mDesk.Say("On line.");
  mDesk.SetMode(ViewMode::Online);
  while (mIsRunning) OnePass(*channel);
}

void OnlineMode::StopAtOnce() {
  Stop();
  mEngine.EndPass();
}

void OnlineMode::OnePass(Channel& channel) {
  const PassOutcome outcome = mEngine.ReadPass(channel);
  mDesk.TellChanges();
  const std::string replaced = RegionEngine::ReplacedText(outcome.replaced);
  if (!outcome.IsWhole()) {
    mIsRunning = false;
    if (outcome.isStopped) return mDesk.Say("The on-line mode was stopped." + replaced);
    return mDesk.SayLinkError(*outcome.error,
                              "The on-line mode has ended; the values are those of the last reads." + replaced);
  }
  if (!replaced.empty()) mDesk.Say("On line." + replaced);
  CountPass();
  if (outcome.done == 0) mDesk.parts.pacer.Sleep(kIdlePause);
  mDesk.parts.pacer.DoEvents();
  if (!mIsRunning) mDesk.Say("The on-line mode has ended.");
}

void OnlineMode::CountPass() {
  ++mDesk.status.passes;
  ++mCounted;
  const Duration passed = mDesk.Now() - mCountedFrom;
  if (passed >= (mDesk.status.passesPerSecond == 0.0 ? kFirstCounting : kCountingTime)) {
    mDesk.status.passesPerSecond = static_cast<double>(mCounted) / std::chrono::duration<double>(passed).count();
    mCountedFrom = mDesk.Now();
    mCounted = 0;
  }
  mDesk.TellProgress();
}

}  // namespace kv::mdlDataTypesView
