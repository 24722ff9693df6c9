#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dataview/files/OperandCsv.h"
#include "dataview/files/OperandSheet.h"
#include "dataview/operands/OperandCatalogue.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::mdlDataTypesView {
namespace {

using ::testing::HasSubstr;
using Fields = std::vector<std::string>;
using enum OperandTypeCode;

std::vector<Fields> Lines(std::string_view bytes, char separator) {
  std::vector<Fields> lines;
  const auto records = ReadCsv(bytes, separator);
  if (!records) return {{"fault", std::to_string(records.error().line), records.error().what}};
  for (const CsvRecord& record : *records) lines.push_back(record.fields);
  return lines;
}

TEST(CsvTest, ReadsWhatOtherProgramsWrite) {
  struct Case {
    std::string_view bytes;
    char separator;
    std::vector<Fields> lines;
  };
  const Case cases[] = {
      {"", ',', {}},
      {"a,b\r\n1,2\r\n", ',', {{"a", "b"}, {"1", "2"}}},
      {"a,b\n\n1,2", ',', {{"a", "b"}, {"1", "2"}}},
      {"a,b\r1,2\r", ',', {{"a", "b"}, {"1", "2"}}},
      {"a\t\t", '\t', {{"a", "", ""}}},
      {"\"a,\"\"b\"\"\",c", ',', {{"a,\"b\"", "c"}}},
      {"\"two\r\nlines\",x\r\ny", ',', {{"two\r\nlines", "x"}, {"y"}}},
      {"5\" pipe,x", ',', {{"5\" pipe", "x"}}},
      {"\xEF\xBB\xBF\xC3\xA4,1", ',', {{"\xC3\xA4", "1"}}},
      {"\xC3\xA4,1", ',', {{"\xC3\xA4", "1"}}},    // UTF-8 without a mark, as many programs write it
      {"\xE4\xA7z", '\xA7', {{"\xC3\xA4", "z"}}},  // Windows-1252, as this program writes it
      {"x\xC2\xA7z", '\xA7', {{"x", "z"}}},
      {"a,\"b\r\n1", ',', {{"fault", "1", "a field begins with a quote and has none at its end"}}},
      {"\xFF\xFE\x01",
       ',',
       {{"fault", "0", "its characters take two bytes each (UTF-16); save it as CSV or as UTF-8 text"}}},
      {"\xFE\xFF\x01",
       ',',
       {{"fault", "0", "its characters take two bytes each (UTF-16); save it as CSV or as UTF-8 text"}}},
  };
  for (const Case& c : cases) EXPECT_EQ(Lines(c.bytes, c.separator), c.lines) << c.bytes;
  EXPECT_EQ(Lines("\n\n" + std::string(5000, 'x'), ',').front()[1], "3");
  EXPECT_EQ(Lines(std::string(1'000'001, ','), ',').front()[2], "there are more than a million fields up to here");
}

using Values = std::vector<OperandValue>;

TEST(CsvTest, LinesBelongToTheTypeTheyNameOrToTheirRow) {
  const auto read = ParseOperandCsv(
      "Operand Type,0,1\n"
      "mb, 1 ,0\n"  // 2: in either case, blanks aside
      "\n"          // stands for no row
      ",7\n"        // 4: the second row, MI
      "only\n"      // 5: a single field; stands for MF
      "y,text,5\n"  // 6: no value; stands for ML
      "5,,8\n"      // 7: DW
      "XI,-1\n"     // 8: named
      "XB,,\n"      // 9: no value
      ",9\n",       // 10: the eighth, SI
      ',', CsvForm::Grid);
  ASSERT_TRUE(read) << read.error().what;
  EXPECT_EQ(read->values, (Values{{MB, 0, "1", 2},
                                  {MB, 1, "0", 2},
                                  {MI, 0, "7", 4},
                                  {DW, 0, "", 7},
                                  {DW, 1, "8", 7},
                                  {XI, 0, "-1", 8},
                                  {SI, 0, "9", 10}}));
  EXPECT_EQ(
      read->LeftOutText(),
      "Left out: line 5 (\"only\" is all that it holds), line 6 (\"text\" is no value) and 1 line without values.");

  std::string tooMany = "\nOperand Type,0\n";  // a heading is none of the data wherever it stands
  for (int row = 0; row < kOperandTypeCount + 1; ++row) tooMany += ",1\n";
  const auto past = ParseOperandCsv(tooMany, ',', CsvForm::Grid);
  ASSERT_TRUE(past);
  EXPECT_EQ(past->values.back(), (OperandValue{XDW, 0, "1", 24}));
  EXPECT_EQ(past->LeftOutText(), "Left out: line 25 (it stands behind the last operand type).");
}

TEST(CsvTest, WhatCouldLandAtAnotherOperandIsRefused) {
  const std::tuple<const char*, CsvForm, std::size_t, const char*> cases[] = {
      {"Address,MB,MI\n0,1,-5\n", CsvForm::Grid, 1, "its lines stand for addresses"},
      {"Operand Type,0\nMX,1\n", CsvForm::Grid, 2, "no operand type \"MX\""},
      {"Operand Type,0\nMF;1,5\n", CsvForm::Grid, 2, "the separator with which the file was written"},
      {"Operand Type,0\nMI,1\nmi,2\n", CsvForm::Grid, 3, "MI is in line 2 too"},
      {"operand type,address,value\nMI,0,31,5\n", CsvForm::Grid, 2, "three fields were expected"},
      {"MI,0,31\nMI,0,32\n", CsvForm::Values, 2, "MI 0 is in line 1 too"},
      {"Operand Type,0,1\nMI,7\nMI,8\n", CsvForm::Values, 3, "MI is in line 2 too"},
  };
  for (const auto& [bytes, otherwise, line, why] : cases) {
    const auto read = ParseOperandCsv(bytes, ',', otherwise);
    ASSERT_FALSE(read) << bytes;
    EXPECT_EQ(read.error().line, line) << bytes;
    EXPECT_THAT(read.error().what, HasSubstr(why));
  }
}

TEST(CsvTest, TellsWhatEachDamageIs) {
  for (const std::string_view good :
       {"\xEF\xBB\xBFOperand Type,0,\"1\"\r\nmb, 1 ,0\r\n,7\n\"TIMER PRESET\",\"a\"\"b\x7F\",1:30\nMF,1e3,nan",
        "Operand Type,Address,Value\nMI,0,-5\nML,10,6\r\n"}) {
    test::ExpectAsRecorded([&] {
      return test::ToldOfDamage(std::string(good), [](const std::string& bytes) {
        const auto read = ParseOperandCsv(bytes, ',', CsvForm::Values);
        if (!read) return read.error().Text();
        std::string all = read->LeftOutText();
        for (const OperandValue& each : read->values)
          all += "|" + std::string(mdlDataTypesView::TypeName(each.type)) + " " + std::to_string(each.address) + "=" +
                 each.text + " in " + std::to_string(each.line);
        return all;
      });
    });
  }
}

SheetTable Sheet(std::initializer_list<std::vector<const char*>> rows) {
  SheetTable sheet;
  for (const auto& texts : rows) {
    auto& row = sheet.rows.emplace_back();
    for (const char* text : texts) row.push_back(CellOf(text));
  }
  return sheet;
}

TEST(OperandSheetTest, TheTemplateThatShipsIsTheOneForTheseTypes) {
  const TemporaryFolder folder;
  const auto shipped = std::filesystem::path(KV_TEST_DATA) / "../runtime/Templates/DataTypes_Tmp";
  const auto fresh = folder.Path() / "DataTypes_Tmp";
  ASSERT_TRUE(WriteSheet(fresh, OperandSheetTemplate()));
  EXPECT_TRUE(TemporaryFolder::Content(shipped) == TemporaryFolder::Content(fresh));
}

TEST(OperandSheetTest, ColumnsAndRowsMayStandInAnyOrder) {
  const auto read = ParseOperandSheet(Sheet({{"Address", "MI", "", "MB"}, {"7", "-5"}, {}, {"3", "", "", "1"}}));
  ASSERT_TRUE(read) << read.error().Text();
  EXPECT_EQ(*read,
            (std::vector<SheetValue>{{MI, 7, "-5", 1, 1}, {MB, 7, "", 1, 3}, {MI, 3, "", 3, 1}, {MB, 3, "1", 3, 3}}));
}

TEST(OperandSheetTest, RefusesWhatCouldLandInTheWrongPlace) {
  const std::pair<SheetTable, const char*> cases[] = {
      {{}, "cell A1: the heading \"Address\" was expected"},
      {Sheet({{"MB", "MI"}}), "cell A1: the heading \"Address\" was expected"},
      {Sheet({{"Address"}}), "cell B1: the name of an operand type was expected"},
      {Sheet({{"Address", "MB"}, {"65536", "1"}}), "cell A2: the address of an operand was expected"},
      {Sheet({{"Address", "MB", "Pump"}}), "cell C1: no operand type has this name"},
      {Sheet({{"Address", "MB", "MB"}}), "cell C1: this operand type is there twice"},
      {Sheet({{"Address", "MB"}, {"", "1"}}), "cell A2: the address of an operand was expected"},
      {Sheet({{"Address", "MB"}, {"-1", "1"}}), "cell A2: the address of an operand was expected"},
      {Sheet({{"Address", "MB"}, {"1", "1"}, {"1", "0"}}), "cell A3: the same address is in A2"},
      {Sheet({{"Address", "MB"}, {"1", "1", "5"}}), "cell C2: its column has no heading"},
  };
  for (const auto& [sheet, why] : cases) {
    const auto read = ParseOperandSheet(sheet);
    ASSERT_FALSE(read) << why;
    EXPECT_THAT(read.error().place + ": " + read.error().what, HasSubstr(why));
  }
}

}  // namespace
}  // namespace kv::mdlDataTypesView
