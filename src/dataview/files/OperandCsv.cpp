#include "dataview/files/OperandCsv.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/files/OperandSheet.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kTypeHeading = "Operand Type";
constexpr std::string_view kOperandHeading = "Address";
constexpr std::string_view kValueHeading = "Value";
constexpr std::size_t kValueFields = 3;
constexpr std::size_t kMostNamed = 3;  // lines that a sentence names one by one

using Records = std::vector<CsvRecord>;

bool IsSameText(std::string_view one, std::string_view other) {
  return UpperCased(one) == UpperCased(other);
}

void TrimFields(Records& records) {
  for (CsvRecord& record : records) {
    for (std::string& field : record.fields) field = std::string(TrimBlanks(field));
  }
}

// ---- what the first line tells ----

bool IsValuesHeading(const CsvRecord& record) {
  return record.fields.size() == kValueFields && IsSameText(record.fields[0], kTypeHeading) &&
         IsSameText(record.fields[1], kOperandHeading) && IsSameText(record.fields[2], kValueHeading);
}

bool IsGridHeading(const CsvRecord& record) {
  return IsSameText(record.fields.front(), kTypeHeading);
}

// An exported spreadsheet that was saved as a CSV: by its places, each value would be another operand's.
bool IsSheetHeading(const CsvRecord& record) {
  return record.fields.size() > 1 && IsSameText(record.fields.front(), kAddressHeading) &&
         TypeFromName(record.fields[1]);
}

CsvForm FormOf(const Records& records, CsvForm otherwise) {
  if (records.empty()) return otherwise;
  if (IsValuesHeading(records.front())) return CsvForm::Values;
  return IsGridHeading(records.front()) ? CsvForm::Grid : otherwise;
}

// ---- the grid form ----

// What a controller may have told, so that every line that was written is taken.
bool IsValue(std::string_view text) {
  return ParseWholeNumber(text) || ParseSingle(text) || ParseTimerText(text) || IsNoNumber(text);
}

// Why the line is not taken; empty where it only lacks values, nothing when it is taken.
std::optional<std::string> WhyLeftOut(const CsvRecord& record) {
  const std::string& name = record.fields.front();
  const auto first = std::find_if(record.fields.begin() + 1, record.fields.end(),
                                  [](const std::string& field) { return !field.empty(); });
  if (first == record.fields.end()) {
    if (name.empty() || TypeFromName(name)) return "";
    return "\"" + name + "\" is all that it holds";
  }
  if (!IsValue(*first)) return "\"" + *first + "\" is no value";
  return std::nullopt;
}

class GridParser {
 public:
  std::expected<OperandCsv, LineError> Parse(Records&& records) {
    for (CsvRecord& record : records) {
      const bool isHeading = record.line == 1 || IsGridHeading(record);
      if (isHeading) continue;
      ++mGridRow;
      if (auto why = WhyLeftOut(record)) {
        mRead.leftOut.push_back({record.line, *std::move(why)});
      } else if (auto taken = Take(std::move(record)); !taken) {
        return std::unexpected(taken.error());
      }
    }
    return std::move(mRead);
  }

 private:
  std::expected<void, LineError> Take(CsvRecord&& record) {
    const std::string& name = record.fields.front();
    auto type = TypeFromName(name);
    if (!type) {
      if (!name.empty() && !IsValue(name)) {
        return std::unexpected(
            LineError{record.line, "there is no operand type \"" + name +
                                       "\"; correct it, or choose the separator with which the file was written"});
      }
      type = static_cast<OperandTypeCode>(mGridRow);
    }
    if (TypeName(*type).empty()) {
      mRead.leftOut.push_back({record.line, "it stands behind the last operand type"});
      return {};
    }
    const auto [before, isNew] = mLines.try_emplace(*type, record.line);
    if (!isNew) {
      return std::unexpected(LineError{
          record.line, std::string(TypeName(*type)) + " is in line " + std::to_string(before->second) + " too"});
    }
    for (std::size_t i = 1; i < record.fields.size(); ++i) {
      mRead.values.push_back({*type, static_cast<std::int64_t>(i - 1), std::move(record.fields[i]), record.line});
    }
    return {};
  }

  OperandCsv mRead;
  std::map<OperandTypeCode, std::size_t> mLines;
  std::int32_t mGridRow = 0;
};

// ---- the values form ----

class ValuesParser {
 public:
  std::expected<OperandCsv, LineError> Parse(Records&& records) {
    OperandCsv read;
    for (CsvRecord& record : records) {
      if (IsValuesHeading(record)) continue;
      auto value = Take(std::move(record));
      if (!value) return std::unexpected(value.error());
      read.values.push_back(*std::move(value));
    }
    return read;
  }

 private:
  std::expected<OperandValue, LineError> Take(CsvRecord&& record) {
    const auto fault = [&](std::string what) { return std::unexpected(LineError{record.line, std::move(what)}); };
    if (record.fields.size() != kValueFields) {
      return fault(
          "three fields were expected: an operand type, an address and a value; is it the separator with which the "
          "file was written?");
    }
    const auto type = TypeFromName(record.fields[0]);
    if (!type) return fault("there is no operand type \"" + record.fields[0] + "\"");
    const auto address = ParseInteger(record.fields[1]);
    if (!address) return fault("\"" + record.fields[1] + "\" is no operand address");
    const std::string operand = OperandText(*type, *address);
    if (record.fields[2].empty()) return fault(operand + " has no value");
    const auto [before, isNew] = mLines.try_emplace({*type, *address}, record.line);
    if (!isNew) return fault(operand + " is in line " + std::to_string(before->second) + " too");
    return OperandValue{*type, *address, std::move(record.fields[2]), record.line};
  }

  std::map<std::pair<OperandTypeCode, std::int64_t>, std::size_t> mLines;
};

}  // namespace

std::string PrintGridCsv(std::span<const TypeTexts> rows, char separator) {
  std::size_t widest = 0;
  for (const TypeTexts& row : rows) widest = std::max(widest, row.texts.size());
  CsvWriter writer(separator);
  writer.Add(kTypeHeading);
  for (std::size_t address = 0; address < widest; ++address) writer.Add(std::to_string(address));
  writer.EndLine();
  for (const TypeTexts& row : rows) {
    writer.Add(TypeName(row.type));
    for (const std::string& text : row.texts) writer.Add(text);
    writer.EndLine();
  }
  return writer.Take();
}

std::string OperandCsv::LeftOutText() const {
  std::vector<std::string> parts;
  std::size_t unnamed = 0;
  std::size_t withoutValues = 0;
  for (const LeftOutLine& each : leftOut) {
    if (each.why.empty()) {
      ++withoutValues;
    } else if (parts.size() < kMostNamed) {
      parts.push_back(LineError{each.line}.Place() + " (" + each.why + ")");
    } else {
      ++unnamed;
    }
  }
  if (unnamed > 0) parts.push_back(Counted(unnamed, "line") + " more that cannot be taken");
  if (withoutValues > 0) parts.push_back(Counted(withoutValues, "line") + " without values");
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += (i == 0 ? "Left out: " : i + 1 == parts.size() ? " and " : ", ") + parts[i];
  }
  return text.empty() ? text : text + ".";
}

std::expected<OperandCsv, LineError> ParseOperandCsv(std::string_view bytes, char separator, CsvForm otherwise) {
  auto records = ReadCsv(bytes, separator);
  if (!records) return std::unexpected(records.error());
  TrimFields(*records);
  if (!records->empty() && IsSheetHeading(records->front())) {
    return std::unexpected(LineError{records->front().line,
                                     "its lines stand for addresses, as those of an exported spreadsheet do; save it "
                                     "as a spreadsheet and import that"});
  }
  if (FormOf(*records, otherwise) == CsvForm::Values) return ValuesParser().Parse(*std::move(records));
  return GridParser().Parse(*std::move(records));
}

}  // namespace kv::mdlDataTypesView
