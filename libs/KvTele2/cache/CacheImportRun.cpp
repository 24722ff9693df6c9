#include "KvTele2/cache/CacheDiff.h"
#include "KvTele2/cache/CacheImport.h"
#include "KvTele2/cache/SystemMode.h"
#include "KvTele2/panel/ScreenResources.h"
#include "base/DateText.h"
#include "desktop/StopScope.h"
#include "link/ChangeObserver.h"

// What an import does to the controller and the files, once it is wanted.

namespace kv::cache {
namespace {

constexpr int kReadings = 3;  // of a controller that changes meanwhile

// There was nothing to read when the user was asked, so nobody has consented to SYSTEM mode.
CacheOutcome ChangedSince() {
  return CacheOutcome::Failed(CacheCause::Changed, {},
                              "The controller's fonts or images have changed this very moment.\nWhat to do: import "
                              "again.");
}

ChangeEnd ChangeEndOf(const std::expected<void, CacheOutcome>& read, const std::string& warning) {
  if (!warning.empty()) return {ChangeResult::Failed, warning};
  if (read) return {ChangeResult::Done, {}};
  const bool isStop = read.error().end == CacheEnd::Stopped;
  return {isStop ? ChangeResult::Stopped : ChangeResult::Failed,
          read.error().reason.substr(0, read.error().reason.find('\n'))};
}

}  // namespace

CacheOutcome CacheImport::Run(Channel& link) {
  const StopScope stopping(mPacer);
  const Step imported = Import(link);
  if (!imported) {
    mContent = {};
    CacheOutcome outcome = WithText(imported.error());
    outcome.kept = mTarget.WhatIsKept();
    if (!outcome.kept.empty()) outcome.kept += mRead.empty() ? "." : "; what had been read is not kept.";
    return outcome;
  }
  NoteResults();
  return WithText({});
}

CacheImport::Step CacheImport::Import(Channel& link) {
  if (auto begun = mTarget.Begin(); !begun) return begun;
  if (auto read = ReadInSystemMode(link); !read) return read;
  mContent.owner = mController;
  mContent.savedAt = Moment();
  return mTarget.Take(mContent);
}

CacheImport::Step CacheImport::ReadInSystemMode(Channel& link) {
  ResourceReader reader(link, mController);
  if (auto met = reader.Meet(); !met) return met;
  OperationScope importing(link.Changes(),
                           {.tool = "Cache import", .what = "show SYSTEM mode while fonts and images are read"});
  SystemMode mode(link, mPacer);
  Step read;
  if (mTotal == 0) {
    read = ReadAll(reader);
  } else if (const auto entered = mode.Enter(); !entered) {
    read = std::unexpected(CacheOutcome::OfLink(entered.error()));
  } else {
    read = ReadAll(reader);
  }
  const std::string warning = mTotal == 0 ? mode.LeaveIfShown() : mode.Leave();
  if (!warning.empty()) mWarnings.push_back(warning);
  importing.End(ChangeEndOf(read, warning));
  return read;
}

// Begins anew what has changed while it was read: what was right the first time is not read again.
CacheImport::Step CacheImport::ReadAll(ResourceReader& reader) {
  for (int i = 0; i < kReadings; ++i) {
    mRemaining.Begin();
    mDone = 0;
    bool isRight = true;
    for (const CacheStep step : {CacheStep::Font, CacheStep::Image}) {
      if (!isRight || !mOrder.Wants(step)) continue;
      const auto done = ReadStep(reader, step);
      if (!done) return std::unexpected(done.error());
      isRight = *done;
    }
    if (!isRight) continue;
    const auto still = IsStillSo(reader);
    if (!still) return std::unexpected(still.error());
    if (*still) return {};
  }
  mWindow.Event_Step(mOrder.images ? CacheStep::Image : CacheStep::Font, CacheStepState::Failed);
  return std::unexpected(CacheOutcome::Failed(
      CacheCause::Changed, {},
      mMisfit + " changed in the controller while they were read, three times in a row.\nWhat to do: wait until nobody "
                "loads anything into the controller, and import again."));
}

std::expected<bool, CacheOutcome> CacheImport::ReadStep(ResourceReader& reader, CacheStep step) {
  mWindow.Event_Step(step, CacheStepState::Running);
  auto done = ReadPart(reader, step);
  if (!done) mWindow.Event_Step(step, CacheStepState::Failed);
  if (done && *done) mWindow.Event_Step(step, CacheStepState::Done);
  return done;
}

std::expected<bool, CacheOutcome> CacheImport::ReadPart(ResourceReader& reader, CacheStep step) {
  const auto directory = reader.Directory(step);
  if (!directory) return std::unexpected(directory.error());
  CacheProgress progress{.step = step, .resource = {}, .done = 0, .total = 0, .left = {}};
  for (const PanelResource& entry : directory->entries) {
    if (Known(step, entry) == nullptr) progress.total += entry.length;
  }
  mWindow.Event_Progress(progress);
  CachePart part;
  for (const PanelResource& entry : directory->entries) {
    const auto read = ReadOne(reader, progress, entry);
    if (!read || !*read) return read;
    const CachedResource& known = *Known(step, entry);
    part.push_back({.entry = entry, .readAt = known.readAt, .bytes = known.bytes});
  }
  mContent.Part(step) = std::move(part);
  mChecks[step] = directory->check;
  return true;
}

std::expected<bool, CacheOutcome> CacheImport::ReadOne(ResourceReader& reader, CacheProgress& progress,
                                                       const PanelResource& entry) {
  if (mPacer.StopRequested()) return std::unexpected(CacheOutcome::OfStop());
  if (Known(progress.step, entry) != nullptr) return true;
  if (mTotal == 0) return std::unexpected(ChangedSince());
  progress.resource = ResourceName(progress.step, entry);
  auto bytes = reader.Read(progress.step, entry, [&](std::uint32_t piece) {
    progress.done += piece;
    mDone += piece;
    progress.left = mRemaining.Text(mDone, mTotal);
    mWindow.Event_Progress(progress);
    return !mPacer.StopRequested();
  });
  if (!bytes) return std::unexpected(std::move(bytes.error()));
  if (!*bytes) {
    mMisfit = "The bytes of " + progress.resource;
    return false;
  }
  mKnown.insert_or_assign(Key(progress.step, entry.id),
                          CachedResource{.entry = entry, .readAt = Moment(), .bytes = **std::move(bytes)});
  mRead.insert(Key(progress.step, entry.id));
  return true;
}

// The description names the CRC-32 of both directories as they are now.
std::expected<bool, CacheOutcome> CacheImport::IsStillSo(ResourceReader& reader) {
  if (auto met = reader.Meet(); !met) return std::unexpected(met.error());
  const auto panel = reader.Describe();
  if (!panel) return std::unexpected(panel.error());
  for (const auto& [step, check] : mChecks) {
    const bool isFont = step == CacheStep::Font;
    if (*panel && check == (isFont ? (*panel)->fontsCheck : (*panel)->imagesCheck)) continue;
    mMisfit = isFont ? "The fonts" : "The images";
    return false;
  }
  return true;
}

void CacheImport::NoteResults() {
  panel::ScreenResources drawn;
  for (const CacheStep step : {CacheStep::Font, CacheStep::Image}) {
    if (!mContent.Part(step)) continue;
    for (const CachedResource& one : *mContent.Part(step)) {
      const auto added = drawn.Add(step, one.entry.id, one.bytes);
      mResults.push_back({.step = step,
                          .entry = one.entry,
                          .wasRead = mRead.contains(Key(step, one.entry.id)),
                          .fault = added ? "" : added.error()});
    }
  }
}

std::string CacheImport::Moment() const {
  const auto now = mClock.LocalTime();
  return DateText(now) + " " + TimeOfDayText(now) + " " + UtcOffsetText(mClock.UtcOffset());
}

}  // namespace kv::cache
