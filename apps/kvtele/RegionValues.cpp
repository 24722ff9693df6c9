#include "apps/kvtele/RegionValues.h"

#include <map>
#include <utility>

#include "apps/kvtele/Values.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/OperandCatalogue.h"
#include "dataview/ValueRange.h"
#include "dataview/files/Csv.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

constexpr char kSeparator = ',';
constexpr std::string_view kHeading = "Operand Type";
constexpr std::size_t kFields = 3;

using Operand = std::pair<OperandTypeCode, std::int64_t>;

struct Value {
  std::string text;
  std::size_t line = 0;
  bool isInRegion = false;
};
using Values = std::map<Operand, Value>;

std::string OperandText(const Operand& operand) {
  return std::string(TypeName(operand.first)) + " " + std::to_string(operand.second);
}

// Reads the lines of one file.
class ValuesParser {
 public:
  explicit ValuesParser(const std::string& file) : mFile(file) {}

  std::expected<Values, Failure> Parse(std::string_view bytes) {
    const auto records = ReadCsv(bytes, kSeparator);
    if (!records) return Bad(records.error().line, records.error().what);
    for (const CsvRecord& record : *records) {
      if (record.line == 1 && record.fields.front() == kHeading) continue;
      if (const auto taken = Take(record); !taken) return std::unexpected(taken.error());
    }
    return std::move(mValues);
  }

  [[nodiscard]] std::unexpected<Failure> Bad(std::size_t line, const std::string& what) const {
    return std::unexpected(BadFileFailure(mFile, (line == 0 ? "" : "line " + std::to_string(line) + ": ") + what, {}));
  }

 private:
  std::expected<void, Failure> Take(const CsvRecord& record) {
    if (record.fields.size() != kFields) {
      return Bad(record.line, "expected an operand type, an address and a value, separated by commas");
    }
    const auto type = TypeFromName(UpperCased(TrimBlanks(record.fields[0])));
    if (!type) return Bad(record.line, "there is no operand type \"" + record.fields[0] + "\"");
    const auto address = ParseInteger(TrimBlanks(record.fields[1]));
    if (!address) return Bad(record.line, "\"" + record.fields[1] + "\" is no operand address");
    const Operand operand{*type, *address};
    const auto [before, isNew] =
        mValues.try_emplace(operand, Value{std::string(TrimBlanks(record.fields[2])), record.line, false});
    if (isNew) return {};
    return Bad(record.line, OperandText(operand) + " is in line " + std::to_string(before->second.line) + " too");
  }

  const std::string& mFile;
  Values mValues;
};

// Where in the file and why a value cannot be written.
std::expected<void, Failure> CheckValue(const std::string& file, const Operand& operand, const Value& value,
                                        std::string_view model) {
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
std::expected<void, Failure> TakeRegion(const Region& region, const std::string& file, std::string_view model,
                                        Values& values, ValuesToWrite& out) {
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
  std::string text = std::string(kHeading) + ",Address,Value\n";
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

std::expected<ValuesToWrite, Failure> ParseValues(std::string_view bytes, const std::string& file,
                                                  std::span<const RegionRow> rows, std::string_view model) {
  ValuesParser parser(file);
  auto values = parser.Parse(bytes);
  if (!values) return std::unexpected(values.error());
  ValuesToWrite out;
  for (const RegionRow& row : rows) {
    const auto taken = TakeRegion(row.region, file, model, *values, out);
    if (!taken) return std::unexpected(taken.error());
  }
  for (const auto& [operand, value] : *values) {
    if (!value.isInRegion) return parser.Bad(value.line, OperandText(operand) + " is in none of the regions");
  }
  return out;
}

}  // namespace kv::cli
