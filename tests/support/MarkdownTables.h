#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace kv::test {

using Row = std::vector<std::string>;

// The cells of a line "| a | b |"; none of a line that is no row. A "\|" is a bar within a cell.
inline Row CellsOf(const std::string& line) {
  Row cells;
  if (!line.starts_with("|")) return cells;
  std::string cell;
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '|' && line[i - 1] != '\\') {
      const std::size_t first = cell.find_first_not_of(' ');
      cells.push_back(first == std::string::npos ? "" : cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
      cell.clear();
    } else {
      cell += line[i];
    }
  }
  return cells;
}

// The rows below every head of a page of docs whose first cells are these; a failure when there are none.
inline std::vector<Row> RowsBelow(const Row& head, const std::string& name = "controller-protocol.md") {
  std::ifstream page(KV_TEST_DATA "/../docs/" + name);
  std::vector<Row> rows;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    Row cells = CellsOf(line);
    if (cells.empty()) {
      isInside = false;
    } else if (cells.size() >= head.size() && std::equal(head.begin(), head.end(), cells.begin())) {
      isInside = true;
      std::getline(page, line);  // the line below the head
    } else if (isInside) {
      rows.push_back(std::move(cells));
    }
  }
  EXPECT_FALSE(rows.empty()) << "no table with the head " << head.front();
  return rows;
}

// What stands between the first two backquotes of a cell.
inline std::string CodeIn(const std::string& cell) {
  const std::size_t from = cell.find('`') + 1;
  return cell.substr(from, cell.find('`', from) - from);
}

}  // namespace kv::test
