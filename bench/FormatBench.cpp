#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"

// What the display of one operand costs, in nanoseconds, for each type of row and each format that it offers: on-line
// mode rebuilds every row of the regions table after every pass.
namespace {

using namespace kv::mdlDataTypesView;

// As many values as one request brings, of all magnitudes that the type has.
std::vector<std::string> FullRegion(OperandTypeCode type) {
  std::vector<std::string> values;
  for (std::int32_t i = 0; i < MaxOperandsPerRequest(type); ++i) {
    values.push_back(IsBitType(type) ? std::to_string(i % 2) : std::to_string((i * 7919) % 32768));
  }
  return values;
}

void DisplayFullRow(benchmark::State& state, OperandTypeCode type, SizeCode size, FormatCode format) {
  const auto values = FullRegion(type);
  for (auto _ : state) benchmark::DoNotOptimize(DisplayRow(type, values, size, format));
  using benchmark::Counter;
  state.counters["per_operand"] =
      Counter(static_cast<double>(values.size()), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void RegisterFormatsOf(OperandTypeCode type) {
  for (const SizeCode size : SizesOffered(type)) {
    for (const FormatCode format : FormatsOffered(size)) {
      const std::string name = "Display/" + std::string(TypeName(type)) + "/" + std::string(SizeName(size)) + "/" +
                               std::string(FormatName(format));
      benchmark::RegisterBenchmark(name.c_str(), DisplayFullRow, type, size, format);
    }
  }
}

const bool kRegistered = [] {
  for (const auto type : {OperandTypeCode::MB, OperandTypeCode::MI, OperandTypeCode::ML}) RegisterFormatsOf(type);
  return true;
}();

}  // namespace
