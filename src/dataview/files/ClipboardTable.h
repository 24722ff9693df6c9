#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/GridSelection.h"
#include "dataview/OperandStore.h"
#include "dataview/files/CellAssignment.h"
#include "desktop/Prompts.h"

// The operand grid's cells as text on the clipboard: cells separated by TAB, rows ended by CR LF.
namespace kv::mdlDataTypesView {

// What a clipboard without text is answered with; PasteFault has the other refusals.
inline constexpr std::string_view kClipboardNoTextMessage = "Clipboard contents must be either numerals or characters.";

// Why nothing was pasted: what the message box says, with which icon, and for the status line the place where that is
// known.
struct PasteFault {
  std::string_view message;
  PromptIcon icon = PromptIcon::Exclamation;
  std::string reason;
};

// The longest text that a cell takes over; no value is near it, and a clipboard may hold anything.
inline constexpr std::size_t kLongestCellText = 255;

// A text as a table. A table that is larger than any operand grid has its size only: it fits nowhere.
struct ClipboardTable {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<std::string> cells;  // row by row
  bool hasRest = false;            // text behind the end of the last row, which is no row

  [[nodiscard]] const std::string& At(std::size_t row, std::size_t column) const {
    return cells[row * columns + column];
  }
};

// The texts of the selected cells, hidden rows among them. Headings are left out; a cell that the model does not have
// is empty.
[[nodiscard]] std::string CopyText(const OperandStore& store, const GridSelection& selection);

// The table in a text. Rows end with CR LF; where there is no CR LF in the whole text, with LF, as other programs write
// them. What follows the last end of a row is no row.
// A row with fewer cells than the widest one makes the text unusable, but for an empty row, whose cells are all empty.
[[nodiscard]] std::expected<ClipboardTable, PasteFault> ParseClipboard(std::string_view text);

// Where the table's cells go: down and to the right from a single selected cell, or exactly into a larger selection.
// Hidden rows do not count and are passed over. A text that would land where the model has no operand is refused as not
// fitting, and a table without a row as unknown: a paste that does nothing would pass for one that was done.
[[nodiscard]] std::expected<std::vector<CellAssignment>, PasteFault> PlacePaste(const ClipboardTable& table,
                                                                                const GridSelection& selection,
                                                                                const HiddenRows& hidden,
                                                                                const OperandStore& store);

}  // namespace kv::mdlDataTypesView
