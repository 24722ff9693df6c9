#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/AtomicFile.h"
#include "dataview/sheets/SheetTable.h"

// Spreadsheet files of both kinds that office programs have: .xls (BIFF8) and .xlsx.
namespace kv {

// The file, the sheet's cell or the part inside the file, and what is wrong with it.
using SheetError = FileError;

// Writes the table as the one sheet of a new workbook: .xlsx when the file's name ends so, .xls for every other name.
// The first row is bold and stays in view with the first column, and columns are as wide as what is in them. All or
// nothing: on failure the file is as it was. A table past the limits of SheetTable.h is refused.
[[nodiscard]] std::expected<void, SheetError> WriteSheet(const std::filesystem::path& file, const SheetTable& table);

// Reads the first sheet of a workbook of either kind, told apart by what is in it. Of a formula the value that was
// computed last is taken; a boolean is 1 or 0, a date the number of its day, an error an empty text. Trailing empty
// cells and rows are left out.
[[nodiscard]] std::expected<SheetTable, SheetError> ReadSheet(const std::filesystem::path& file);

// The same on what is in the file; `name` stands in the error.
[[nodiscard]] std::expected<SheetTable, SheetError> ReadSheetBytes(std::string_view content, std::string_view name);

// Fills a copy of the template: the sheet's name and the heading row come from there, and the rows of `values` stand
// below. Fails when the template cannot be read.
[[nodiscard]] std::expected<void, SheetError> ExportSheet(const std::filesystem::path& templateFile,
                                                          const std::filesystem::path& chosenFile,
                                                          const SheetTable& values);

}  // namespace kv
