#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/ValueRange.h"

// clang-format off: the tables are laid out by hand
namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;
using enum SizeCode;
using enum FormatCode;

// The lists in the form in which a grid's cell stores the code and shows the text.
TEST(OperandCatalogue, ComboListsPairTheCodeWithTheText) {
  EXPECT_EQ(SizeComboList(MI), "#1;8 BIT|#2;16 BIT|#4;32 BIT");
  EXPECT_EQ(SizeComboList(MB), "#0;1 BIT");
  EXPECT_EQ(FormatComboList(Bit8), "#1;ASCII|#2;BINARY|#4;HEX|#5;DECIMAL");
  EXPECT_EQ(FormatComboList(Bit32), "#1;ASCII|#4;HEX|#5;DECIMAL|#3;UNSIGNED|#6;FLOAT");
}

TEST(RowDisplay, ShowsEverySizeAndFormat) {
  struct Row {
    OperandTypeCode type;
    std::vector<std::string> values;
    SizeCode size;
    FormatCode format;
    std::string text;
  };
  const std::vector<Row> rows = {
      {MI, {"4660", "22136"}, Bit8, Hex, "12 34 56 78"}, {MI, {"4660", "22136"}, Bit16, Hex, "1234 5678"},
      {MI, {"4660", "22136"}, Bit32, Hex, "56781234"},
      {MI, {"1", "2", "3", "4", "5"}, Bit32, Hex, "00040003 00020001 00000005"},  // pairs; the odd one stays
      {MI, {"1", "2", "3", "4"}, Bit32, Decimal, "     262147      131073"},
      {ML, {"305419896"}, Bit8, Hex, "12 34 56 78"}, {ML, {"305419896", "-1"}, Bit16, Hex, "1234 5678 FFFF FFFF"},
      {ML, {"305419896"}, Bit32, Hex, "12345678"}, {MI, {"-1"}, Bit8, Decimal, "255 255"},
      {SI, {"5"}, Bit8, Decimal, "  0   5"}, {XI, {"-32768", "7"}, Bit16, Decimal, "-32768      7"},
      {MI, {"-1", "10"}, Bit16, Unsigned, "     65535         10"},
      {SL, {"-2147483648"}, Bit32, Decimal, "-2147483648"}, {DW, {"4294967295"}, Bit32, Decimal, "         -1"},
      {XDW, {"4294967295"}, Bit32, Unsigned, "4294967295"}, {MI, {"23645"}, Bit8, Binary, "0101 1100 0101 1101"},
      {MB, {"1", "0", "1"}, Bit1, Binary, "1 0 1"}, {MB, {"1", "0", "1"}, Bit8, Hex, "01 00 01"},
      {MB, {"1", "0", "1"}, Bit16, Hex, "0001 0001"},  // filled up to a whole unit
      {MI, {"16961", "66"}, Bit8, Ascii, "ABB"},       // 0x4241, 0x0042
      {MI, {"65", "0", "66"}, Bit16, Ascii, "A"}, {MI, {"65", "256", "66"}, Bit16, Ascii, "A"},
      {MI, {"-1"}, Bit16, Ascii, ""},
      {MI, {"233"}, Bit16, Ascii, "\xC3\xA9"},  // e acute
      {MI, {"16320", "0"}, Bit32, Float, "         1.5 "}, {ML, {"-1064919023"}, Bit32, Float, "-1.234568e-19 "},
      {MI, {"x", "", "7.0"}, Bit16, Hex, "0000 0000 0007"}, {MI, {"1"}, Bit16, FormatCode::None, ""},
      {MI, {"1"}, static_cast<SizeCode>(3), Hex, ""}, {MI, {}, Bit16, Hex, ""},
      {MF, {"1.5", "-2"}, Bit32, Hex, "1.5 -2"}, {TimerPreset, {"00:00:01.00"}, Bit8, Hex, "00:00:01.00"},
      {CounterValue, {"1", "0"}, Bit1, Binary, "1 0"}, {static_cast<OperandTypeCode>(23), {"1"}, Bit16, Hex, ""}};
  for (const Row& row : rows) {
    EXPECT_EQ(DisplayRow(row.type, row.values, row.size, row.format), row.text)
        << "type " << static_cast<int>(row.type) << " size " << static_cast<int>(row.size) << " format "
        << static_cast<int>(row.format);
  }
}

TEST(TimerText, ShowsAndReadsTimes) {
  const std::vector<std::pair<std::int64_t, std::string>> shown = {
      {0, "00:00:00.00"}, {-5, "00:00:00.00"}, {366101, "01:01:01.01"}, {35999999, "99:59:59.99"},
      {36000000, "99:59:59.99"}};
  for (const auto& [hundredths, text] : shown) EXPECT_EQ(TimerText(hundredths), text);

  using Time = std::optional<std::int32_t>;
  const std::vector<std::pair<std::string, Time>> read = {
      {"99:59:59.99", 35999999}, {"01:01:01.01", 366101}, {" 00:00:01.00 ", 100}, {"5.2", 1812000}, {"01:02", 372000},
      {"00:90", 540000}, {"7", 2520000}, {"0:0:0:5", 5}, {"1:2:3.4.5", {}}, {"", {}}, {"1:", {}}, {"1:-2", {}},
      {"1: 2", {}}, {"a", {}}, {"100:00:00.00", {}}, {"99999999999999999999", {}}};
  for (const auto& [text, time] : read) EXPECT_EQ(ParseTimerText(text), time) << text;

  const std::vector<std::pair<std::string, Time>> compact = {
      {"100000", 10000}, {"0", 0}, {"15", {}}, {"-10", {}}, {"1.5", {}}, {"00:00:01.00", 100}, {"", {}}};
  for (const auto& [text, time] : compact) EXPECT_EQ(ParseCompactTimerText(text), time) << text;
}

TEST(TimerText, ReadsCompactTimerWordsByTheirBase) {
  EXPECT_EQ(CompactTimerMilliseconds(100), 1000);
  EXPECT_EQ(CompactTimerMilliseconds(0x8000 + 100), 10000);
  EXPECT_EQ(CompactTimerMilliseconds(0x4000 + 100), 100000);
  EXPECT_EQ(CompactTimerMilliseconds(0xFFFF), 163830000);
}

TEST(ValueRange, RefusesWhatTheOperandCannotHold) {
  struct Row {
    std::vector<OperandTypeCode> types;
    std::vector<std::string> good, bad;
  };
  const std::vector<Row> rows = {
      {{MB, XB}, {"0", "1"}, {"2", "", "01", " 1", "1.0", "-1"}},
      {{MI, XI, DBI}, {"-32768", "32767", "12.0", " +5 ", "1e3"},
       {"32768", "-32769", "1.5", "", "x", "1,5", "0x1", "+-1"}},
      {{ML, XL, CounterPreset, CounterCurrent}, {"-2147483648", "2147483647"}, {"2147483648", "0.5", "1e300", "1e999"}},
      {{DW, XDW}, {"0", "4294967295"}, {"4294967296", "-1", "0.1", "nan", "inf"}},
      {{MF}, {"1.5", "-3e38", "0"}, {"1e39", "nan", "", "1.5x"}},
      {{TimerPreset, TimerCurrent, SB, TimerValue}, {"anything"}, {}}};
  for (const Row& row : rows) {
    for (const OperandTypeCode type : row.types) {
      for (const auto& text : row.good) EXPECT_TRUE(IsValueInRange(type, text)) << static_cast<int>(type) << text;
      for (const auto& text : row.bad) EXPECT_FALSE(IsValueInRange(type, text)) << static_cast<int>(type) << text;
    }
  }
  EXPECT_FALSE(AreValuesInRange(MI, std::vector<std::string>{"1", "x"}));
  EXPECT_EQ(kValueOutOfRangeMessage, "The values you have entered are out of the legal range for this data type.");
}

}  // namespace
}  // namespace kv::mdlDataTypesView
