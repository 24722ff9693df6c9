#include "apps/kvtele/RegionValues.h"

#include <map>
#include <utility>

#include "apps/kvtele/OperandArguments.h"
#include "dataview/files/OperandCsv.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/ValueEntry.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

constexpr char kSeparator = ',';

using Operand = std::pair<OperandTypeCode, std::int64_t>;

struct Value {
  std::string text;
  std::size_t line = 0;
  bool isInRegion = false;
};
using Values = std::map<Operand, Value>;

std::string OperandText(const Operand& operand) {
  return mdlDataTypesView::OperandText(operand.first, operand.second);
}

std::unexpected<Failure> Bad(const std::string& file, std::size_t line, const std::string& what) {
  return std::unexpected(BadFileFailure(file, (line == 0 ? "" : "line " + std::to_string(line) + ": ") + what, {}));
}

// A cell of a grid that is empty says nothing of its operand.
Values ByOperand(std::vector<OperandValue> read) {
  Values values;
  for (OperandValue& each : read) {
    if (!each.text.empty())
      values.try_emplace({each.type, each.address}, Value{std::move(each.text), each.line, false});
  }
  return values;
}

// Where in the file and why a value cannot be written.
OrFailure<void> CheckValue(const std::string& file, const Operand& operand, const Value& value,
                           std::string_view model) {
  if (auto fault = DaysFault(operand.first, model, value.text); !fault.empty()) {
    return Bad(file, value.line, OperandText(operand) + ": " + fault);
  }
  auto legal = CheckValues(operand.first, model, std::span(&value.text, 1));
  if (legal) return legal;
  Failure failure =
      BadFileFailure(file, std::move(legal.error().happened),
                     "line " + std::to_string(value.line) + ": " + OperandText(operand) + " is \"" + value.text + "\"");
  failure.code = legal.error().code;
  failure.cure = legal.error().cure;
  return std::unexpected(failure);
}

// The values of one region as runs, and how many of its operands have none.
OrFailure<void> TakeRegion(const Region& region, const std::string& file, std::string_view model, Values& values,
                           ValuesToWrite& out) {
  bool isRunOpen = false;
  for (std::int32_t address = region.from; address <= region.to; ++address) {
    const auto found = values.find({region.type, address});
    const bool hasValue = found != values.end();
    if (hasValue) found->second.isInRegion = true;
    if (!IsWritableType(region.type)) continue;
    if (!hasValue) {
      ++out.missing;
    } else {
      if (auto legal = CheckValue(file, found->first, found->second, model); !legal) return legal;
      if (!isRunOpen) out.runs.push_back({{address, address, region.type}, {}});
      out.runs.back().region.to = address;
      out.runs.back().texts.push_back(found->second.text);
    }
    isRunOpen = hasValue;
  }
  out.readOnly += IsWritableType(region.type) ? 0U : 1U;
  return {};
}

}  // namespace

std::string PrintValues(std::span<const RegionRow> rows, std::span<const std::vector<std::string>> texts) {
  std::string text = std::string(kValuesHeading) + "\n";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Region& region = rows[i].region;
    for (std::size_t operand = 0; operand < texts[i].size(); ++operand) {
      text.append(TypeName(region.type)).append(",");
      text.append(std::to_string(region.from + static_cast<std::int64_t>(operand))).append(",");
      text.append(texts[i][operand]).append("\n");
    }
  }
  return text;
}

OrFailure<ValuesToWrite> ParseValues(std::string_view bytes, const std::string& file, std::span<const RegionRow> rows,
                                     std::string_view model) {
  auto read = ParseOperandCsv(bytes, kSeparator, CsvForm::Values);
  if (!read) return Bad(file, read.error().line, read.error().what);
  Values values = ByOperand(std::move(read->values));
  ValuesToWrite out;
  out.leftOut = read->LeftOutText();
  for (const RegionRow& row : rows) {
    const auto taken = TakeRegion(row.region, file, model, values, out);
    if (!taken) return std::unexpected(taken.error());
  }
  for (const auto& [operand, value] : values) {
    if (!value.isInRegion) return Bad(file, value.line, OperandText(operand) + " is in none of the regions");
  }
  return out;
}

}  // namespace kv::cli
