#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Time.h"
#include "dataview/operands/Region.h"

namespace kv::mdlDataTypesView {

// How the text of one operand came into the grid.
enum class CellOrigin : std::uint8_t {
  None,    // nothing is known of the operand; its text is empty
  Read,    // as the controller told it last
  Edited,  // typed, pasted or imported, and not written since
};

// A cell as the grid shows it.
struct CellText {
  std::string text;
  CellOrigin origin = CellOrigin::None;

  bool operator==(const CellText&) const = default;
};

// The raw value texts of all operands that a model has: 22 types by up to 8192 addresses. It is what the operand grid
// shows, what regions are read into and written from. A row takes memory when its first text is set.
//
// An address outside a type's count is no cell: it reads as empty and cannot be set.
class OperandStore {
 public:
  explicit OperandStore(std::string_view model);

  [[nodiscard]] const std::string& Model() const { return mModel; }
  // Cells of the type, from address 0 on; 0 when the model has none.
  [[nodiscard]] std::int32_t CountOf(OperandTypeCode type) const;
  // The most that any type has: the width of the grid.
  [[nodiscard]] std::int32_t WidestCount() const;
  [[nodiscard]] bool IsCell(OperandTypeCode type, std::int32_t address) const;

  [[nodiscard]] const std::string& Text(OperandTypeCode type, std::int32_t address) const;
  [[nodiscard]] CellOrigin Origin(OperandTypeCode type, std::int32_t address) const;
  [[nodiscard]] CellText Shown(OperandTypeCode type, std::int32_t address) const;
  // When a read last brought another text than the read before it; Instant::min() when none has.
  [[nodiscard]] Instant ChangedAt(OperandTypeCode type, std::int32_t address) const;
  // When the controller last told the operand, or took it; Instant::min() when it never did.
  [[nodiscard]] Instant ReadAt(OperandTypeCode type, std::int32_t address) const;

  // What the controller told of it last, whatever was entered since; empty when it told nothing.
  [[nodiscard]] const std::string& LastTold(OperandTypeCode type, std::int32_t address) const;

  // Whether the cell still shows what an earlier opening of the view had read: nobody knows how old that is.
  [[nodiscard]] bool IsKept(OperandTypeCode type, std::int32_t address) const;
  // The same, or what was read before the controller was out of reach.
  [[nodiscard]] bool IsOld(OperandTypeCode type, std::int32_t address) const;
  // The controller is out of reach since `when`.
  void NoteLoss(Instant when) { mLostAt = when; }
  // When the operand of the region that was read first was read; nothing when one never was.
  [[nodiscard]] std::optional<Instant> OldestReadAt(const Region& region) const;

  // The texts of a region, one an operand; empty where nothing is known, and past the type's count.
  [[nodiscard]] std::vector<std::string> Texts(const Region& region) const;

  // Sets what the user entered. Empty takes the cell back to None. False when there is no such cell.
  bool Edit(OperandTypeCode type, std::int32_t address, std::string_view text);
  // Sets what the controller told at `now`, one text an operand from `region.from` on. Edited cells are replaced too:
  // a read shows the controller. Returns the cells whose text or origin changed (from > to: none).
  Region SetRead(const Region& region, std::span<const std::string> texts, Instant now);
  // The cells of the region that have a text stand in the controller, since `now`, as they are here.
  void SetWritten(const Region& region, Instant now);
  // Undoes or does again a change of the cell from `from` to `to`, as far as that is still true: a cell that the
  // controller has told anew meanwhile is not given an older text as a read one. True when the cell changed.
  bool Restore(OperandTypeCode type, std::int32_t address, const CellText& from, const CellText& to);
  void Clear();

  // Edited cells, of all types.
  [[nodiscard]] std::size_t EditedCount() const { return mEditedCount; }

 private:
  // A pass over the regions touches what stands first of each cell, and hundreds of cells: it is together.
  struct Cell {
    std::string text;
    Instant readAt = Instant::min();
    CellOrigin origin = CellOrigin::None;
    Instant changedAt = Instant::min();
    std::string readText;  // while edited: what the controller told last
  };

  [[nodiscard]] const Cell* Find(OperandTypeCode type, std::int32_t address) const;
  [[nodiscard]] Cell* Touch(OperandTypeCode type, std::int32_t address);
  void Mark(Cell& cell, CellOrigin origin);
  void EditCell(Cell& cell, std::string_view text);
  void Empty(Cell& cell);
  void TakeRead(Cell& cell, const std::string& text, Instant now);
  bool GoBackToRead(Cell& cell, const CellText& from, const std::string& text);
  bool GoBackToNone(Cell& cell, const CellText& from);

  std::string mModel;
  std::array<std::int32_t, kOperandTypeCount> mCounts{};
  std::array<std::vector<Cell>, kOperandTypeCount> mRows;
  std::size_t mEditedCount = 0;
  Instant mLostAt = Instant::min();
};

}  // namespace kv::mdlDataTypesView
