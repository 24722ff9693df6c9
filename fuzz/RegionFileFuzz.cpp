// Any bytes as a region file: what is taken keeps the rules of the regions table and can be written again and says the
// same; what is refused says why. The first byte chooses the model.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "dataview/files/RegionFile.h"
#include "dataview/operands/OperandCatalogue.h"

namespace {

using namespace kv::mdlDataTypesView;

constexpr std::array<std::string_view, 4> kModels = {"K220-22-R1", "K670-67-T40 / K390-29-T40", "Q50", "AurexQ50"};

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

bool Overlap(const Region& one, const Region& other) {
  return one.type == other.type && one.from <= other.to && other.from <= one.to;
}

void CheckRules(std::span<const RegionRow> rows, std::string_view model) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Region& region = rows[i].region;
    Require(region.from >= 0 && region.Count() >= 1, "a region has operands");
    Require(region.Count() <= MaxOperandsPerRequest(region.type), "a region is one request");
    Require(!IsPastOperandCount(region, model), "the model has the region");
    for (std::size_t j = 0; j < i; ++j) Require(!Overlap(region, rows[j].region), "regions do not overlap");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view model = kModels[data[0] % kModels.size()];
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto rows = ParseRegionFile(bytes, model);
  if (!rows) {
    Require(!rows.error().reason.empty(), "a fault says what was expected");
    return 0;
  }
  CheckRules(*rows, model);
  const RegionFileText text = PrintRegionFile(*rows, model);
  Require(!text.charactersLost, "what came from such a file fits into one");
  const auto again = ParseRegionFile(text.bytes, model);
  Require(again && PrintRegionFile(*again, model).bytes == text.bytes, "what is read is what is written");
  return 0;
}
