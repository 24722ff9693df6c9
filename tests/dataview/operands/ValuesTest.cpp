#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RowDisplay.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/ValueRange.h"

namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;
using enum SizeCode;
using enum FormatCode;
using Types = std::vector<OperandTypeCode>;
using Texts = std::vector<std::string>;

TEST(RowDisplay, ShowsEverySizeAndFormat) {
  const std::tuple<OperandTypeCode, Texts, SizeCode, FormatCode, std::string> rows[] = {
      {MI, {"4660", "22136"}, Bit8, Hex, "12 34 56 78"},
      {MI, {"4660", "22136"}, Bit16, Hex, "1234 5678"},
      {MI, {"1", "2", "3", "4", "5"}, Bit32, Hex, "00040003 00020001 00000005"},  // pairs; the odd one stays
      {MI, {"1", "2", "3", "4"}, Bit32, Decimal, "     262147      131073"},
      {ML, {"305419896"}, Bit8, Hex, "12 34 56 78"},
      {ML, {"305419896", "-1"}, Bit16, Hex, "1234 5678 FFFF FFFF"},
      {ML, {"305419896"}, Bit32, Hex, "12345678"},
      {SI, {"-1", "5"}, Bit8, Decimal, "255 255   0   5"},
      {XI, {"-32768", "7"}, Bit16, Decimal, "-32768      7"},
      {MI, {"-1", "10"}, Bit16, Unsigned, "     65535         10"},
      {SL, {"-2147483648"}, Bit32, Decimal, "-2147483648"},
      {DW, {"4294967295"}, Bit32, Decimal, "         -1"},
      {XDW, {"4294967295"}, Bit32, Unsigned, "4294967295"},
      {MI, {"23645"}, Bit8, Binary, "0101 1100 0101 1101"},
      {MB, {"1", "0", "1"}, Bit1, Binary, "1 0 1"},
      {MB, {"1", "0", "1"}, Bit8, Hex, "01 00 01"},
      {MB, {"1", "0", "1"}, Bit16, Hex, "0001 0001"},  // filled up to a whole unit
      {MI, {"16961", "66"}, Bit8, Ascii, "ABB"},       // 0x4241, 0x0042
      {MI, {"65", "0", "66"}, Bit16, Ascii, "A"},
      {MI, {"65", "256", "66"}, Bit16, Ascii, "A"},
      {MI, {"233"}, Bit16, Ascii, "\xC3\xA9"},  // e acute
      {MI, {"16320", "0"}, Bit32, Float, "         1.5 "},
      {ML, {"-1064919023"}, Bit32, Float, "-1.234568e-19 "},
      {MI, {"x", "", "7.0"}, Bit16, Hex, "0000 0000 0007"},
      {MI, {"1"}, Bit16, FormatCode::None, ""},
      {MI, {"1"}, static_cast<SizeCode>(3), Hex, ""},
      {MF, {"1.5", "-2"}, Bit32, Hex, "1.5 -2"},
      {TimerPreset, {"00:00:01.00"}, Bit8, Hex, "00:00:01.00"},
      {CounterValue, {"1", "0"}, Bit1, Binary, "1 0"},
      {static_cast<OperandTypeCode>(23), {"1"}, Bit16, Hex, ""},
  };
  for (const auto& [type, values, size, format, text] : rows) {
    EXPECT_EQ(DisplayRow(type, values, size, format), text) << TypeName(type) << SizeName(size) << FormatName(format);
  }
  for (const OperandTypeCode bits : {MB, XB, SB, Input, Output}) {
    EXPECT_EQ(DisplayRow(bits, Texts{"1", "0"}, Bit8, Hex), "01 00") << TypeName(bits);
  }
  for (const OperandTypeCode texts :
       {TimerPreset, TimerCurrent, TimerValue, CounterPreset, CounterCurrent, CounterValue}) {
    EXPECT_EQ(DisplayRow(texts, Texts{"1", "0"}, Bit8, Hex), "1 0") << TypeName(texts);
  }
  EXPECT_EQ(SizeComboList(MI), "#1;8 BIT|#2;16 BIT|#4;32 BIT");
  EXPECT_EQ(FormatComboList(Bit1), "#2;BINARY");
}

TEST(TimerText, ShowsAndReadsTimes) {
  for (const std::int64_t early : {0, -5}) EXPECT_EQ(TimerText(early), "00:00:00.00");
  for (const std::int64_t late : {35999999, 36000000}) EXPECT_EQ(TimerText(late), "99:59:59.99");
  EXPECT_EQ(TimerText(366101), "01:01:01.01");

  const std::pair<std::string, std::int32_t> read[] = {
      {"99:59:59.99", 35999999}, {" 00:00:01.00 ", 100}, {"5.2", 1812000}, {"01:02", 372000},
      {"00:90", 540000},         {"7", 2520000},         {"0:0:0:5", 5},
  };
  for (const auto& [text, time] : read) EXPECT_EQ(ParseTimerText(text), time) << text;
  for (const char* bad : {"1:2:3.4.5", "", "1:", "1:-2", "1: 2", "a", "100:00:00.00", "99999999999999999999"}) {
    EXPECT_EQ(ParseTimerText(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ParseCompactTimerText("100000"), 10000);
  EXPECT_EQ(ParseCompactTimerText("00:00:01.00"), 100);
  for (const char* bad : {"15", "-10", "1.5", ""}) EXPECT_EQ(ParseCompactTimerText(bad), std::nullopt) << bad;
  EXPECT_EQ(CompactTimerMilliseconds(0x8000 + 100), 10000);
  EXPECT_EQ(CompactTimerMilliseconds(0x4000 + 100), 100000);
  EXPECT_EQ(CompactTimerMilliseconds(0xFFFF), 163830000);
}

TEST(ValueRange, RefusesWhatTheOperandCannotHold) {
  const std::tuple<Types, Texts, Texts> rows[] = {
      {{MB, XB}, {"0", "1"}, {"2", "", "01", " 1", "1.0", "-1"}},
      {{MI, XI, DBI},
       {"-32768", "32767", "12.0", " +5 ", "1e3"},
       {"32768", "-32769", "1.5", "", "x", "1,5", "0x1", "+-1"}},
      {{ML, XL, CounterPreset, CounterCurrent},
       {"-2147483648", "0", "2147483647"},
       {"2147483648", "0.5", "1e300", "1e999"}},
      {{DW, XDW}, {"0", "4294967295"}, {"4294967296", "-1", "0.1", "nan", "inf"}},
      {{MF}, {"1.5", "-3e38", "0"}, {"1e39", "nan", "", "1.5x"}},
      {{TimerPreset, TimerCurrent, SB, TimerValue}, {"anything"}, {}},
  };
  for (const auto& [types, good, bad] : rows) {
    for (const OperandTypeCode type : types) {
      for (const auto& text : good) EXPECT_TRUE(IsValueInRange(type, text)) << TypeName(type) << text;
      for (const auto& text : bad) EXPECT_FALSE(IsValueInRange(type, text)) << TypeName(type) << text;
    }
  }
}

}  // namespace
}  // namespace kv::mdlDataTypesView
