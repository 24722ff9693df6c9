#include "dataview/OnlineMode.h"

#include <algorithm>
#include <chrono>

#include "base/ScopeGuard.h"
#include "dataview/ChannelGuard.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewContext.h"
#include "desktop/StopScope.h"
#include "link/ErrorMeaning.h"
#include "link/ReconnectPauses.h"

namespace kv::mdlDataTypesView {
namespace {

using namespace std::chrono_literals;

constexpr Duration kCountingTime = 1s;      // over which passes per second are counted
constexpr Duration kFirstCounting = 200ms;  // the same for the first figure: one pass alone tells little
constexpr Duration kIdlePause = 50ms;       // after a pass in which nothing could be asked

// A controller that is there but does not tell its serial number.
bool HasNoSerialNumber(LinkErrorCode code) {
  return code == LinkErrorCode::Refused || code == LinkErrorCode::NotSupported;
}

LinkError AnotherController(std::uint32_t serialNumber, std::uint32_t watched) {
  return {.code = LinkErrorCode::OtherController,
          .doing = "going on line again",
          .happened = "another controller answers: its serial number is " + std::to_string(serialNumber) +
                      ", that of the watched one " + std::to_string(watched),
          .cause = "the cable leads to another controller, or the controller was replaced",
          .cure = "connect the right controller, or go on line with this one"};
}

}  // namespace

void OnlineMode::Run(With with) {
  const StopScope watching(mContext.parts.pacer);
  mContext.SetMode(ViewMode::Busy);
  const ScopeGuard idle([&] {
    NoteEnd();
    mContext.status.passesPerSecond = 0.0;
    mContext.SetMode(ViewMode::Idle);
  });
  Watch(with);
}

void OnlineMode::Watch(With with) {
  const ChannelGuard channel(mContext);
  if (!channel || !mEngine.IsSupported(*channel, mContext.state.regions.Regions())) return;
  if (!IsRightController(*channel, with)) return;
  mIsRunning = true;
  mCountedFrom = mContext.Now();
  mCounted = 0;
  mContext.status.passes = 0;
  mContext.NoteSuccess();
  mContext.EndReading();
  mContext.SayInPassing("Watching." + mAbout);
  mContext.SetMode(ViewMode::Online);
  while (mIsRunning) OnePass(*channel);
}

// One that does not tell its number can be watched, but not found again.
bool OnlineMode::IsRightController(Channel& channel, With with) {
  const auto info = channel.GetControllerInfo(channel.UnitID());
  const auto number = info.transform([](const Channel::ControllerInfo& each) { return each.serialNumber; });
  const bool isOther = number && mSerialNumber && *number != *mSerialNumber;
  mAbout.clear();
  if (!number && (with == With::SameController || !HasNoSerialNumber(channel.LastError().code))) {
    mContext.SayLinkError(channel.LastError());
    return false;
  }
  if (with == With::SameController && isOther) {
    mContext.SayLinkError(AnotherController(*number, *mSerialNumber));
    return false;
  }
  if (isOther) {
    mAbout = " This is another controller than before: its serial number is " + std::to_string(*number) + ", not " +
             std::to_string(*mSerialNumber) + ".";
  }
  mSerialNumber = number;
  return true;
}

void OnlineMode::StopAtOnce() {
  Stop();
  mEngine.EndPass();
}

void OnlineMode::OnePass(Channel& channel) {
  const PassOutcome outcome = mEngine.ReadPass(channel);
  mContext.TellChanges();
  const std::string replaced = RegionEngine::ReplacedText(outcome.replaced);
  if (!outcome.IsWhole()) {
    mIsRunning = false;
    if (outcome.isStopped) return mContext.Say("Watching was stopped." + replaced);
    return mContext.SayLinkError(*outcome.error,
                                 "Watching has ended; the values are those of the last reads." + replaced);
  }
  mFailures = 0;
  const bool isFirst = mContext.status.passes == 0;
  const std::string unreadable = isFirst ? mEngine.UnreadableText(outcome.unreadable) : std::string();
  if (!replaced.empty() || !unreadable.empty()) mContext.SayInPassing("Watching." + mAbout + unreadable + replaced);
  CountPass();
  if (outcome.done == 0) mContext.parts.pacer.Sleep(kIdlePause);
  mContext.parts.pacer.DoEvents();
  if (!mIsRunning) mContext.Say("Watching has ended.");
}

void OnlineMode::CountPass() {
  ++mContext.status.passes;
  ++mCounted;
  const Duration passed = mContext.Now() - mCountedFrom;
  if (passed >= (mContext.status.passesPerSecond == 0.0 ? kFirstCounting : kCountingTime)) {
    mContext.status.passesPerSecond = static_cast<double>(mCounted) / std::chrono::duration<double>(passed).count();
    mCountedFrom = mContext.Now();
    mCounted = 0;
  }
  mContext.TellProgress();
}

// ---- going on after a loss ----

// A try that the user has stopped is the last one.
void OnlineMode::NoteEnd() {
  if (mContext.parts.pacer.StopRequested()) mGoesOn = false;
  if (!mContext.status.loss) return;
  mContext.status.loss->wasWatching = true;
  mContext.status.loss->serialNumber = mSerialNumber;
  mNextTry = mContext.Now() + kPausesWhileWatching.After(++mFailures);
}

void OnlineMode::SetGoesOn(bool goesOn) {
  mGoesOn = goesOn;
  mFailures = 0;
  mNextTry = mContext.Now();
}

std::string OnlineMode::WhyNotGoOn() const {
  const auto& loss = mContext.status.loss;
  if (!loss) return {};
  if (!loss->serialNumber) return "The controller did not tell its serial number, so it could not be known again.";
  if (!MayComeBack(loss->error.code)) return "Another controller answers.";
  return {};
}

bool OnlineMode::IsTryDue() const {
  const auto& loss = mContext.status.loss;
  return mGoesOn && mContext.status.mode == ViewMode::Idle && loss && loss->wasWatching && WhyNotGoOn().empty() &&
         mContext.Now() >= mNextTry;
}

}  // namespace kv::mdlDataTypesView
