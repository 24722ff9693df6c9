#include "dataview/GridChanges.h"

#include <algorithm>

namespace kv::mdlDataTypesView {

void GridChanges::AddOperands(OperandTypeCode type, std::int32_t from, std::int32_t to) {
  if (to < from) return;
  const std::int32_t row = RowOfType(type);
  if (operands.bottom < operands.top) {
    operands = {.top = row, .left = from + 1, .bottom = row, .right = to + 1};
    return;
  }
  operands.top = std::min(operands.top, row);
  operands.bottom = std::max(operands.bottom, row);
  operands.left = std::min(operands.left, from + 1);
  operands.right = std::max(operands.right, to + 1);
}

void GridChanges::AddRegion(std::int32_t row) {
  const bool isFirst = lastRegion < firstRegion;
  firstRegion = isFirst ? row : std::min(firstRegion, row);
  lastRegion = isFirst ? row : std::max(lastRegion, row);
}

bool GridChanges::IsEmpty() const {
  return operands.bottom < operands.top && lastRegion < firstRegion && !regionRowsReplaced && !operandsReplaced;
}

std::string LinkLoss::Text() const {
  return consequence.empty() ? error.Text() : error.Text() + "\n" + consequence;
}

}  // namespace kv::mdlDataTypesView
