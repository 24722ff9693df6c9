#pragma once

#include <string>

#include "dataview/sheets/SheetTable.h"

namespace kv {

// The table as an .xls file: BIFF8 records inside a compound file. The table keeps the limits of SheetTable.h, its
// texts are UTF-8 and its numbers are numbers.
[[nodiscard]] std::string XlsFile(const SheetTable& table);

}  // namespace kv
