#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/RegionsFile.h"
#include "apps/kvtele/Verb.h"
#include "base/DateText.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"
#include "link/ErrorMeaning.h"
#include "link/ReconnectPauses.h"
#include "link/RedialPlan.h"

namespace kv::cli {

using namespace std::chrono_literals;

namespace {

// Reads the regions of a region file over and over and prints what changes, as it changes.
class VerbWatch : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "watch"; }
  [[nodiscard]] const char* Summary() const override { return "Print the changes in the regions of a file"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mFile;
  int mCount = 0;    // changes; 0: no limit
  int mSeconds = 0;  // 0: no limit
  int mPause = 200;  // milliseconds
};

constexpr int kMostChanges = 1'000'000'000;
constexpr int kMostSeconds = 31'536'000;      // a year
constexpr int kMostMilliseconds = 3'600'000;  // between two readings

constexpr Duration kSlice = 50ms;  // Ctrl-C is noticed between two slices

Failure OutputFailure() {
  return {ExitCode::Failed,
          "output",
          "printing a change",
          "the output takes no more",
          "its reader has ended, or the disk is full",
          {}};
}

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
  for (int failures = 0;; ++failures) {
    auto texts = mdlDataTypesView::ReadRegion(mController.Link(), mController.Model(), region);
    if (texts) {
      if (failures > 0) mEnvironment.err << "The controller answers again.\n" << std::flush;
      return *std::move(texts);
    }
    if (IsStopped()) return std::unexpected(StoppedFailure());
    if (!MayComeBack(texts.error().code)) return std::unexpected(LinkFailure(texts.error(), true));
    const Duration pause = kPausesWhileWatching.After(failures + 1);
    if (const auto back = GetLinkBack(texts.error(), failures == 0, pause); !back) return std::unexpected(back.error());
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
  const std::chrono::local_seconds moment = mEnvironment.clock.LocalTime();
  const std::string time = DateText(moment) + " " + TimeOfDayText(moment);
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
  return InterruptedFailure("watching (" + Counted(mChanges, "change") + ")");
}

// The others are named and left out.
std::vector<Region> ReadableOf(Environment& environment, const ConnectedController& controller,
                               const std::vector<Region>& regions) {
  std::vector<Region> readable;
  std::vector<Region> unreadable;
  std::ranges::partition_copy(
      regions, std::back_inserter(readable), std::back_inserter(unreadable),
      [&](const Region& region) { return mdlDataTypesView::IsReadableFrom(controller.Model(), region.type); });
  SayUnreadable(environment, controller, unreadable);
  return readable;
}

const char* VerbWatch::Examples() const {
  return "  kvtele --link sim:K220-22-R1 watch plant.axt            until Ctrl-C; a line for each change:\n"
         "                                                          time, type, address, old value, new value\n"
         "  kvtele --link sim:K220-22-R1 watch plant.axt --for 60   for a minute\n"
         "  kvtele --link sim:K220-22-R1 watch plant.axt --count 1  until something changes\n"
         "A link that breaks is waited for, and messages say so; a modem's call is dialled again, --redials times\n"
         "at most in a row. With --json each line is a document.\n";
}

void VerbWatch::Declare(CLI::App& app) {
  app.add_option("FILE", mFile, "Region file (.axt) that the operand view has saved")->required()->type_name("");
  app.add_option("--count", mCount, "End after so many changes")->check(CLI::Range(1, kMostChanges))->type_name("N");
  app.add_option("--for", mSeconds, "End after so many seconds")
      ->check(CLI::Range(1, kMostSeconds))
      ->type_name("SECONDS");
  app.add_option("--every", mPause, "Pause between two readings of all regions. Default: 200")
      ->check(CLI::Range(0, kMostMilliseconds))
      ->type_name("MS");
}

VerbResult VerbWatch::Run(Environment& environment, const CommonOptions& common) {
  const auto file = RegionsFile::Read(mFile);
  if (!file) return std::unexpected(file.error());
  const auto connected =
      ConnectFor(environment, common, [&](const std::string& model) { return file->RegionsFor(model); });
  if (!connected) return std::unexpected(connected.error());
  const auto all = file->RegionsFor((*connected)->Model());
  if (!all) return std::unexpected(all.error());
  const std::vector<Region> regions = ReadableOf(environment, **connected, *all);
  if (regions.empty()) {
    environment.err << "The file has no regions that can be read; there is nothing to watch.\n";
    return VerbOutput{};
  }
  RegionWatch watch(environment, **connected, regions,
                    {.count = static_cast<std::size_t>(mCount),
                     .span = std::chrono::seconds(mSeconds),
                     .pause = std::chrono::milliseconds(mPause),
                     .json = common.json});
  if (const auto ended = watch.Run(); !ended) return std::unexpected(ended.error());
  return VerbOutput{};  // everything has been printed
}

}  // namespace

std::unique_ptr<Verb> MakeVerbWatch() {
  return std::make_unique<VerbWatch>();
}

}  // namespace kv::cli
