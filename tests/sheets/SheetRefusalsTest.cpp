#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "dataview/sheets/SheetFile.h"
#include "tests/sheets/StoredZip.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using test::StoredZip;
using test::Workbook;
using ::testing::HasSubstr;

std::string Why(const std::expected<SheetTable, SheetError>& read) {
  return read ? "it was read" : read.error().Text();
}

std::vector<std::string> Texts(const SheetTable& table) {
  std::vector<std::string> texts;
  for (const auto& row : table.rows) {
    for (const auto& cell : row) texts.push_back(cell.text);
  }
  return texts;
}

TEST(SheetRefusalsTest, XlsxCellsInAllTheirSpellings) {
  const auto read = ReadSheetBytes(Workbook("<row r=\"1\"><c t=\"s\"><v>1</v></c><c "
                                            "t=\"inlineStr\"><is><t>in</t></is></c><c r=\"D1\"><v>1E3</v></c></row>"
                                            "<row><c t=\"b\"><v>1</v></c><c t=\"str\"><v>a_x0041__y0041__x00</v></c><c "
                                            "t=\"e\"><v>#N/A</v></c><c><f>1</f></c></row>"),
                                   "x");
  ASSERT_TRUE(read) << read.error().Text();
  EXPECT_THAT(Texts(*read), ::testing::ElementsAre("one", "in", "", "1000", "1", "aA_y0041__x00"));
}

TEST(SheetRefusalsTest, TellWhatEachDamageIs) {
  const std::string rows =
      "<row r=\"2\"><c t=\"s\"><v>1</v></c><c r=\"D2\" t=\"b\"><v>1</v></c></row><row><c><v>-1.5</v></c></row>";
  const std::string office = TemporaryFolder::Content(KV_TEST_DATA "/sheets/data/office.xls");
  const auto told = [](const std::string& bytes) {
    const auto read = ReadSheetBytes(bytes, "x");
    if (!read) return read.error().place.contains(".xml, offset") ? "no XML" : read.error().Text();
    std::string all = read->name;
    for (const auto& row : read->rows) {
      for (const SheetCell& cell : row) all += "|" + std::to_string(static_cast<int>(cell.kind)) + cell.text;
      all += "/";
    }
    return all;
  };
  test::ExpectAsRecorded([&] { return test::ToldOfDamage(office, told); });
  test::ExpectAsRecorded(
      [&] { return test::ToldOfDamage(rows, [&](const std::string& xml) { return told(Workbook(xml)); }); });
}

TEST(SheetRefusalsTest, NameWhatIsWrongInAnXlsxFile) {
  const std::string manyRows = [] {
    std::string rows;
    for (int row = 1; row <= 4000; ++row)
      rows += "<row r=\"" + std::to_string(row) + "\"><c r=\"IV" + std::to_string(row) + "\"><v>1</v></c></row>";
    return rows;
  }();
  const std::pair<std::string, const char*> cases[] = {
      {Workbook("<row><c t=\"s\"><v>2</v></c></row>"), "s.xml, cell A1: it names a text that is not there"},
      {Workbook("<row><c/><c><v>12,5</v></c></row>"), "cell B1: a number was expected"},
      {Workbook("<row><c r=\"1A\"><v>1</v></c></row>"), "\"1A\" is no place of a cell"},
      {Workbook("<row><c r=\"IW1\"><v>1</v></c></row>"), "cell IW1: it lies past"},
      {Workbook("<row r=\"65537\"><c><v>1</v></c></row>"), "cell A65537: it lies past"},
      {Workbook("<row><c t=\"str\"><v>" + std::string(4001, 'x') + "</v></c></row>"), "cell A1: its text is longer"},
      {Workbook(manyRows), "more than a million cells"},
      {Workbook("<row><c><v>1</row>"), "s.xml, offset"},
      {Workbook(std::string(std::size_t{25} << 20, ' ')), "larger than 24 MB"},
      {StoredZip({{"xl/workbook.xml", "<workbook><sheets/></workbook>"}}), "it has no sheet"},
      {StoredZip({{"word/document.xml", "<a/>"}}), "xl/workbook.xml: the file is damaged or protected"},
      {"Address;MB\r\n0;1\r\n", "neither an .xls nor an .xlsx"},
      {"", "neither an .xls nor an .xlsx"},
  };
  for (const auto& [content, why] : cases) EXPECT_THAT(Why(ReadSheetBytes(content, "x")), HasSubstr(why));
}

TEST(SheetRefusalsTest, WhatASheetCannotHoldIsNotWritten) {
  const TemporaryFolder folder;
  const auto row = [](std::size_t columns) { return std::vector<SheetCell>(columns, CellOf("1")); };
  const std::pair<SheetTable, const char*> cases[] = {
      {{.rows = {row(257)}}, "65536 rows and 256 columns"},
      {{.rows = std::vector(65537, row(1))}, "65536 rows and 256 columns"},
      {{.name = "a/b"}, "cannot be the name"},
      {{.name = std::string(32, 'x')}, "cannot be the name"},
      {{.rows = {{CellOf("a"), CellOf("\xFF")}}}, "cell B1: the text is not UTF-8"},
      {{.rows = {{CellOf(std::string(4001, 'a'))}}}, "cell A1: the text is longer"},
  };
  for (const auto& [table, why] : cases) {
    for (const char* name : {"a.xls", "a.xlsx"}) {
      const auto written = WriteSheet(folder.Path() / name, table);
      ASSERT_FALSE(written) << why;
      EXPECT_THAT(written.error().Text(), HasSubstr(why));
    }
  }
  EXPECT_EQ(folder.EntryCount(), 0);
  for (const char* name : {"gone/a.xls", "gone/a.xlsx"}) {
    const auto written = WriteSheet(folder.Path() / name, {.rows = {row(1)}});
    ASSERT_FALSE(written);
    EXPECT_THAT(written.error().Text(), HasSubstr("cannot be saved"));
  }
}

}  // namespace
}  // namespace kv
