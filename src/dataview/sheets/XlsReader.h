#pragma once

#include <expected>
#include <string_view>

#include "dataview/sheets/SheetFile.h"

namespace kv {

// The first sheet of an .xls file that is in memory. The error's file is empty.
[[nodiscard]] std::expected<SheetTable, SheetError> ReadXls(std::string_view content);

}  // namespace kv
