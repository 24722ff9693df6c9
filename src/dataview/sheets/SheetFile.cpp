#include "dataview/sheets/SheetFile.h"

#include <algorithm>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "base/Utf8.h"
#include "dataview/sheets/CompoundReader.h"
#include "dataview/sheets/SheetBuilder.h"
#include "dataview/sheets/XlsReader.h"
#include "dataview/sheets/XlsWriter.h"
#include "dataview/sheets/XlsxReader.h"
#include "dataview/sheets/XlsxWriter.h"
#include "dataview/sheets/ZipParts.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargestFile = std::size_t{64} * 1024 * 1024;
constexpr std::size_t kLongestSheetName = 31;  // in both kinds of files

std::unexpected<SheetError> InFile(const fs::path& file, SheetError error) {
  error.file = Utf8FromPath(file);
  return std::unexpected(std::move(error));
}

std::expected<void, SheetError> CheckCell(const SheetCell& cell) {
  if (cell.text.size() > kMaxCellBytes) return SheetFailure({}, "the text is longer than a cell may be");
  if (!IsUtf8(cell.text)) return SheetFailure({}, "the text is not UTF-8");
  if (cell.kind == SheetCell::Kind::Number && !ParseNumber(cell.text)) return SheetFailure({}, "it is no number");
  return {};
}

std::expected<void, SheetError> CheckCells(const SheetTable& table) {
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
      if (const auto good = CheckCell(table.rows[row][column]); !good) {
        return SheetFailure("cell " + CellPlace(row, column), good.error().what);
      }
    }
  }
  return {};
}

// Whether both kinds of files can hold it.
std::expected<void, SheetError> Check(const SheetTable& table) {
  std::size_t cells = 0;
  std::size_t columns = 0;
  for (const auto& row : table.rows) {
    cells += row.size();
    columns = std::max(columns, row.size());
  }
  if (table.rows.size() > kMaxSheetRows || columns > kMaxSheetColumns || cells > kMaxSheetCells) {
    return SheetFailure({}, "there are more values than the 65536 rows and 256 columns of a sheet hold");
  }
  if (table.name.empty() || Utf16FromUtf8(table.name).size() > kLongestSheetName || !IsUtf8(table.name) ||
      table.name.find_first_of("[]:*?/\\") != std::string::npos || table.name.starts_with('\'') ||
      table.name.ends_with('\'')) {
    return SheetFailure({}, "\"" + table.name + "\" cannot be the name of a sheet");
  }
  return CheckCells(table);
}

bool IsXlsx(const fs::path& file) {
  return UpperCased(Utf8FromPath(file.extension())) == ".XLSX";
}

// The library writes to a file of its own; from there the content goes its way as that of the other kind does.
std::expected<std::string, SheetError> XlsxFile(const fs::path& file, const SheetTable& table) {
  const fs::path temporary = file.parent_path() / (".sheet-" + std::to_string(ProcessNumber()) + ".tmp");
  const ScopeGuard remove([&] {
    std::error_code ignored;
    fs::remove(temporary, ignored);
  });
  if (const auto written = WriteXlsxFile(temporary, table); !written) {
    return SheetFailure({}, "it cannot be saved (" + written.error() + "); check that its folder may be written to");
  }
  return ReadWholeFile(temporary, 2 * kLargestFile);
}

}  // namespace

std::expected<void, SheetError> WriteSheet(const fs::path& file, const SheetTable& table) {
  if (const auto good = Check(table); !good) return InFile(file, good.error());
  const auto content = IsXlsx(file) ? XlsxFile(file, table) : XlsFile(table);
  if (!content) return InFile(file, content.error());
  return SaveAtomically(file, *content);
}

std::expected<SheetTable, SheetError> ReadSheet(const fs::path& file) {
  const auto content = ReadWholeFile(file, kLargestFile);
  if (!content) return std::unexpected(content.error());
  return ReadSheetBytes(*content, Utf8FromPath(file));
}

std::expected<SheetTable, SheetError> ReadSheetBytes(std::string_view content, std::string_view name) {
  std::expected<SheetTable, SheetError> table;
  if (CompoundReader::IsCompound(content)) {
    table = ReadXls(content);
  } else if (ZipParts::IsZip(content)) {
    table = ReadXlsx(content);
  } else {
    table = SheetFailure({}, "it is neither an .xls nor an .xlsx file, whatever its name says");
  }
  if (!table) table.error().file = name;
  return table;
}

std::expected<void, SheetError> ExportSheet(const fs::path& templateFile, const fs::path& chosenFile,
                                            const SheetTable& values) {
  auto sheet = ReadSheet(templateFile);
  if (!sheet) return std::unexpected(sheet.error());
  if (sheet->rows.empty()) return InFile(templateFile, {.place = "row 1", .what = "the template has no headings"});
  sheet->rows.resize(1);
  sheet->rows.insert(sheet->rows.end(), values.rows.begin(), values.rows.end());
  return WriteSheet(chosenFile, *sheet);
}

}  // namespace kv
