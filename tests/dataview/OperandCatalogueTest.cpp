#include "dataview/OperandCatalogue.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kColour = "K220-22-R1";
constexpr std::string_view kLarge = "K670-67-T40 / K390-29-T40";

TEST(OperandCatalogue, KnowsEveryType) {
  using enum OperandTypeCode;
  const std::set<OperandTypeCode> readOnly = {SB, SI, SL, SDW, Input, Output, TimerValue, CounterValue};
  for (int code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    SCOPED_TRACE(code);
    EXPECT_EQ(TypeFromName(TypeName(type)), type);
    EXPECT_NE(IsWritableType(type), readOnly.contains(type));
    EXPECT_EQ(MaxOperandsPerRequest(type) == 120, IsBitType(type));
    EXPECT_EQ(TypeColour(type), IsWritableType(type) ? 15854029U : 10804728U);
    EXPECT_EQ(SizeComboList(type), IsBitType(type) ? "#0;1 BIT" : "#1;8 BIT|#2;16 BIT|#4;32 BIT");
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
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "TQ45"), 4096);
  EXPECT_EQ(OperandCount(OperandTypeCode::MB, "K2210"), 8192);
  EXPECT_FALSE(IsPastOperandCount({.from = 0, .to = 4096, .type = OperandTypeCode::MB}, kColour));
  EXPECT_TRUE(IsPastOperandCount({.from = 0, .to = 4097, .type = OperandTypeCode::MB}, kColour));
}

}  // namespace
}  // namespace kv::mdlDataTypesView
