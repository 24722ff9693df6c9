#include "dataview/sheets/SheetFile.h"

#ifndef _WIN32
#include <freexl.h>  // stands on a library that Windows lacks
#endif
#include <gtest/gtest.h>

#include <algorithm>

#include "base/ScopeGuard.h"
#include "dataview/sheets/CompoundFile.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using Kind = SheetCell::Kind;

// Of each text whether it is a number for an office program.
TEST(SheetTableTest, ANumberIsWhatReadsBackTheSame) {
  const std::pair<Kind, std::vector<const char*>> kinds[] = {
      {Kind::Empty, {""}},
      {Kind::Number,
       {"0", "-1", "-2147483648", "4294967295", "0.1", "-0.5", "3.141593", "1e-05", "1.234568e+07", "3.402823e+38"}},
      {Kind::Text, {"00:01:02.50", "007", "+5", " 5", "5 ", "1e3", "5.", ".5", "nan", "inf", "0x10", "1,5", "A"}}};
  for (const auto& [kind, texts] : kinds) {
    for (const char* text : texts) {
      const SheetCell cell = CellOf(text);
      EXPECT_EQ(cell.kind, kind) << text;
      EXPECT_EQ(cell.text, text);
      if (kind != Kind::Number) continue;
      const double value = ParseNumber(text).value();
      EXPECT_TRUE(NumberText(value) == text || FloatNumberText(value) == text) << text;
    }
  }
}

// Rows with a bit of everything, ragged, with rows and cells that are empty.
SheetTable Mixture() {
  SheetTable table{.name = "Data Types"};
  for (const auto& texts : std::initializer_list<std::vector<const char*>>{
           {"Address", "MB", "TIMER PRESET"},
           {"0", "-2147483648", "00:01:02.50"},
           {},
           {"2", "", "", "4294967295", "0.1", "-1e-30"},
           {"3", "\u03A9 \U0001F600 <&>\"", "_x0041_", " blanks ", "0.1 "},
       }) {
    auto& row = table.rows.emplace_back();
    std::ranges::transform(texts, std::back_inserter(row), CellOf);
  }
  return table;
}

// So much that texts take several records, and the sectors' table one of its own.
SheetTable Large() {
  constexpr std::size_t kRows = 21000;
  SheetTable table = Mixture();
  table.rows.resize(kRows);
  for (std::size_t row = 10; row < kRows; ++row) {
    for (std::size_t column = 0; column < 19; ++column) table.rows[row].push_back(CellOf(std::to_string(row * column)));
    table.rows[row].push_back(CellOf("text " + std::to_string(row) + (row % 3 == 0 ? "\u03A9" : "\u00E4")));
  }
  return table;
}

TEST(SheetFileTest, BothKindsOfFilesKeepATable) {
  const TemporaryFolder folder;
  const std::pair<const char*, SheetTable> files[] = {
      {"a.xls", Mixture()},
      {"large.xls", Large()},
      {"a.XLSX", Mixture()},
      {"no extension", Mixture()},
  };
  for (const auto& [name, table] : files) {
    const auto file = folder.Path() / name;
    const auto written = WriteSheet(file, table);
    ASSERT_TRUE(written) << written.error().Text();
    EXPECT_EQ(TemporaryFolder::Content(file).starts_with("PK"), std::string_view(name) == "a.XLSX");
    const auto read = ReadSheet(file);
    ASSERT_TRUE(read) << read.error().Text();
    EXPECT_EQ(read->name, "Data Types");
    EXPECT_TRUE(read->rows == table.rows) << name;
  }
  EXPECT_EQ(folder.EntryCount(), 4);  // no temporary file stays
  test::ExpectAsRecorded([&] {
    const std::string bytes = TemporaryFolder::Content(folder.Path() / "a.xls");
    std::string shown;
    for (std::size_t at = 0; at < bytes.size(); at += 64) shown += test::Shown(bytes.substr(at, 64)) + "\n";
    return shown;
  });
}

// At each size where one more sector is needed, of the stream, of the table of sectors, or of the table of that.
TEST(CompoundFileTest, IsTheSameAtEachEdge) {
  for (const std::size_t sectors : {0, 8, 126, 253, 13842, 29970}) {
    for (const std::size_t size : {sectors * 512, sectors * 512 + 1})
      test::ExpectAsRecorded([&] { return test::Shown(CompoundFile("Workbook", std::string(size, 'x'))) + "\n"; });
  }
}

#ifndef _WIN32
// Office programs are not there when tests run; this library reads .xls with code of its own.
TEST(FreexlTest, FindsTheSameInAnXlsFile) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "a.xls";
  const SheetTable table = Large();
  ASSERT_TRUE(WriteSheet(file, table));
  const void* book = nullptr;
  ASSERT_EQ(freexl_open(file.string().c_str(), &book), FREEXL_OK);
  const ScopeGuard close([&] { freexl_close(book); });
  ASSERT_EQ(freexl_select_active_worksheet(book, 0), FREEXL_OK);
  std::size_t different = 0;
  for (std::size_t row = 0; row < table.rows.size(); ++row) {
    for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
      FreeXL_CellValue value;
      ASSERT_EQ(freexl_get_cell_value(book, static_cast<unsigned>(row), static_cast<unsigned short>(column), &value),
                0);
      const SheetCell& cell = table.rows[row][column];
      const bool isSame = value.type == FREEXL_CELL_DOUBLE     ? value.value.double_value == ParseNumber(cell.text)
                          : value.type == FREEXL_CELL_SST_TEXT ? value.value.text_value == cell.text
                                                               : cell.kind == Kind::Empty;
      different += isSame ? 0 : 1;
    }
  }
  EXPECT_EQ(different, 0U);
}
#endif

TEST(SheetFileTest, TakesTheValuesOfFormulasBooleansDatesAndErrorsAsOfficeProgramsSaveThem) {
  for (const char* name : {"office.xls", "office.xlsx"}) {
    const auto read = ReadSheet(std::filesystem::path(KV_TEST_DATA) / "sheets/data" / name);
    ASSERT_TRUE(read) << read.error().Text();
    EXPECT_EQ(read->name, "Odd");
    std::vector<std::string> values;
    for (const auto& row : read->rows) {
      for (std::size_t i = 1; i < row.size(); ++i) values.push_back(row[i].text);
      if (row.size() == 1) values.push_back("no " + row.front().text);
    }
    const std::vector<std::string> expected = {
        "Value \u03A9", "42.5",       "ab",  "no error", "1",         "1", "43864", "0.5", "1", "2",
        "-2147483648",  "4294967295", "0.1", "1e-05",    "1234567.25"};
    EXPECT_EQ(values, expected) << name;
  }
  std::string untrue = TemporaryFolder::Content(std::filesystem::path(KV_TEST_DATA) / "sheets/data/office.xls");
  untrue.at(untrue.find(std::string("\1\0\1\0\0\0\xFF\xFF", 8)) + 2) = 0;
  const TemporaryFolder folder;
  const auto read = ReadSheet(folder.Put("untrue.xls", untrue));
  EXPECT_EQ(std::ranges::count(read.value().rows[5], "0", &SheetCell::text), 1);
}

}  // namespace
}  // namespace kv
