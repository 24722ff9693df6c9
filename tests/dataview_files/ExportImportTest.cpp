#include "dataview/files/ExportImport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dataview/GridSelection.h"
#include "dataview/files/OperandSheet.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::mdlDataTypesView {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using enum OperandTypeCode;

constexpr const char* kModel = "K220-22-R1";

struct Fixture {
  Fixture() {
    std::filesystem::create_directory(paths.Templates());
    EXPECT_TRUE(WriteSheet(paths.Templates() / "DataTypes_Tmp", OperandSheetTemplate()));
    store.Edit(MB, 4095, "1");
    store.Edit(MI, 0, "-32768");
    store.Edit(MI, 2, "7");
    store.Edit(MF, 1, "1.5e-10");
    store.Edit(DW, 0, "4294967295");
    store.SetRead({0, 0, SI}, std::vector<std::string>{"5"}, Instant());
    store.Edit(TimerPreset, 3, "00:00:01.50");
  }

  TemporaryFolder folder;
  ProgramPaths paths{folder.Path()};
  OperandStore store{kModel};
};

std::string TextsOf(const std::vector<CellAssignment>& cells) {
  std::string texts;
  for (const CellAssignment& cell : cells) {
    texts += std::to_string(RowOfType(cell.type)) + ":" + std::to_string(cell.address) + "=" + cell.text + " ";
  }
  return texts;
}

TEST(ExportImport, BringsAllValuesBackWithAnySeparator) {
  constexpr const char* kAll = "1:4095=1 2:0=-32768 2:2=7 3:1=1.5e-10 5:0=4294967295 8:0=5 13:3=00:00:01.50 ";
  Fixture fixture;
  const OperandStore empty(kModel);
  for (const char separator : {',', '.', '1', '\xFC'}) {
    const auto file = fixture.folder.Path() / "values.csv";
    ASSERT_TRUE(ExportCsv(file, fixture.store, separator));
    const auto imported = ImportCsv(file, empty, separator);
    ASSERT_TRUE(imported) << separator << imported.error().reason;
    EXPECT_EQ(TextsOf(imported->cells), kAll) << separator;
    EXPECT_THAT(ImportCsv(file, fixture.store, separator)->cells, IsEmpty());  // they are there already
  }
  for (const char* name : {"values.xls", "values.xlsx"}) {
    const auto file = fixture.folder.Path() / name;
    ASSERT_TRUE(ExportSpreadsheet(fixture.paths, file, fixture.store));
    auto imported = ImportSpreadsheet(file, empty);
    ASSERT_TRUE(imported) << imported.error().reason;
    std::ranges::stable_sort(imported->cells, {}, &CellAssignment::type);
    EXPECT_EQ(TextsOf(imported->cells), kAll) << name;
    EXPECT_THAT(ImportSpreadsheet(file, fixture.store)->cells, IsEmpty());
  }
}

// Office programs keep times as parts of a day; read as text, "1" is an hour and "0.5" five minutes.
TEST(ExportImport, TakesNoNumberForATime) {
  Fixture fixture;
  const OperandStore compact("Q50");
  const auto whyNot = [](const auto& imported) { return imported ? std::string() : imported.error().reason; };
  const auto sheet = fixture.folder.Path() / "t.xls";
  for (const std::string text : {"1", "0.5", "7", "0", "1:30"}) {
    const bool isTaken = text == "0" || text == "1:30";
    const auto csv = ImportCsv(fixture.folder.Put("t.csv", "\nTIMER PRESET," + text), fixture.store, ',');
    EXPECT_EQ(csv.has_value(), isTaken) << text;
    EXPECT_THAT(whyNot(csv), HasSubstr(isTaken ? "" : "line 2: \"" + text + "\" may be a number of days"));
    SheetTable table;
    table.rows = {{CellOf("Address"), CellOf("TIMER CURRENT")}, {CellOf("0"), CellOf(text)}};
    ASSERT_TRUE(WriteSheet(sheet, table));
    EXPECT_THAT(whyNot(ImportSpreadsheet(sheet, fixture.store)), HasSubstr(isTaken ? "" : "cell B2: \"" + text));
    EXPECT_TRUE(ImportSpreadsheet(sheet, compact)) << "milliseconds";
  }
}

TEST(ExportImport, RefusesAFileAsAWhole) {
  Fixture fixture;
  const std::pair<const char*, const char*> cases[] = {
      {"", "no line holds values"},
      {"Operand Type;0\r\nMI;1\r\n", "is it the separator"},
      {"Operand Type,0\r\nMI,1\r\nMF,,,,,,,,,,,,,,,,,,,,,,,,,5\r\n", "line 3"},
  };
  for (const auto& [content, reason] : cases) {
    const auto imported = ImportCsv(fixture.folder.Put("bad.csv", content), fixture.store, ',');
    ASSERT_FALSE(imported) << content;
    EXPECT_EQ(imported.error().message, "The CSV file you have selected cannot be imported.");
    EXPECT_THAT(imported.error().reason, AllOf(HasSubstr("bad.csv"), HasSubstr(reason)));
  }
  EXPECT_FALSE(ImportCsv(fixture.folder.Path() / "none.csv", fixture.store, ','));

  const auto wide = fixture.folder.Path() / "wide.xls";
  OperandStore large("K670");
  large.Edit(MI, 4095, "1");
  ASSERT_TRUE(ExportSpreadsheet(fixture.paths, wide, large));
  const auto imported = ImportSpreadsheet(wide, fixture.store);
  ASSERT_FALSE(imported);
  EXPECT_EQ(imported.error().message, "The Excel file you have selected cannot be imported.");
  EXPECT_THAT(imported.error().reason, HasSubstr("cell C4097: there is no MI 4095 on K220-22-R1"));
}

TEST(ExportImport, SaysWhatCouldNotBeWritten) {
  Fixture fixture;
  const auto csv = ExportCsv(fixture.folder.Path() / "none" / "values.csv", fixture.store, ',');
  ASSERT_FALSE(csv);
  EXPECT_EQ(csv.error().message, "The CSV file you have selected cannot support the exported values.");
  EXPECT_THAT(csv.error().reason, HasSubstr("values.csv"));

  std::filesystem::remove(fixture.paths.Templates() / "DataTypes_Tmp");
  const auto chosen = fixture.folder.Put("values.xls", "before");
  const auto sheet = ExportSpreadsheet(fixture.paths, chosen, fixture.store);
  ASSERT_FALSE(sheet);
  EXPECT_EQ(sheet.error().message, "The Excel file you have selected cannot support the exported values.");
  EXPECT_THAT(sheet.error().reason, HasSubstr("DataTypes_Tmp"));
  EXPECT_EQ(TemporaryFolder::Content(chosen), "before");
}

}  // namespace
}  // namespace kv::mdlDataTypesView
