#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "dataview/sheets/SheetTable.h"

namespace kv {

// Writes the table as a new .xlsx file; why it failed otherwise. The table keeps the limits of SheetTable.h, its texts
// are UTF-8 and its numbers are numbers. The name itself, without its folder, is plain ASCII.
[[nodiscard]] std::expected<void, std::string> WriteXlsxFile(const std::filesystem::path& file,
                                                             const SheetTable& table);

}  // namespace kv
