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

// The values of a file, taken region by region.
class ValuesOfFile {
 public:
  ValuesOfFile(std::string file, std::string_view model, std::vector<OperandValue> read);

  // The values of one region as runs, and how many of its operands have none.
  [[nodiscard]] OrFailure<void> Take(const Region& region);
  [[nodiscard]] OrFailure<void> CheckAllTaken() const;
  [[nodiscard]] ValuesToWrite Taken() && { return std::move(mTaken); }

 private:
  [[nodiscard]] OrFailure<void> Check(const Operand& operand, const Value& value) const;
  [[nodiscard]] std::unexpected<Failure> Bad(const Operand& operand, const Value& value, const std::string& what) const;

  std::string mFile;
  std::string mModel;
  std::map<Operand, Value> mValues;
  ValuesToWrite mTaken;
};

// A cell of a grid that is empty says nothing of its operand.
ValuesOfFile::ValuesOfFile(std::string file, std::string_view model, std::vector<OperandValue> read)
    : mFile(std::move(file)), mModel(model) {
  for (OperandValue& each : read) {
    if (each.text.empty()) continue;
    mValues.try_emplace({each.type, each.address}, Value{std::move(each.text), each.line, false});
  }
}

OrFailure<void> ValuesOfFile::Take(const Region& region) {
  bool isRunOpen = false;
  for (std::int32_t address = region.from; address <= region.to; ++address) {
    const auto found = mValues.find({region.type, address});
    const bool hasValue = found != mValues.end();
    if (hasValue) found->second.isInRegion = true;
    if (!IsWritableType(region.type)) continue;
    if (!hasValue) {
      ++mTaken.missing;
    } else {
      if (auto legal = Check(found->first, found->second); !legal) return legal;
      if (!isRunOpen) mTaken.runs.push_back({{address, address, region.type}, {}});
      mTaken.runs.back().region.to = address;
      mTaken.runs.back().texts.push_back(found->second.text);
    }
    isRunOpen = hasValue;
  }
  mTaken.readOnly += IsWritableType(region.type) ? 0U : 1U;
  return {};
}

// Where in the file and why a value cannot be written.
OrFailure<void> ValuesOfFile::Check(const Operand& operand, const Value& value) const {
  if (const auto fault = DaysFault(operand.first, mModel, value.text); !fault.empty()) {
    return Bad(operand, value, ": " + fault);
  }
  auto legal = CheckValues(operand.first, mModel, std::span(&value.text, 1));
  if (legal) return legal;
  Failure failure = Bad(operand, value, " is \"" + value.text + "\"").error();
  failure.cause = std::exchange(failure.happened, std::move(legal.error().happened));
  failure.code = legal.error().code;
  failure.cure = legal.error().cure;
  return std::unexpected(failure);
}

OrFailure<void> ValuesOfFile::CheckAllTaken() const {
  for (const auto& [operand, value] : mValues) {
    if (!value.isInRegion) return Bad(operand, value, " is in none of the regions");
  }
  return {};
}

std::unexpected<Failure> ValuesOfFile::Bad(const Operand& operand, const Value& value, const std::string& what) const {
  const std::string name = OperandText(operand.first, operand.second);
  return std::unexpected(BadFileFailure(mFile, LineError{value.line, name + what}.Text(), {}));
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
  if (!read) return std::unexpected(BadFileFailure(file, read.error().Text(), {}));
  ValuesOfFile values(file, model, std::move(read->values));
  for (const RegionRow& row : rows) {
    if (const auto taken = values.Take(row.region); !taken) return std::unexpected(taken.error());
  }
  if (const auto all = values.CheckAllTaken(); !all) return std::unexpected(all.error());
  ValuesToWrite taken = std::move(values).Taken();
  taken.leftOut = read->LeftOutText();
  return taken;
}

}  // namespace kv::cli
