// Any bytes as a CSV file: what is read is written, read again, and is the same. The first byte is the separator.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/files/OperandCsv.h"

namespace {

using namespace kv::mdlDataTypesView;

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

std::vector<std::vector<std::string>> Fields(const std::vector<CsvRecord>& records) {
  std::vector<std::vector<std::string>> fields;
  for (const CsvRecord& record : records) fields.push_back(record.fields);
  return fields;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || !WhyNoSeparator(static_cast<char>(data[0])).empty()) return 0;
  const char separator = static_cast<char>(data[0]);
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  (void)ParseOperandCsv(bytes, separator, CsvForm::Grid);
  (void)ParseOperandCsv(bytes, separator, CsvForm::Values);
  const auto records = ReadCsv(bytes, separator);
  if (!records) return 0;

  CsvWriter writer(separator);
  for (const CsvRecord& record : *records) {
    for (const std::string& field : record.fields) writer.Add(field);
    writer.EndLine();
  }
  const auto again = ReadCsv(writer.Take(), separator);
  Require(again.has_value(), "what was written is read");
  Require(Fields(*again) == Fields(*records), "what was written is the same when it is read");
  return 0;
}
