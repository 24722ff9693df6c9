#include "apps/kvtele/ReadBack.h"

#include "apps/kvtele/OperandArguments.h"
#include "apps/kvtele/OperandLink.h"

namespace kv::cli {

namespace {

Failure DiffersFailure(const Region& region, std::size_t index, const std::string& written,
                       const std::string& readBack) {
  const std::int32_t address = region.from + static_cast<std::int32_t>(index);
  return {ExitCode::Differs,
          "differs",
          "comparing what was written to " + RegionText(region),
          RegionText({address, address, region.type}) + " reads " + readBack + ", written was " + written,
          "the operand moves by itself (a running timer or the controller's program), or the write did not take",
          "read it again; see what the program does with this operand"};
}

Failure NotReadBack(Failure failure, const Region& region) {
  failure.doing.clear();
  failure.happened = RegionText(region) + " was written, but could not be read back: " + failure.happened;
  return failure;
}

}  // namespace

OrFailure<std::vector<std::string>> ReadBack(Environment& environment, ConnectedController& controller,
                                             const Region& region, std::span<const std::string> written) {
  const auto readBack = ReadOperands(environment, controller, region);
  if (!readBack) return std::unexpected(NotReadBack(readBack.error(), region));
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (IsSameValue(region.type, controller.Model(), written[i], (*readBack)[i])) continue;
    return std::unexpected(DiffersFailure(region, i, written[i], (*readBack)[i]));
  }
  return readBack;
}

}  // namespace kv::cli
