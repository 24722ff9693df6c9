#include "apps/kvtele/TerminalPanel.h"

#include <algorithm>
#include <vector>

#include "KvTele2/cache/CacheScreen.h"
#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "link/ErrorMeaning.h"
#include "link/LinkLimits.h"

namespace kv::cli {

using namespace std::chrono_literals;

namespace {

constexpr Duration kSlice = 50ms;  // Ctrl-C is noticed between two slices

constexpr const char* kReading = "reading the screen";

}  // namespace

TerminalPanel::TerminalPanel(Environment& environment, ConnectedController& controller, const std::string& tool)
    : mEnvironment(environment),
      mController(controller),
      mLink(*controller.Link().Panel()),
      mSession({.pacer = environment.pacer,
                .link = mLink,
                .resources = mResources,
                .changes = controller.Link().Changes(),
                .unit = controller.Unit(),
                .tool = tool}) {}

OrFailure<bool> TerminalPanel::Go(Instant until) {
  if (mEnvironment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(kReading));
  if (mSession.Step(std::nullopt)) return true;
  const Duration due = std::min(mSession.NextStep().value_or(kSlice), until - mEnvironment.pacer.Now());
  mEnvironment.pacer.Sleep(std::clamp(due, Duration(1ms), kSlice));
  return false;
}

OrFailure<void> TerminalPanel::Update() {
  const Instant from = mEnvironment.pacer.Now();
  mSession.Resume();
  while (true) {
    const auto went = Go(Instant::max());
    if (!went) return std::unexpected(went.error());
    const panel::PanelState state = mSession.State();
    const bool isFailed = state.sight == panel::PanelSight::NoPanel || !state.reason.empty();
    if (isFailed) return std::unexpected(WhyNot());
    const bool isOfNow = state.sight == panel::PanelSight::Live && mEnvironment.pacer.Now() - state.age >= from;
    if (isOfNow && state.isWhole) return {};
  }
}

OrFailure<void> TerminalPanel::Follow(Duration span) {
  const Instant end = mEnvironment.pacer.Now() + span;
  while (mEnvironment.pacer.Now() < end) {
    if (const auto went = Go(end); !went) return std::unexpected(went.error());
  }
  return {};
}

bool TerminalPanel::MayGoOn() const {
  const LinkErrorCode code = mLink.LastError().code;
  const bool isGone = code == LinkErrorCode::LinkLost || code == LinkErrorCode::CannotOpen;
  if (isGone && mController.HowItReconnects() != ConnectedController::Reconnecting::ByItself) return false;
  return code == LinkErrorCode::None || MayComeBack(code);
}

Failure TerminalPanel::WhyNot() const {
  const panel::PanelState state = mSession.State();
  if (state.sight == panel::PanelSight::NoPanel) {
    return NotFitFailure(kReading, "the controller has no display", "this model is built without one",
                         "see kvtele identify for its model");
  }
  const LinkError& error = mLink.LastError();
  if (error.code != LinkErrorCode::None) return LinkFailure(error, true);
  return {ExitCode::Failed, "badReply", kReading, state.reason, {}, "keep the trace for an error report"};
}

OrFailure<bool> TerminalPanel::TakeFromCache() {
  if (!mCache || mTakenFor == Model().Panel()) return true;
  const auto fit = cache::TakeFromCache(mCache->content, mController.Version().model, Model().Panel(), mLink,
                                        mController.Unit(), mResources);
  if (!fit) return std::unexpected(LinkFailure(fit.error(), true));
  mTakenFor = Model().Panel();
  mSession.Redraw();
  if (const std::string text = FitText(*fit, mCache->name); !text.empty()) mEnvironment.err << text << "\n";
  return !fit->isOtherModel;
}

OrFailure<void> TerminalPanel::FetchMissing() {
  for (const PanelResourceKind kind : {PanelResourceKind::Font, PanelResourceKind::Image}) {
    if (const auto fetched = Fetch(kind); !fetched) return std::unexpected(fetched.error());
  }
  mSession.Redraw();
  return {};
}

OrFailure<void> TerminalPanel::Fetch(PanelResourceKind kind) {
  std::vector<panel::Drawing::Missing> missing = mSession.MissingResources();
  std::erase_if(missing, [kind](const panel::Drawing::Missing& one) { return one.kind != kind; });
  if (missing.empty()) return {};
  const auto directory = mLink.Directory(kind, mController.Unit());
  if (!directory) return std::unexpected(LinkFailure(mLink.LastError(), true));
  for (const PanelResource& entry : directory->entries) mResources.Name(kind, entry.id, AnsiToUtf8(entry.name));
  for (const panel::Drawing::Missing& one : missing) {
    const auto entry = std::ranges::find(directory->entries, one.id, &PanelResource::id);
    if (entry == directory->entries.end()) continue;  // the controller does not have it either
    if (const auto fetched = Fetch(one, *entry); !fetched) return std::unexpected(fetched.error());
  }
  return {};
}

OrFailure<void> TerminalPanel::Fetch(const panel::Drawing::Missing& missing, const PanelResource& entry) {
  const std::string name = mResources.NameOf(missing.kind, missing.id);
  if (entry.length > cache::kMostResourceBytes) {
    mEnvironment.err << name << " is left out: it is larger than 16 MB.\n";
    return {};
  }
  std::string bytes;
  while (bytes.size() < entry.length) {
    if (mEnvironment.pacer.StopRequested()) return std::unexpected(InterruptedFailure("reading " + name));
    const auto offset = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t length = std::min(kMostMemoryPerRead, entry.length - offset);
    const auto piece = mLink.ReadPiece(missing.kind, missing.id, offset, length, mController.Unit());
    if (!piece) return std::unexpected(LinkFailure(mLink.LastError(), true));
    bytes.append(piece->begin(), piece->end());
  }
  if (Crc32(bytes) != entry.check) {
    mEnvironment.err << name << " is left out: it has changed while it was read.\n";
    return {};
  }
  if (const auto added = mResources.Add(missing.kind, missing.id, bytes); !added) {
    mEnvironment.err << name << " is left out: " << added.error() << ".\n";
  }
  return {};
}

}  // namespace kv::cli
