// Any bytes as a spreadsheet file, or, where they begin as one, as the rows inside an .xlsx file. What is read is
// written as .xls, read again, and is the same.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "dataview/sheets/SheetFile.h"
#include "dataview/sheets/XlsReader.h"
#include "dataview/sheets/XlsWriter.h"
#include "tests/sheets/StoredZip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  auto table = kv::ReadSheetBytes(bytes.starts_with('<') ? kv::test::Workbook(std::string(bytes)) : bytes, "file");
  if (!table) return 0;
  table->name = "Sheet1";
  const auto again = kv::ReadXls(kv::XlsFile(*table));
  if (again && *again == *table) return 0;
  std::cerr << "broken: what was written is the same when it is read\n";
  std::abort();
}
