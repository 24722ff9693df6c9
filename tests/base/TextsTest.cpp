#include <gtest/gtest.h>

#include <limits>

#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "base/Numbers.h"

namespace kv {
namespace {

TEST(AnsiText, EveryByteSurvivesTheWayThereAndBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(Utf8ToAnsi(AnsiToUtf8(all)), all);
}

TEST(AnsiText, CharactersOfTheCodePage) {
  EXPECT_EQ(AnsiToUtf8("A\x80\x99\x9F\x81\xE9"), "A\u20AC\u2122\u0178\xC2\x81\u00E9");
}

TEST(AnsiText, WhatTheCodePageLacksBecomesAQuestionMark) {
  struct Row {
    const char* utf8;
    const char* ansi;
  };
  constexpr Row kRows[] = {
      {"a\u03A9b", "a?b"},      // Greek letter
      {"a\U0001F600b", "a?b"},  // beyond 16 bits
      {"a\xC2\x80"
       "b",
       "a?b"},  // a control character whose byte the code page gives to the euro sign
      {"a\xFF"
       "b",
       "a?b"},                  // never in UTF-8
      {"a\xC3", "a?"},          // cut
      {"\xE2\x82", "??"},       // cut
      {"\xC3(", "?("},          // no second byte
      {"\xC1\x81", "??"},       // "A" spelled overlong
      {"\xE0\x82\xA9", "???"},  // the copyright sign spelled overlong
  };
  for (const Row& row : kRows) EXPECT_EQ(Utf8ToAnsi(row.utf8), row.ansi) << row.utf8;
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

TEST(Numbers, Hexadecimal) {
  EXPECT_EQ(ParseHex("fFfFfFfF"), 0xFFFFFFFFU);
  for (const char* bad : {"", "G", "-1", "0x1", " 1", "1 ", "100000000", "000000001"}) {
    EXPECT_EQ(ParseHex(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ToHex(0xAB, 4), "00AB");
  EXPECT_EQ(ToHex(0x12345678, 4), "5678");
  EXPECT_EQ(ToHex(0, 2), "00");
  EXPECT_EQ(ToHex(7, 0), "");
  EXPECT_EQ(ToHex(0x1, 12), "000000000001");
}

TEST(Numbers, FloatTexts) {
  struct Row {
    float value;
    const char* text;
  };
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr Row kRows[] = {
      {0.0F, "0"},
      {-0.0F, "-0"},
      {0.1F, "0.1"},
      {-2.50F, "-2.5"},
      {100000.0F, "100000"},
      {1234567.0F, "1234567"},
      {9999999.0F, "9999999"},
      {12345678.0F, "1.234568e+07"},
      {0.0001F, "0.0001"},
      {9e9F, "9e+09"},  // is 8999999488: what was typed comes back, not what the bits stand for
      {0.00001F, "1e-05"},
      {std::numeric_limits<float>::max(), "3.402823e+38"},
      {-std::numeric_limits<float>::denorm_min(), "-1e-45"},
      {-kInfinity, "-inf"},
      {-std::numeric_limits<float>::quiet_NaN(), "nan"},
  };
  for (const Row& row : kRows) EXPECT_EQ(FloatText(row.value), row.text);
}

TEST(Crc32, KnownResults) {
  EXPECT_EQ(Crc32(""), 0U);
  EXPECT_EQ(Crc32("a"), 0xE8B7BE43U);
  EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
  EXPECT_EQ(Crc32("The quick brown fox jumps over the lazy dog"), 0x414FA339U);
  EXPECT_EQ(Crc32(std::string(32, '\xFF')), 0xFF6CAB0BU);
}

}  // namespace
}  // namespace kv
