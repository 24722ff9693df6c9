#include "dataview/sheets/XlsxWriter.h"

#include <xlsxwriter.h>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "dataview/sheets/DecimalPoint.h"
#include "dataview/sheets/SheetLook.h"
#include "dataview/sheets/XlsxText.h"

namespace kv {
namespace {

struct Formats {
  explicit Formats(lxw_workbook* book) : heading(workbook_add_format(book)), asText(workbook_add_format(book)) {
    format_set_bold(heading);
    format_set_align(heading, LXW_ALIGN_CENTER);
    format_set_num_format_index(asText, 49);  // an edited time stays a text, too
    format_set_align(asText, LXW_ALIGN_RIGHT);
  }
  lxw_format* heading;
  lxw_format* asText;
};

lxw_error WriteCell(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const SheetCell& cell,
                    const Formats& formats) {
  switch (cell.kind) {
    case SheetCell::Kind::Empty:
      return LXW_NO_ERROR;
    case SheetCell::Kind::Number:
      return worksheet_write_number(sheet, row, column, ParseNumber(cell.text).value_or(0),
                                    row == 0 ? formats.heading : nullptr);
    case SheetCell::Kind::Text:
      return worksheet_write_string(sheet, row, column, EscapedText(cell.text).c_str(),
                                    row == 0 ? formats.heading : formats.asText);
  }
  return LXW_NO_ERROR;
}

void SetColumns(lxw_worksheet* sheet, const SheetTable& table) {
  lxw_col_t column = 0;
  for (const std::size_t width : ColumnWidths(table)) {
    worksheet_set_column(sheet, column, column, static_cast<double>(width), nullptr);
    ++column;
  }
}

lxw_error WriteRows(lxw_worksheet* sheet, const SheetTable& table, const Formats& formats) {
  lxw_row_t row = 0;
  for (const auto& cells : table.rows) {
    lxw_col_t column = 0;
    for (const SheetCell& cell : cells) {
      const lxw_error error = WriteCell(sheet, row, column++, cell, formats);
      if (error != LXW_NO_ERROR) return error;
    }
    ++row;
  }
  return LXW_NO_ERROR;
}

lxw_error FillBook(lxw_workbook* book, const SheetTable& table) {
  lxw_error error = workbook_validate_sheet_name(book, table.name.c_str());
  if (error != LXW_NO_ERROR) return error;
  lxw_worksheet* sheet = workbook_add_worksheet(book, table.name.c_str());
  if (sheet == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
  SetColumns(sheet, table);
  error = WriteRows(sheet, table, Formats(book));
  worksheet_freeze_panes(sheet, 1, 1);
  return error;
}

}  // namespace

std::expected<void, std::string> WriteXlsxFile(const std::filesystem::path& file, const SheetTable& table) {
  const DecimalPoint decimalPoint;
  const std::string folder = NarrowName(file.has_parent_path() ? file.parent_path() : ".");
  if (folder.empty()) return std::unexpected("the folder's name has characters that this kind of file does not allow");
  lxw_workbook* book = workbook_new((folder + "/" + Utf8FromPath(file.filename())).c_str());
  if (book == nullptr) return std::unexpected("there is no memory for it");
  ScopeGuard release([book] { lxw_workbook_free(book); });
  lxw_error error = FillBook(book, table);
  if (error == LXW_NO_ERROR) {
    release.Dismiss();  // closing frees it as well
    error = workbook_close(book);
  }
  if (error != LXW_NO_ERROR) return std::unexpected(std::string(lxw_strerror(error)));
  return {};
}

}  // namespace kv
