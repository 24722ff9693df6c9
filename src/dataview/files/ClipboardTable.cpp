#include "dataview/files/ClipboardTable.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kEmpty = "Clipboard is empty.";
constexpr std::string_view kUnknownFormat = "The Clipboard contents are in unknown format.";
constexpr std::string_view kNotEnoughCells =
    "There are not enough cells in the Table to contain the Clipboard contents.";
constexpr std::string_view kOtherShape =
    "The information cannot be pasted because the Copy area and the paste area are not the same size and shape.\r\n"
    "Try one of the following:\r\n"
    "\r\n"
    "* Click a single cell, and then paste.\r\n"
    "* Select a rectangle that's the same size and shape, and then paste.";

constexpr std::string_view kRowEnd = "\r\n";
constexpr std::string_view kOtherRowEnd = "\n";
constexpr char kCellEnd = '\t';

// No operand grid is larger; see OperandStore::WidestCount.
constexpr std::size_t kMostRows = kOperandTypeCount;
constexpr std::size_t kMostColumns = 8192;

std::unexpected<PasteFault> Fault(std::string_view message, std::string reason) {
  return std::unexpected(PasteFault{message, PromptIcon::Exclamation, std::move(reason)});
}

// The rows of a text one after the other, without what follows the last end of a row.
class Rows {
 public:
  explicit Rows(std::string_view text)
      : mRest(text), mEnd(text.find(kRowEnd) == std::string_view::npos ? kOtherRowEnd : kRowEnd) {}

  std::optional<std::string_view> Next() {
    const std::size_t at = mRest.find(mEnd);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view row = mRest.substr(0, at);
    mRest.remove_prefix(at + mEnd.size());
    return row;
  }
  [[nodiscard]] bool HasRest() const { return !mRest.empty(); }

 private:
  std::string_view mRest;
  std::string_view mEnd;
};

std::size_t CellsOf(std::string_view row) {
  return static_cast<std::size_t>(std::ranges::count(row, kCellEnd)) + 1;
}

// Rows and the cells of the widest one; the text is only looked at, however long it is.
ClipboardTable SizeOf(std::string_view text) {
  ClipboardTable table{.rows = 0, .columns = 1, .cells = {}, .hasRest = false};
  Rows rows(text);
  while (const auto row = rows.Next()) {
    ++table.rows;
    table.columns = std::max(table.columns, CellsOf(*row));
  }
  table.hasRest = rows.HasRest();
  return table;
}

// The first row, counted from 1, that is neither empty nor as wide as the table; none when there is no such row.
std::optional<std::size_t> FindRaggedRow(std::string_view text, std::size_t columns) {
  Rows rows(text);
  for (std::size_t number = 1; const auto row = rows.Next(); ++number) {
    if (!row->empty() && CellsOf(*row) != columns) return number;
  }
  return std::nullopt;
}

void AppendCells(std::vector<std::string>& cells, std::string_view row, std::size_t columns) {
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t end = std::min(row.find(kCellEnd), row.size());
    cells.emplace_back(row.substr(0, end));
    row.remove_prefix(std::min(end + 1, row.size()));
  }
}

// The rows of the grid, from the top of the selection on, that a paste goes to.
std::vector<std::int32_t> ShownRows(std::int32_t top, std::int32_t bottom, const HiddenRows& hidden) {
  std::vector<std::int32_t> rows;
  for (std::int32_t row = top; row <= bottom; ++row) {
    if (!hidden.IsHidden(row)) rows.push_back(row);
  }
  return rows;
}

// The selection without the headings and what lies outside of the grid.
GridSelection Cells(const GridSelection& selection, const OperandStore& store) {
  const GridSelection normalised = selection.Normalised();
  return {std::max(normalised.top, 1), std::max(normalised.left, 1), std::min(normalised.bottom, kOperandTypeCount),
          std::min(normalised.right, store.WidestCount())};
}

std::string SizeText(std::size_t rows, std::size_t columns) {
  return std::to_string(rows) + " x " + std::to_string(columns);
}

// Why the table does not go where `room` is; none when it does.
std::optional<PasteFault> WhyNotFitting(const ClipboardTable& table, std::size_t rows, std::size_t columns,
                                        bool isSingleCell) {
  const bool fits =
      isSingleCell ? table.rows <= rows && table.columns <= columns : table.rows == rows && table.columns == columns;
  if (fits) return std::nullopt;
  return PasteFault{isSingleCell ? kNotEnoughCells : kOtherShape, PromptIcon::Exclamation,
                    "the clipboard has " + SizeText(table.rows, table.columns) + " cells, the place for them " +
                        SizeText(rows, columns)};
}

}  // namespace

std::string CopyText(const OperandStore& store, const GridSelection& selection) {
  const GridSelection cells = Cells(selection, store);
  std::string text;
  for (std::int32_t row = cells.top; row <= cells.bottom; ++row) {
    for (std::int32_t column = cells.left; column <= cells.right; ++column) {
      if (column > cells.left) text += kCellEnd;
      text += store.Text(TypeOfRow(row), column - 1);
    }
    text += kRowEnd;
  }
  return text;
}

std::expected<ClipboardTable, PasteFault> ParseClipboard(std::string_view text) {
  if (text.empty()) return std::unexpected(PasteFault{kEmpty, PromptIcon::Information, {}});
  ClipboardTable table = SizeOf(text);
  if (const auto ragged = FindRaggedRow(text, table.columns)) {
    return Fault(kUnknownFormat, "row " + std::to_string(*ragged) + " of the clipboard has fewer cells than others");
  }
  if (table.rows > kMostRows || table.columns > kMostColumns) return table;
  table.cells.reserve(table.rows * table.columns);
  Rows rows(text);
  while (const auto row = rows.Next()) AppendCells(table.cells, *row, table.columns);
  const auto tooLong =
      std::ranges::find_if(table.cells, [](const auto& cell) { return cell.size() > kLongestCellText; });
  if (tooLong == table.cells.end()) return table;
  const auto row = static_cast<std::size_t>(tooLong - table.cells.begin()) / table.columns + 1;
  return Fault(kUnknownFormat, "row " + std::to_string(row) + " of the clipboard has a text that is too long");
}

std::expected<std::vector<CellAssignment>, PasteFault> PlacePaste(const ClipboardTable& table,
                                                                  const GridSelection& selection,
                                                                  const HiddenRows& hidden, const OperandStore& store) {
  const GridSelection target = Cells(selection, store);
  const bool isSingleCell = target.top == target.bottom && target.left == target.right;
  const std::int32_t bottom = isSingleCell ? kOperandTypeCount : target.bottom;
  const std::int32_t right = isSingleCell ? store.WidestCount() : target.right;
  const std::vector<std::int32_t> rows = ShownRows(target.top, bottom, hidden);
  const auto columns = static_cast<std::size_t>(std::max(right - target.left + 1, 0));
  if (auto fault = WhyNotFitting(table, rows.size(), columns, isSingleCell)) return std::unexpected(*std::move(fault));
  if (table.rows == 0) return Fault(kUnknownFormat, "the text on the clipboard has no line end");

  std::vector<CellAssignment> assignments;
  assignments.reserve(table.cells.size());
  for (std::size_t row = 0; row < table.rows; ++row) {
    const OperandTypeCode type = TypeOfRow(rows[row]);
    for (std::size_t column = 0; column < table.columns; ++column) {
      const std::int32_t address = target.left - 1 + static_cast<std::int32_t>(column);
      const std::string& text = table.At(row, column);
      if (store.IsCell(type, address)) {
        assignments.push_back({type, address, text});
      } else if (!text.empty()) {
        return Fault(kNotEnoughCells, "the model has no " + OperandText(type, address));
      }
    }
  }
  return assignments;
}

}  // namespace kv::mdlDataTypesView
