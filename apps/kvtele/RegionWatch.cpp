#include "apps/kvtele/RegionWatch.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::cli {

namespace {

using namespace std::chrono_literals;

// As the window asks again after a controller that does not answer.
constexpr Duration kFirstPause = 2s;
constexpr Duration kLongestPause = 30s;

constexpr Duration kSlice = 50ms;  // Ctrl-C is noticed between two slices

// Failures after which the link may be there again: nothing is wrong with the request.
bool MayComeBack(LinkErrorCode code) {
  switch (code) {
    case LinkErrorCode::CannotOpen:
    case LinkErrorCode::NoReply:
    case LinkErrorCode::Damaged:
    case LinkErrorCode::Busy:
    case LinkErrorCode::LinkLost:
      return true;
    default:
      return false;
  }
}

// "2024-01-01 13:05:09"
std::string TimeText(std::chrono::local_seconds time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  const auto two = [](auto number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return std::to_string(static_cast<int>(date.year())) + "-" + two(static_cast<unsigned>(date.month())) + "-" +
         two(static_cast<unsigned>(date.day())) + " " + two(clock.hours().count()) + ":" +
         two(clock.minutes().count()) + ":" + two(clock.seconds().count());
}

Failure OutputFailure() {
  return {ExitCode::Failed,
          "output",
          "printing a change",
          "the output takes no more",
          "its reader has ended, or the disk is full",
          {}};
}

}  // namespace

RegionWatch::RegionWatch(Environment& environment, ConnectedController& controller, std::vector<Region> regions,
                         WatchOptions options)
    : mEnvironment(environment),
      mController(controller),
      mRegions(std::move(regions)),
      mOptions(options),
      mLast(mRegions.size()),
      mStart(environment.pacer.Now()),
      mRedials(controller.Redials()),
      mCallBegan(mStart) {}

OrFailure<void> RegionWatch::Run() {
  while (!IsOver()) {
    for (std::size_t row = 0; row < mRegions.size(); ++row) {
      if (IsStopped()) return std::unexpected(StoppedFailure());
      auto texts = Read(mRegions[row]);
      if (!texts) return std::unexpected(texts.error());
      Show(row, *std::move(texts));
      if (IsOver()) return {};
      if (!mEnvironment.out) return std::unexpected(OutputFailure());
    }
    Pause(mOptions.pause);
  }
  return {};
}

// The region's texts, however long the link stays away.
OrFailure<RegionWatch::Texts> RegionWatch::Read(const Region& region) {
  Duration pause = kFirstPause;
  for (bool wasLost = false;; wasLost = true) {
    auto texts = mdlDataTypesView::ReadRegion(mController.Link(), mController.Model(), region);
    if (texts) {
      if (wasLost) mEnvironment.err << "The controller answers again.\n" << std::flush;
      return *std::move(texts);
    }
    if (IsStopped()) return std::unexpected(StoppedFailure());
    if (!MayComeBack(texts.error().code)) return std::unexpected(LinkFailure(texts.error(), true));
    if (const auto back = GetLinkBack(texts.error(), !wasLost, pause); !back) return std::unexpected(back.error());
    pause = std::min(2 * pause, kLongestPause);
  }
}

OrFailure<void> RegionWatch::GetLinkBack(const LinkError& error, bool isNew, Duration pause) {
  using enum ConnectedController::Reconnecting;
  const bool isGone = error.code == LinkErrorCode::LinkLost || error.code == LinkErrorCode::CannotOpen;
  const auto way = isGone ? mController.HowItReconnects() : ByItself;
  if (way == ByDialling) return DialAgain(error);
  if (way == Not) {
    Failure failure = LinkFailure(error, true);
    failure.cure = "start the watch again, or let the session's settings reconnect a lost link";
    return std::unexpected(std::move(failure));
  }
  if (isNew) mEnvironment.err << error.Text() << "\nThe watch goes on when it answers.\n" << std::flush;
  return WaitForLink(error, pause);
}

OrFailure<void> RegionWatch::DialAgain(LinkError error) {
  mRedials.NoteEnd(mEnvironment.pacer.Now() - mCallBegan);
  while (const auto pause = mRedials.Next()) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*pause).count();
    mEnvironment.err << error.Text() << "\nDialling again in " << seconds << " s (" << mRedials.Made() << " of "
                     << mRedials.Most() << ").\n"
                     << std::flush;
    if (const auto waited = WaitForLink(error, *pause); !waited) return waited;
    const auto opened = mController.Reopen();
    mCallBegan = mEnvironment.pacer.Now();
    if (opened) return {};
    error = opened.error();
    if (IsStopped()) return std::unexpected(StoppedFailure());
    if (!MayComeBack(error.code)) break;
  }
  Failure failure = LinkFailure(error, true);
  if (mRedials.Most() == 0) {
    failure.cure += "; --redials lets the watch dial again by itself";
  } else if (mRedials.Made() == mRedials.Most()) {
    failure.happened += "; no more calls after " + std::to_string(mRedials.Made()) + " in a row";
  }
  return std::unexpected(std::move(failure));
}

OrFailure<void> RegionWatch::WaitForLink(const LinkError& error, Duration pause) {
  Pause(pause);
  if (IsStopped()) return std::unexpected(StoppedFailure());
  if (IsOver()) return std::unexpected(LinkFailure(error, true));
  return {};
}

void RegionWatch::Show(std::size_t row, Texts texts) {
  const Texts& before = mLast[row];
  for (std::size_t i = 0; i < before.size() && i < texts.size(); ++i) {
    if (texts[i] != before[i]) ShowChange(mRegions[row], i, before[i], texts[i]);
    if (mOptions.count > 0 && mChanges == mOptions.count) return;
  }
  mLast[row] = std::move(texts);
}

void RegionWatch::ShowChange(const Region& region, std::size_t index, const std::string& before,
                             const std::string& now) {
  ++mChanges;
  const std::string time = TimeText(mEnvironment.clock.LocalTime());
  const std::string type(mdlDataTypesView::TypeName(region.type));
  const std::int64_t address = region.from + static_cast<std::int64_t>(index);
  if (mOptions.json) {
    const nlohmann::ordered_json change = {
        {"time", time}, {"type", type}, {"address", address}, {"old", before}, {"new", now}};
    mEnvironment.out << change.dump() << "\n" << std::flush;
    return;
  }
  mEnvironment.out << time << "\t" << type << "\t" << address << "\t" << before << "\t" << now << "\n" << std::flush;
}

void RegionWatch::Pause(Duration span) {
  for (; span > Duration::zero() && !IsStopped() && !IsOver(); span -= kSlice) {
    mEnvironment.pacer.Sleep(std::min(span, kSlice));
  }
}

bool RegionWatch::IsOver() const {
  if (mOptions.count > 0 && mChanges >= mOptions.count) return true;
  return mOptions.span > Duration::zero() && mEnvironment.pacer.Now() - mStart >= mOptions.span;
}

Failure RegionWatch::StoppedFailure() const {
  return InterruptedFailure("watching (" + std::to_string(mChanges) + (mChanges == 1 ? " change)" : " changes)"));
}

}  // namespace kv::cli
