#pragma once

#include <expected>
#include <string_view>

#include "dataview/sheets/SheetFile.h"

namespace kv {

// The first sheet of an .xlsx file that is in memory. Parts are unpacked up to a bound, whatever sizes they declare.
// The error's file is empty.
[[nodiscard]] std::expected<SheetTable, SheetError> ReadXlsx(std::string_view content);

}  // namespace kv
