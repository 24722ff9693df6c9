#include "KvTele2/cache/CacheImport.h"

#include "base/AnsiText.h"
#include "link/OsVersion.h"
#include "link/TimeOnLink.h"
#include "models/ModelCatalogue.h"

namespace kv::cache {
namespace {

constexpr std::int64_t kLeastOs = 1001;  // 1.1
constexpr std::uint64_t kKibibyte = 1024;
constexpr std::uint64_t kAroundPiece = 60;  // bytes of request and reply around what is read

std::unexpected<CacheOutcome> Refused(CacheCause cause, std::string_view text, std::string reason = {}) {
  return std::unexpected(CacheOutcome::Failed(cause, std::string(text), std::move(reason)));
}

std::unexpected<CacheOutcome> NotConnected(const LinkError& error) {
  if (error.code == LinkErrorCode::Stopped) return std::unexpected(CacheOutcome::OfStop());
  auto refused = Refused(CacheCause::NoConnection, kNoConnectionText, error.Text());
  refused.error().link = error;
  return refused;
}

// Who answers, when it is a controller whose fonts and images can be imported.
std::expected<CacheOwner, CacheOutcome> FindController(Channel* link) {
  if (link == nullptr) return NotConnected({});
  const auto version = link->GetVersionInfo(link->UnitID());
  if (!version) return NotConnected(link->LastError());
  const std::string model = AnsiToUtf8(version->model);
  if (!IsColourModel(model)) {
    return Refused(CacheCause::NotColour, kNotColourText, "The controller is a " + model + ".");
  }
  const auto os = ParseColourOsVersion(version->osVersion);
  if (!os || os->Number() < kLeastOs) {
    return Refused(CacheCause::OldOs, kOldOsText, "The controller has O/S " + OsVersionText(*version) + ".");
  }
  const auto info = link->GetControllerInfo(link->UnitID());
  if (!info) return NotConnected(link->LastError());
  return CacheOwner{.version = *version, .serialNumber = info->serialNumber, .project = info->projectName};
}

}  // namespace

std::string ReadingText(const CacheImportPlan& plan, std::uint64_t bytes) {
  const std::uint64_t pieces = (bytes + plan.piece - 1) / plan.piece;
  const Duration about = plan.perPiece * static_cast<Duration::rep>(pieces);
  return std::to_string((bytes + kKibibyte - 1) / kKibibyte) + " KiB of fonts and images, about " +
         TimeOnLinkText(about) + " on this link";
}

std::string_view ProgressText(CacheStep step) {
  return step == CacheStep::Font ? "Importing Fonts" : "Importing Images";
}

CacheImport::CacheImport(CacheImportOrder order, Pacer& pacer, const WallClock& clock, CacheImportWindow& window)
    : mOrder(std::move(order)), mPacer(pacer), mClock(clock), mWindow(window), mTarget(mOrder), mRemaining(pacer) {}

CacheOutcome CacheImport::WithText(CacheOutcome outcome) const {
  if (!outcome.text.empty()) return outcome;
  switch (outcome.end) {
    case CacheEnd::Done:
      outcome.text = CreatedText(mTarget.Name());
      break;
    case CacheEnd::Stopped:
      outcome.text = StoppedText(mTarget.Name());
      break;
    case CacheEnd::Failed:
      outcome.text = ErrorsText(mTarget.Name());
      break;
  }
  return outcome;
}

std::expected<CacheImportPlan, CacheOutcome> CacheImport::Prepare(Channel* link) {
  auto plan = MakePlan(link);
  if (!plan) return std::unexpected(WithText(std::move(plan.error())));
  return plan;
}

std::expected<CacheImportPlan, CacheOutcome> CacheImport::MakePlan(Channel* link) {
  if (!mOrder.fonts && !mOrder.images) {
    return Refused(CacheCause::NothingWanted, {}, "Neither fonts nor images are to be imported. Choose one of them.");
  }
  auto controller = FindController(link);
  if (!controller) return std::unexpected(std::move(controller.error()));
  if (link->Panel() == nullptr) return Refused(CacheCause::NotColour, kNotColourText);
  mController = *std::move(controller);

  auto before = mTarget.Look(mController);
  if (!before) return std::unexpected(std::move(before.error()));
  CacheImportPlan plan{
      .controller = mController, .fonts = {}, .images = {}, .question = before->question, .isNew = !before->isThere};
  Keep(*std::move(before));

  ResourceReader reader(*link, mController);
  const auto panel = reader.Describe();
  if (!panel) return std::unexpected(panel.error());
  if (!*panel) return Refused(CacheCause::NotColour, kNotColourText);
  for (const CacheStep step : {CacheStep::Font, CacheStep::Image}) {
    if (!mOrder.Wants(step)) continue;
    const auto steps = PlanStep(reader, step);
    if (!steps) return std::unexpected(steps.error());
    (step == CacheStep::Font ? plan.fonts : plan.images) = *steps;
  }
  plan.piece = reader.Piece();
  plan.perPiece = TimeOnLink(*link, plan.piece + kAroundPiece, 1);
  mTotal = plan.BytesToRead();
  if (mTotal + plan.fonts.bytesKept + plan.images.bytesKept > kMostCacheBytes) {
    return Refused(CacheCause::TooMuch, {}, "The controller has more fonts and images than a cache file can hold.");
  }
  return plan;
}

// What the file has that need not be read. A part that is not wanted now stays as it was.
void CacheImport::Keep(ImportTarget::Before before) {
  mKnown.clear();
  mContent = {};
  const auto keep = [&](CacheStep step, CachePart& part) {
    if (mOrder.readsAll || !mOrder.Wants(step)) return;
    for (CachedResource& one : part) {
      const Key key(step, one.entry.id);
      mKnown.insert_or_assign(key, std::move(one));
    }
  };
  keep(CacheStep::Font, before.salvage.fonts);
  keep(CacheStep::Image, before.salvage.images);
  if (!before.ours) return;
  for (const CacheStep step : {CacheStep::Font, CacheStep::Image}) {
    auto& part = before.ours->Part(step);
    if (!part) continue;
    keep(step, *part);
    if (!mOrder.Wants(step)) mContent.Part(step) = std::move(part);
  }
}

const CachedResource* CacheImport::Known(CacheStep step, const PanelResource& entry) const {
  const auto found = mKnown.find({step, entry.id});
  return found != mKnown.end() && HasBytesOf(found->second.entry, entry) ? &found->second : nullptr;
}

std::expected<CacheStepPlan, CacheOutcome> CacheImport::PlanStep(ResourceReader& reader, CacheStep step) const {
  const auto directory = reader.Directory(step);
  if (!directory) return std::unexpected(directory.error());
  CacheStepPlan plan;
  for (const PanelResource& entry : directory->entries) {
    ++plan.count;
    if (Known(step, entry) != nullptr) {
      ++plan.kept;
      plan.bytesKept += entry.length;
    } else {
      plan.bytesToRead += entry.length;
    }
  }
  return plan;
}

}  // namespace kv::cache
