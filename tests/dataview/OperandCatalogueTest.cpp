#include "dataview/OperandCatalogue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kColour = "K220-22-R1";
constexpr std::string_view kLarge = "K670-67-T40 / K390-29-T40";
constexpr std::string_view kCompact = "Q50";

struct Row {
  int code;
  std::string name;
  int most;  // operands in one request
  std::vector<int> counts;
  std::vector<int> legacyCounts;
  bool writable;
  int driverTypeCode;
};

const std::vector<Row> kRows = {
    {1, "MB", 120, {4096, 8192, 256}, {1024, 4096, 256}, true, 1},
    {2, "MI", 60, {2048, 4096, 256}, {1024, 2048, 256}, true, 3},
    {3, "MF", 30, {24, 64, 0}, {0, 24, 0}, true, 7},
    {4, "ML", 30, {256, 512, 0}, {256, 256, 0}, true, 5},
    {5, "DW", 30, {64, 256, 0}, {64, 64, 0}, true, 16},
    {6, "DBI", 60, {0, 0, 1024}, {0, 0, 1024}, true, 0},
    {7, "SB", 120, {512, 512, 256}, {512, 512, 256}, false, 2},
    {8, "SI", 60, {512, 512, 256}, {512, 512, 256}, false, 4},
    {9, "SL", 30, {56, 56, 0}, {56, 56, 0}, false, 6},
    {10, "SDW", 30, {64, 64, 0}, {64, 64, 0}, false, 36},
    {11, "INPUT", 120, {544, 544, 256}, {544, 544, 256}, false, 9},
    {12, "OUTPUT", 120, {544, 544, 256}, {544, 544, 256}, false, 10},
    {13, "TIMER PRESET", 30, {192, 384, 64}, {128, 192, 64}, true, 11},
    {14, "TIMER CURRENT", 30, {192, 384, 64}, {128, 192, 64}, true, 11},
    {15, "TIMER VALUE", 30, {192, 384, 64}, {128, 192, 64}, false, 11},
    {16, "COUNTER PRESET", 60, {24, 32, 0}, {0, 24, 0}, true, 12},
    {17, "COUNTER CURRENT", 60, {24, 32, 0}, {0, 24, 0}, true, 12},
    {18, "COUNTER VALUE", 60, {24, 32, 0}, {0, 24, 0}, false, 12},
    {19, "XB", 120, {1024, 1024, 0}, {0, 0, 0}, true, 64},
    {20, "XI", 60, {512, 512, 0}, {0, 0, 0}, true, 65},
    {21, "XL", 30, {256, 256, 0}, {0, 0, 0}, true, 66},
    {22, "XDW", 30, {64, 64, 0}, {0, 0, 0}, true, 67},
};

TEST(OperandCatalogue, KnowsEveryType) {
  for (const Row& row : kRows) {
    const auto type = static_cast<OperandTypeCode>(row.code);
    SCOPED_TRACE(row.name);
    EXPECT_EQ(TypeName(type), row.name);
    EXPECT_EQ(TypeFromName(row.name), type);
    EXPECT_EQ(MaxOperandsPerRequest(type), row.most);
    EXPECT_EQ(IsBitType(type), row.most == 120);
    EXPECT_EQ(DriverTypeCode(type), row.driverTypeCode);
    EXPECT_EQ(IsWritableType(type), row.writable);
    EXPECT_EQ(TypeColour(type), row.writable ? 15854029U : 10804728U);
    EXPECT_EQ(SizeComboList(type), row.most == 120 ? "#0;1 BIT" : "#1;8 BIT|#2;16 BIT|#4;32 BIT");
    const std::vector<int> counts = {OperandCount(type, kColour), OperandCount(type, kLarge),
                                     OperandCount(type, kCompact)};
    EXPECT_EQ(counts, row.counts);
    const std::vector<int> legacy = {LegacyOsOperandCount(type, kColour), LegacyOsOperandCount(type, kLarge),
                                     LegacyOsOperandCount(type, kCompact)};
    EXPECT_EQ(legacy, row.legacyCounts);
  }
}

TEST(OperandCatalogue, HasNothingForACodeThatIsNoType) {
  for (const int code : {0, 23, -1}) {
    const auto type = static_cast<OperandTypeCode>(code);
    EXPECT_EQ(TypeName(type), "");
    EXPECT_EQ(OperandCount(type, kColour) + LegacyOsOperandCount(type, kLarge) + MaxOperandsPerRequest(type), 0);
    EXPECT_FALSE(IsWritableType(type) || IsBitType(type));
    EXPECT_EQ(SizeComboList(type), "");
  }
  for (const char* name : {"", "mb", "TIMER_PRESET", "TIMER", "M-B"}) EXPECT_FALSE(TypeFromName(name)) << name;
  EXPECT_EQ(TypeFromName("COUNTER-CURRENT"), OperandTypeCode::CounterCurrent);
}

TEST(OperandCatalogue, OffersFormatsBySize) {
  const std::vector<std::tuple<int, std::string, std::string>> rows = {
      {0, "1 BIT", "#2;BINARY"},
      {1, "8 BIT", "#1;ASCII|#2;BINARY|#4;HEX|#5;DECIMAL"},
      {2, "16 BIT", "#1;ASCII|#4;HEX|#5;DECIMAL|#3;UNSIGNED"},
      {4, "32 BIT", "#1;ASCII|#4;HEX|#5;DECIMAL|#3;UNSIGNED|#6;FLOAT"},
      {3, "", ""},
      {5, "", ""}};
  for (const auto& [code, name, list] : rows) {
    EXPECT_EQ(SizeName(static_cast<SizeCode>(code)), name);
    EXPECT_EQ(FormatComboList(static_cast<SizeCode>(code)), list) << name;
  }
  for (const int code : {0, 7}) EXPECT_EQ(FormatName(static_cast<FormatCode>(code)), "");
}

TEST(OperandCatalogue, PutsModelsIntoTheGroupsOfTheLimits) {
  EXPECT_EQ(OperandCount(OperandTypeCode::DBI, "AurexQ50"), 1024);
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "Q50Net"), 256);
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "Q51"), 4096);
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "TQ45"), 4096);
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "K2210"), 8192);
  EXPECT_FALSE(IsPastOperandCount({.from = 0, .to = 4096, .type = OperandTypeCode::MB}, kColour));
  EXPECT_TRUE(IsPastOperandCount({.from = 0, .to = 4097, .type = OperandTypeCode::MB}, kColour));
}

}  // namespace
}  // namespace kv::mdlDataTypesView
