#include "dataview/sheets/SheetLook.h"

#include <algorithm>

namespace kv {

std::vector<std::size_t> ColumnWidths(const SheetTable& table) {
  constexpr std::size_t kAir = 2;
  constexpr std::size_t kNarrowest = 8;
  constexpr std::size_t kWidest = 40;
  std::vector<std::size_t> widths;
  for (const auto& row : table.rows) {
    widths.resize(std::max(widths.size(), row.size()), kNarrowest);
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::clamp(row[column].text.size() + kAir, widths[column], kWidest);
    }
  }
  return widths;
}

}  // namespace kv
