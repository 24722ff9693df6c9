#include "apps/kvtele/ReadBack.h"

#include <iterator>

#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/TerminalProgress.h"
#include "dataview/operands/ReadBack.h"

namespace kv::cli {

namespace {

using namespace mdlDataTypesView;

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

OrFailure<std::vector<std::string>> ReadBack(Environment& environment, ConnectedController& controller,
                                             const Region& region, std::span<const std::string> written) {
  const std::string doing = "reading back " + RegionText(region);
  TerminalProgress progress(environment, doing, written.size());
  std::vector<std::string> texts;
  for (const Region& piece : SplitRegion(region)) {
    if (environment.pacer.StopRequested()) return std::unexpected(NotReadBack(InterruptedFailure(doing), region));
    const auto values = written.subspan(texts.size(), static_cast<std::size_t>(piece.Count()));
    auto read = mdlDataTypesView::ReadBack(controller.Link(), controller.Model(), piece, values);
    if (!read) return std::unexpected(NotReadBack(LinkFailure(read.error(), true), region));
    if (!read->differences.empty()) return std::unexpected(DiffersFailure(region, read->differences));
    texts.insert(texts.end(), std::make_move_iterator(read->texts.begin()), std::make_move_iterator(read->texts.end()));
    progress.Show(texts.size());
  }
  return texts;
}

}  // namespace kv::cli
