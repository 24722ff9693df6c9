#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/ProgramPaths.h"
#include "dataview/OperandStore.h"
#include "dataview/files/CellAssignment.h"

// All values of the operand grid to files of other programs and back. A CSV has a line for each operand type, a
// spreadsheet a column for each, and a row for each address. A CSV with a line an operand is taken as well.
namespace kv::mdlDataTypesView {

// Why a file was not written or taken: what the message box says, and the file, the place in it and the cause for the
// status line.
struct TransferFault {
  std::string_view message;
  std::string reason;
};

[[nodiscard]] std::expected<void, TransferFault> ExportCsv(const std::filesystem::path& file, const OperandStore& store,
                                                           char separator);
// Copies the template that ships with the program to `file` and fills it in. Named ".xlsx" it is of that kind, else
// ".xls".
[[nodiscard]] std::expected<void, TransferFault> ExportSpreadsheet(const ProgramPaths& paths,
                                                                   const std::filesystem::path& file,
                                                                   const OperandStore& store);

// What a file changes in the grid. An empty field empties its cell; cells that have the file's text already are not
// among them. Whether a text is a value for its operand is not judged here.
struct ImportedCells {
  std::vector<CellAssignment> cells;
  std::string note;  // a sentence for the user about lines that were not taken; mostly empty
};

// `store` says which operands there are, and what is in them. A file without any values and one with a text for an
// operand that the model does not have, or with a number for a time, are refused as a whole.
[[nodiscard]] std::expected<ImportedCells, TransferFault> ImportCsv(const std::filesystem::path& file,
                                                                    const OperandStore& store, char separator);
// The columns are known by the type names in the first row and may stand in any order; addresses stand in the first
// column.
[[nodiscard]] std::expected<ImportedCells, TransferFault> ImportSpreadsheet(const std::filesystem::path& file,
                                                                            const OperandStore& store);

}  // namespace kv::mdlDataTypesView
