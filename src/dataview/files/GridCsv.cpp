#include <algorithm>
#include <string>
#include <utility>

#include "base/Texts.h"
#include "dataview/NumberText.h"
#include "dataview/OperandCatalogue.h"
#include "dataview/TimerText.h"
#include "dataview/files/Csv.h"
#include "dataview/files/OperandSheet.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kFirstHeading = "Operand Type";

// What a controller may have told, so that every line that was written is taken.
bool IsValue(std::string_view text) {
  const std::string_view trimmed = TrimBlanks(text);
  return ParseWholeNumber(trimmed) || ParseSingle(trimmed) || ParseTimerText(trimmed) || IsNoNumber(trimmed);
}

// The first field is the heading.
bool HasValues(const CsvRecord& record) {
  const auto first = std::find_if(record.fields.begin() + 1, record.fields.end(),
                                  [](const std::string& field) { return !field.empty(); });
  return first != record.fields.end() && IsValue(*first);
}

// An exported spreadsheet that was saved as a CSV: by its places, each value would be another operand's.
bool IsOfAddresses(const std::vector<CsvRecord>& records) {
  return !records.empty() && records.front().fields.size() > 1 &&
         TrimBlanks(records.front().fields.front()) == kAddressHeading && TypeFromName(records.front().fields[1]);
}

OperandTypeCode TypeOf(const CsvRecord& record, std::int32_t gridRow) {
  return TypeFromName(TrimBlanks(record.fields.front())).value_or(static_cast<OperandTypeCode>(gridRow));
}

}  // namespace

std::string PrintGridCsv(std::span<const TypeTexts> rows, char separator) {
  std::size_t widest = 0;
  for (const TypeTexts& row : rows) widest = std::max(widest, row.texts.size());
  CsvWriter writer(separator);
  writer.Add(kFirstHeading);
  for (std::size_t address = 0; address < widest; ++address) writer.Add(std::to_string(address));
  writer.EndLine();
  for (const TypeTexts& row : rows) {
    writer.Add(TypeName(row.type));
    for (const std::string& text : row.texts) writer.Add(text);
    writer.EndLine();
  }
  return writer.Take();
}

std::expected<GridCsv, CsvFault> ParseGridCsv(std::string_view bytes, char separator) {
  auto records = ReadCsv(bytes, separator);
  if (!records) return std::unexpected(records.error());
  if (IsOfAddresses(*records)) {
    return std::unexpected(CsvFault{1,
                                    "its lines stand for addresses, as those of an exported spreadsheet do; save it "
                                    "as a spreadsheet and import that"});
  }
  GridCsv grid;
  std::int32_t gridRow = 0;
  for (CsvRecord& record : *records) {
    const bool isHeading = record.line == 1 || record.fields.front() == kFirstHeading;
    if (isHeading) continue;
    const OperandTypeCode type = TypeOf(record, ++gridRow);
    if (TypeName(type).empty() || !HasValues(record)) {
      grid.leftOut.push_back(record.line);
      continue;
    }
    record.fields.erase(record.fields.begin());
    grid.rows.push_back({type, std::move(record.fields), record.line});
  }
  return grid;
}

}  // namespace kv::mdlDataTypesView
