#include "apps/kvtele/OperandLink.h"

#include <iterator>
#include <utility>

#include "apps/kvtele/LinkChoice.h"
#include "apps/kvtele/TerminalProgress.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/OsSupport.h"
#include "dataview/operands/ReadBack.h"
#include "dataview/operands/RecordedValues.h"
#include "dataview/operands/RegionTransfer.h"
#include "link/ErrorMeaning.h"
#include "link/LinkTexts.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

constexpr const char* kNothingWritten = "nothing was written";

std::size_t CountOf(const Region& region) {
  return static_cast<std::size_t>(region.Count());
}

// The operands of `region` before the piece that was not written any more; empty when there are none.
std::string WrittenBefore(const Region& region, const Region& piece) {
  if (piece.from == region.from) return {};
  return RegionText({region.from, piece.from - 1, region.type}) + " had been written before";
}

std::string WrittenSoFar(const LinkError& error, const Region& piece, const std::string& before) {
  if (MeansNotExecuted(error)) return before.empty() ? kNothingWritten : before;
  const std::string unsure = RegionText(piece) + " may have been written";
  return before.empty() ? unsure : unsure + "; " + before;
}

// Stricter than the check of a whole table of regions, which lets one address too many pass: the controller would
// refuse it.
OrFailure<void> CheckFitsOs(const Region& region, const ConnectedController& controller) {
  const std::string& os = controller.Version().osVersion;
  const std::int32_t count = OperandCountWithOs(region.type, controller.Model(), os);
  if (region.to < count) return {};
  const std::string cure = count > 0 ? "use addresses from 0 to " + std::to_string(count - 1) + ", or " : "";
  return std::unexpected(NotFitFailure("using " + RegionText(region), std::string(kRegionsNotSupportedMessage),
                                       "\"" + os + "\" is an older O/S", cure + "replace the O/S"));
}

// A boot loader has no operands at all.
OrFailure<void> CheckHasOperands(ConnectedController& controller, const std::string& doing) {
  const auto info = controller.AskInfo();
  if (!info) return std::unexpected(info.error());
  if (info->state != 'B') return {};
  return std::unexpected(NotFitFailure(doing, "the controller is running its boot loader",
                                       "it has no O/S, or was sent into its boot loader",
                                       "reset it, or replace its O/S"));
}

OrFailure<void> CheckAllFitModel(std::span<const Region> regions, const std::string& model) {
  for (const Region& region : regions) {
    if (const auto fits = CheckFitsModel(region, model); !fits) return fits;
  }
  return {};
}

OrFailure<void> CheckFitsController(ConnectedController& controller, std::span<const Region> regions) {
  if (regions.empty()) return {};
  if (const auto has = CheckHasOperands(controller, "using " + RegionText(regions.front())); !has) return has;
  if (const auto fits = CheckAllFitModel(regions, controller.Model()); !fits) return fits;
  for (const Region& region : regions) {
    if (const auto fits = CheckFitsOs(region, controller); !fits) return fits;
  }
  return {};
}

// None where nothing is recorded, or they cannot be read.
std::vector<std::string> ValuesBefore(ConnectedController& controller, const Region& region) {
  std::vector<std::string> texts;
  if (controller.Link().Changes() == nullptr || !IsReadableFrom(controller.Model(), region.type)) return texts;
  for (const Region& piece : SplitRegion(region)) {
    auto read = ReadRegion(controller.Link(), controller.Model(), piece, FloatDigits::Exact);
    if (!read || read->size() != CountOf(piece)) return {};
    texts.insert(texts.end(), std::make_move_iterator(read->begin()), std::make_move_iterator(read->end()));
  }
  return texts;
}

Failure DiffersFailure(const Region& region, std::span<const ValueDifference> differences) {
  return {ExitCode::Differs,
          "differs",
          "comparing what was written to " + RegionText(region),
          DifferenceText(region.type, differences),
          std::string(MovesByItself(region.type) ? kMovingCause : kDifferenceCause),
          std::string(kDifferenceCure)};
}

Failure NotReadBack(Failure failure, const Region& region) {
  failure.doing.clear();
  failure.happened = RegionText(region) + " was written, but could not be read back: " + failure.happened;
  return failure;
}

}  // namespace

OrFailure<std::unique_ptr<ConnectedController>> ConnectFor(Environment& environment, const CommonOptions& common,
                                                           const Region& region) {
  return ConnectFor(environment, common, [&region](const std::string&) { return std::vector{region}; });
}

OrFailure<std::unique_ptr<ConnectedController>> ConnectFor(Environment& environment, const CommonOptions& common,
                                                           const RegionsFor& regionsFor) {
  if (const std::string model = ModelKnownBeforehand(common); !model.empty()) {
    const auto regions = regionsFor(model);
    if (!regions) return std::unexpected(regions.error());
    if (const auto fits = CheckAllFitModel(*regions, model); !fits) return std::unexpected(fits.error());
  }
  auto connected = ConnectedController::Open(environment, common);
  if (!connected) return connected;
  const auto regions = regionsFor((*connected)->Model());
  if (!regions) return std::unexpected(regions.error());
  if (const auto fits = CheckFitsController(**connected, *regions); !fits) return std::unexpected(fits.error());
  return connected;
}

OrFailure<std::vector<std::string>> ReadOperands(Environment& environment, ConnectedController& controller,
                                                 const Region& region) {
  const std::string doing = "reading " + RegionText(region);
  if (!IsReadableFrom(controller.Model(), region.type)) {
    return std::unexpected(NotFitFailure(doing, "operands of this type cannot be read from " + controller.Model(),
                                         "this model is read with list reads, which do not know them",
                                         "use --model Q50 or --model Q50Net if the controller is one of these"));
  }
  const std::vector<Region> pieces = SplitRegion(region);
  TerminalProgress progress(environment, doing, CountOf(region));
  std::vector<std::string> texts;
  for (const Region& piece : pieces) {
    if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing));
    auto read = ReadRegion(controller.Link(), controller.Model(), piece);
    if (!read) return std::unexpected(LinkFailure(read.error(), true));
    if (read->size() != CountOf(piece)) {
      return std::unexpected(NotFitFailure(doing, "the controller has no such operands", {}, "choose another type"));
    }
    texts.insert(texts.end(), std::make_move_iterator(read->begin()), std::make_move_iterator(read->end()));
    progress.Show(texts.size());
  }
  return texts;
}

ChangedOperands ChangeOf(ConnectedController& controller, const Region& region, std::vector<std::string> texts) {
  return {RegionText(region), RecordedValues(region.type, controller.Model(), ValuesBefore(controller, region)),
          RecordedValues(region.type, controller.Model(), std::move(texts))};
}

OrFailure<void> WriteOperands(Environment& environment, ConnectedController& controller, const Region& region,
                              std::span<const std::string> texts) {
  const std::string doing = "writing " + RegionText(region);
  TerminalProgress progress(environment, doing, CountOf(region));
  std::size_t done = 0;
  for (const Region& piece : SplitRegion(region)) {
    if (environment.pacer.StopRequested()) {
      const std::string before = WrittenBefore(region, piece);
      return std::unexpected(InterruptedFailure(doing + " (" + (before.empty() ? kNothingWritten : before) + ")"));
    }
    const auto values = texts.subspan(done, CountOf(piece));
    const auto written = WriteRegion(controller.Link(), controller.Model(), piece, values);
    if (!written) return std::unexpected(WriteFailure(written.error(), piece, WrittenBefore(region, piece)));
    done += values.size();
    progress.Show(done);
  }
  return {};
}

OrFailure<std::vector<std::string>> ReadOperandsBack(Environment& environment, ConnectedController& controller,
                                                     const Region& region, std::span<const std::string> written) {
  const std::string doing = "reading back " + RegionText(region);
  TerminalProgress progress(environment, doing, written.size());
  std::vector<std::string> texts;
  for (const Region& piece : SplitRegion(region)) {
    if (environment.pacer.StopRequested()) return std::unexpected(NotReadBack(InterruptedFailure(doing), region));
    const auto values = written.subspan(texts.size(), static_cast<std::size_t>(piece.Count()));
    auto read = ReadBack(controller.Link(), controller.Model(), piece, values);
    if (!read) return std::unexpected(NotReadBack(LinkFailure(read.error(), true), region));
    if (!read->differences.empty()) return std::unexpected(DiffersFailure(region, read->differences));
    texts.insert(texts.end(), std::make_move_iterator(read->texts.begin()), std::make_move_iterator(read->texts.end()));
    progress.Show(texts.size());
  }
  return texts;
}

Failure WriteFailure(const LinkError& error, const Region& piece, const std::string& before) {
  Failure failure = LinkFailure(error, true);
  failure.happened += "; " + WrittenSoFar(error, piece, before);
  return failure;
}

}  // namespace kv::cli
