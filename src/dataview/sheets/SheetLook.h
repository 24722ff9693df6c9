#pragma once

#include <cstddef>
#include <vector>

#include "dataview/sheets/SheetTable.h"

// What both kinds of files look like.
namespace kv {

// Of each column, in characters: the longest text with some air, within bounds that keep a sheet readable.
[[nodiscard]] std::vector<std::size_t> ColumnWidths(const SheetTable& table);

}  // namespace kv
