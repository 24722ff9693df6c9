#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "simulator/ModelTable.h"
#include "simulator/OperandTypes.h"
#include "simulator/Refusal.h"

namespace sim {

// The operands of one controller. Values are raw: bits 0 or 1, words and double words as they are on the wire (MF with
// its halves swapped), times in hundredths of a second.
class Operands {
 public:
  explicit Operands(const Model& model);

  // An older O/S knows fewer operands. Cells beyond its limits keep what they hold.
  void SetOlderOs(bool olderOs) { mOlderOs = olderOs; }

  // The values of `count` operands, field after field for timers and counters. They are the cells themselves, good
  // until the next change, or where an operand is more than one cell as it stands, what has been put into `gathered`.
  [[nodiscard]] Result<std::span<const std::uint32_t>> Read(const OperandTypeRow& type, std::uint32_t start,
                                                            std::uint32_t count,
                                                            std::vector<std::uint32_t>& gathered) const;

  // Whether `count` operands may be written there; a request is checked with this before its values are looked at.
  [[nodiscard]] Result<void> CheckWrite(const OperandTypeRow& type, std::uint32_t start, std::uint32_t count) const;
  // Writes all of the values or, when one of them does not fit, none.
  [[nodiscard]] Result<void> Write(const OperandTypeRow& type, std::uint32_t start,
                                   std::span<const std::uint32_t> values);

  // One cell, for the controller's own life. Outside the area: 0 is read, nothing is set.
  [[nodiscard]] std::uint32_t Cell(Area area, std::size_t index) const {
    const auto& cells = mCells[static_cast<std::size_t>(area)];
    return index < cells.size() ? cells[index] : 0;
  }
  void SetCell(Area area, std::size_t index, std::uint32_t value);
  void Clear();  // all cells 0

  // All cells of an area under the newest O/S, for state files.
  [[nodiscard]] std::span<const std::uint32_t> Cells(Area area) const;

 private:
  [[nodiscard]] Result<void> CheckPlace(const OperandTypeRow& type, std::uint32_t start, std::uint32_t count) const;
  [[nodiscard]] bool CanHold(const OperandTypeRow& type, std::uint32_t value) const;

  const Model& mModel;
  bool mOlderOs = false;
  std::array<std::vector<std::uint32_t>, kAreaCount> mCells;
};

}  // namespace sim
