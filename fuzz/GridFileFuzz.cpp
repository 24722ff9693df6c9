// Any lines as a grid file, with the check that makes them whole: what is taken can be written again and says the same;
// what is refused is refused with a line of the file. The first byte chooses the model and the grid.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "base/Crc32.h"
#include "base/Hex.h"
#include "dataview/files/GridText.h"

namespace {

using namespace kv::mdlDataTypesView;

// Mostly the model with the fewest operands: a try takes as long as its grid is large.
constexpr std::array<std::string_view, 4> kModels = {"Q50", "K220-22-R1", "Q50", "AurexQ50"};

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

void CheckFault(const kv::LineError& fault, std::string_view bytes) {
  Require(fault.line <= static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1, "a fault lies in the file");
  Require(!fault.what.empty(), "a fault says what was expected");
}

void CheckRegions(std::string_view bytes, std::string_view model) {
  const auto grid = ParseRegionsGrid(bytes, model);
  if (!grid) return CheckFault(grid.error(), bytes);
  GridState state{OperandStore(model), {}, {}};
  state.regions.Assign(grid->rows);
  state.settings.regionColumnWidths = grid->columnWidths;
  const std::string printed = PrintRegionsGrid(state, grid->owner.session);
  const auto again = ParseRegionsGrid(printed, model);
  Require(again && again->leftOut == 0, "what was taken fits");
  state.regions.Assign(again->rows);
  Require(PrintRegionsGrid(state, again->owner.session) == printed, "what is read is what is written");
}

void CheckOperands(std::string_view bytes, std::string_view model) {
  const auto grid = ParseOperandsGrid(bytes, model);
  if (!grid) return CheckFault(grid.error(), bytes);
  const std::string printed = PrintOperandsGrid({grid->operands, {}, grid->settings}, grid->owner.session);
  const auto again = ParseOperandsGrid(printed, model);
  Require(again && again->leftOut == 0, "what was taken fits");
  Require(again->settings == grid->settings, "settings come back");
  Require(PrintOperandsGrid({again->operands, {}, again->settings}, again->owner.session) == printed,
          "what is read is what is written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view model = kModels[data[0] % kModels.size()];
  std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  Require(!ParseRegionsGrid(bytes, model) || bytes.contains("check "), "a file without a check is not taken");
  const std::string check = kv::ToHex(kv::Crc32(bytes), 8);
  bytes.append("check ").append(check).append("\n");
  (void)OwnerOfGrid(bytes);
  CheckRegions(bytes, model);
  CheckOperands(bytes, model);
  return 0;
}
