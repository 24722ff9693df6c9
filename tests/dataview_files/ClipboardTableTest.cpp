#include "dataview/files/ClipboardTable.h"

#include <gtest/gtest.h>

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int32_t kMB = 1;
constexpr std::int32_t kMI = 2;
constexpr std::int32_t kMF = 3;
constexpr std::int32_t kLastRow = 22;

constexpr const char* kUnknown = "The Clipboard contents are in unknown format.";
constexpr const char* kNotEnough = "There are not enough cells in the Table to contain the Clipboard contents.";
constexpr const char* kShape =
    "The information cannot be pasted because the Copy area and the paste area are not the same size and shape.\r\n"
    "Try one of the following:\r\n\r\n* Click a single cell, and then paste.\r\n"
    "* Select a rectangle that's the same size and shape, and then paste.";

// "MI 5=12 MI 6=": what the paste puts where; what is refused is its message.
std::string Paste(const std::string& text, const GridSelection& selection, const HiddenRows& hidden = {}) {
  const OperandStore store("K220-22-R1");
  const auto table = ParseClipboard(text);
  if (!table) return std::string(table.error().message);
  const auto placed = PlacePaste(*table, selection, hidden, store);
  if (!placed) return std::string(placed.error().message);
  std::string result;
  for (const CellAssignment& cell : *placed) {
    result += std::to_string(RowOfType(cell.type)) + ":" + std::to_string(cell.address) + "=" + cell.text + " ";
  }
  return result;
}

TEST(Clipboard, PastesInWhichShapeItFits) {
  HiddenRows miHidden;
  miHidden.Set(kMI, true);
  struct {
    const char* text;
    GridSelection selection;
    HiddenRows hidden;
    const char* result;
  } const cases[] = {
      {"7\r\n", {kMI, 6, kMI, 6}, {}, "2:5=7 "},
      {"1\t2\r\n3\t4\r\n", {kMB, 1, kMB, 1}, {}, "1:0=1 1:1=2 2:0=3 2:1=4 "},
      {"1\t2\r\n3\t4\r\n", {kMI, 2, kMB, 1}, {}, "1:0=1 1:1=2 2:0=3 2:1=4 "},
      {"1\r\n2\r\n", {kMB, 1, kMB, 1}, miHidden, "1:0=1 3:0=2 "},
      {"1\r\n2\r\n", {kMB, 1, kMF, 1}, miHidden, "1:0=1 3:0=2 "},
      {"1\r\n2\r\n", {kMB, 1, kMI, 1}, miHidden, kShape},
      {"1\t2\r\n\r\n", {kMB, 1, kMB, 1}, {}, "1:0=1 1:1=2 2:0= 2:1= "},  // an empty row empties its cells
      {"\t2\r\n", {kMI, 1, kMI, 1}, {}, "2:0= 2:1=2 "},
      {"1\t\r\n", {kMF, 24, kMF, 24}, {}, "3:23=1 "},  // an empty text needs no operand
      {"1\t2\r\n", {kMF, 24, kMF, 24}, {}, kNotEnough},
      {"1\t2\t3\r\n4\t5\t6\r\n", {kLastRow, 1, kLastRow, 1}, {}, kNotEnough},
      {"1\r\n", {kMB, 4096, kMB, 4096}, {}, "1:4095=1 "},
      {"1\t2\r\n", {kMB, 4096, kMB, 4096}, {}, kNotEnough},
      {"1\t2\r\n3\t4\r\n5\t6\r\n", {kMB, 1, kMI, 2}, {}, kShape},
      {"1\t2\r\n3\r\n", {kMB, 1, kMB, 1}, {}, kUnknown},
      {"", {kMB, 1, kMB, 1}, {}, "Clipboard is empty."},
      {"5\n6\n", {kMB, 1, kMB, 1}, {}, "1:0=5 2:0=6 "},  // as other programs end rows
      {"5\n\r\n", {kMB, 1, kMB, 1}, {}, "1:0=5\n "},     // one CR LF, and only that ends a row
      {"5", {kMB, 1, kMB, 1}, {}, kUnknown},             // no row at all
      {"5", {kMB, 1, kMI, 1}, {}, kShape},
      {"5\r\n6", {kMB, 1, kMB, 1}, {}, "1:0=5 "},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(::testing::PrintToString(each.text));
    EXPECT_EQ(Paste(each.text, each.selection, each.hidden), each.result);
  }
}

}  // namespace
}  // namespace kv::mdlDataTypesView
