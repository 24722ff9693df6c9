#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// A rectangle of the operand grid as the grid counts: row 0 and column 0 are headings, row r is the type with code r,
// column c the address c - 1. All bounds are inclusive, in either order until normalised.
struct GridSelection {
  std::int32_t top = 0;
  std::int32_t left = 0;
  std::int32_t bottom = -1;
  std::int32_t right = -1;

  [[nodiscard]] constexpr GridSelection Normalised() const {
    return {std::min(top, bottom), std::min(left, right), std::max(top, bottom), std::max(left, right)};
  }
  bool operator==(const GridSelection&) const = default;
};

[[nodiscard]] constexpr OperandTypeCode TypeOfRow(std::int32_t row) {
  return static_cast<OperandTypeCode>(row);
}
[[nodiscard]] constexpr std::int32_t RowOfType(OperandTypeCode type) {
  return static_cast<std::int32_t>(type);
}

// The rows of the operand grid that the user has hidden, by type.
class HiddenRows {
 public:
  [[nodiscard]] constexpr bool IsHidden(std::int32_t row) const {
    return row >= 1 && row <= kOperandTypeCount && mHidden[static_cast<std::size_t>(row - 1)];
  }
  constexpr void Set(std::int32_t row, bool hidden) {
    if (row >= 1 && row <= kOperandTypeCount) mHidden[static_cast<std::size_t>(row - 1)] = hidden;
  }
  bool operator==(const HiddenRows&) const = default;

 private:
  std::array<bool, kOperandTypeCount> mHidden{};
};

}  // namespace kv::mdlDataTypesView
