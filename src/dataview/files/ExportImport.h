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
// spreadsheet a row for each address.
namespace kv::mdlDataTypesView {

// Why a file was not written or taken: what the message box says, and the file, the place in it and the cause for the
// status line.
struct TransferFault {
  std::string_view message;
  std::string reason;
};

[[nodiscard]] std::expected<void, TransferFault> ExportCsv(const std::filesystem::path& file, const OperandStore& store,
                                                           char separator);
// Copies the template that ships with the program to `file` and fills it in.
[[nodiscard]] std::expected<void, TransferFault> ExportSpreadsheet(const ProgramPaths& paths,
                                                                   const std::filesystem::path& file,
                                                                   const OperandStore& store);

// What the file puts where; `store` says which operands there are, and is not changed. A text that could not be written
// to its operand, or for which there is none, refuses the whole file.
[[nodiscard]] std::expected<std::vector<CellAssignment>, TransferFault> ImportCsv(const std::filesystem::path& file,
                                                                                  const OperandStore& store,
                                                                                  char separator);
[[nodiscard]] std::expected<std::vector<CellAssignment>, TransferFault> ImportSpreadsheet(
    const std::filesystem::path& file, const OperandStore& store);

}  // namespace kv::mdlDataTypesView
