#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "base/AnsiText.h"
#include "base/DateText.h"
#include "base/Hex.h"
#include "base/LineReader.h"
#include "base/Numbers.h"

namespace kv {
namespace {

TEST(AnsiText, EveryByteSurvivesTheWayThereAndBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(Utf8ToAnsi(AnsiToUtf8(all)), all);
  EXPECT_EQ(AnsiToUtf8("A\x80\x99\x9F\x81\xE9"), "A\u20AC\u2122\u0178\xC2\x81\u00E9");
}

TEST(AnsiText, WhatTheCodePageLacksBecomesAQuestionMark) {
  const std::pair<const char*, const char*> rows[] = {
      {"a\u03A9z", "a?z"},      // Greek letter
      {"a\U0001F600z", "a?z"},  // beyond 16 bits
      {"a\xC2\x80z", "a?z"},    // a control character whose byte the code page gives to the euro sign
      {"a\xFFz", "a?z"},        // never in UTF-8
      {"\xE2\x82", "??"},       // cut
      {"\xC3(", "?("},          // no second byte
      {"\xC1\x81", "??"},       // "A" spelled overlong
      {"\xE0\x82\xA9", "???"},  // the copyright sign spelled overlong
  };
  for (const auto& [utf8, ansi] : rows) EXPECT_EQ(Utf8ToAnsi(utf8), ansi) << utf8;
}

TEST(Numbers, IntegersAreTakenWholeOrNotAtAll) {
  EXPECT_EQ(ParseInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ParseInteger("007"), 7);
  for (const char* bad : {"", "-", "+1", " 1", "1 ", "1.0", "0x1", "1e3", "9223372036854775808"}) {
    EXPECT_EQ(ParseInteger(bad), std::nullopt) << bad;
  }
}

TEST(Numbers, FloatsAreTakenWholeAndFinite) {
  EXPECT_EQ(ParseFloat("-.5e1"), -5.0F);
  EXPECT_EQ(ParseFloat("3.4028235E38"), std::numeric_limits<float>::max());
  for (const char* bad : {"", ".", "+1", " 1", "1 ", "1,5", "0x10", "inf", "-inf", "nan", "1e39", "1e400"}) {
    EXPECT_EQ(ParseFloat(bad), std::nullopt) << bad;
  }
}

// The value is rounded, not its shortest text, which has been rounded before.
TEST(Numbers, FloatsAreShownWithSevenDigitsRoundedOnce) {
  struct Row {
    float value;
    const char* shown;
    const char* exact;
  };
  const Row rows[] = {
      {285.04965209F, "285.0497", "285.04965"},
      {0.1F, "0.1", "0.1"},
      {-1.5e3F, "-1500", "-1500"},
      {1234567.0F, "1234567", "1234567"},
      {1e7F, "1e+07", "1e+07"},
      {16777217.0F, "1.677722e+07", "16777216"},
      {0.00001F, "1e-05", "1e-05"},
      {0.3F, "0.3", "0.3"},
      {1.0F / 3.0F, "0.3333333", "0.33333334"},
      {2.0000005F, "2", "2.0000005"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FloatText(row.value), row.shown);
    EXPECT_EQ(ExactFloatText(row.value), row.exact);
    EXPECT_EQ(ParseFloat(ExactFloatText(row.value)), row.value) << "it reads back";
  }
}

TEST(Hex, TurnDigitPairsIntoBytesAndRefuseAnythingElse) {
  EXPECT_EQ(HexStringToBytes("0A1"), Bytes({10}));
  EXPECT_EQ(HexStringToBytes("00ff7FZ"), Bytes({0, 255, 127}));  // the odd last character is not looked at
  EXPECT_EQ(HexStringToBytes(""), Bytes());
  EXPECT_EQ(HexPairToByte("9c"), 0x9C);
  for (const std::string bad : {"0G", " 1", "+1", "-1", "0x", "1", "123", ""}) EXPECT_FALSE(HexPairToByte(bad)) << bad;
  EXPECT_FALSE(HexStringToBytes("00 1"));
}

TEST(DateText, FillsUpWithZeros) {
  using namespace std::chrono;
  const local_seconds time = local_days{2026y / 3 / 9} + 4h + 5min + 6s;
  EXPECT_EQ(DateText(time) + " " + TimeOfDayText(time), "2026-03-09 04:05:06");
}

// Each line as number and text, with a bar at its end when it has one.
std::string Lines(std::string_view text, LineReader::End end) {
  std::string shown;
  LineReader lines(text, end);
  while (lines.Next()) {
    shown.append(std::to_string(lines.Number())).append(lines.Line()).append(lines.IsEnded() ? "|" : "");
  }
  return shown + lines.Expected("more").error().Text();
}

TEST(LineReader, CutsAtLineEndsAndCounts) {
  using enum LineReader::End;
  EXPECT_EQ(Lines("a\r\n\nb\rc\n", Lf), "1a|2|3b\rc|line 4: expected more");
  EXPECT_EQ(Lines("a\nb", Lf), "1a|2bline 3: expected more");
  EXPECT_EQ(Lines("a\nb\r\n\r\nc\r", CrLf), "1a\nb|2|3c\rline 4: expected more");
  EXPECT_EQ(Lines("", Lf), "line 1: expected more");
}

TEST(LineReader, KnowsTheCheckOfTheLinesBefore) {
  const std::string text = WithCheckLine("one\ntwo\n");
  LineReader lines(text);
  while (lines.Next() && !lines.IsAtEnd()) EXPECT_FALSE(IsCheckLine(lines.Line(), lines.Before()));
  EXPECT_EQ(lines.Before(), "one\ntwo\n");
  EXPECT_TRUE(IsCheckLine(lines.Line(), lines.Before()));
  EXPECT_FALSE(IsCheckLine(lines.Line(), "one\nTwo\n"));
  EXPECT_FALSE(IsCheckLine("check 0", ""));
}

}  // namespace
}  // namespace kv
