#include <gtest/gtest.h>

#include <string>

#include "ControllerFixture.h"

namespace sim::test {
namespace {

// Bytes of memory, by address and length in digits.
std::string Read(Fixture& fixture, const std::string& place) {
  return fixture.Own("RM", place).substr(place.size());
}

TEST(Memory, RefusesWhatIsOutsideOrMalformed) {
  const std::string reads[][2] = {{"000FFFFF0001", "0B"},  // before the first segment
                                  {"001017A10002", "0B"},  // over the end of OP
                                  {"001000000000", "04"}, {"001000000201", "04"},
                                  {"FFFFFFFF0200", "0B"}, {"0010000001", "02"}};
  Fixture fixture("K330");
  for (const auto& [fields, code] : reads) EXPECT_EQ(fixture.Own("RM", fields), "ERROR" + code) << fields;
  const std::string writes[][2] = {{"WDR0010000003010203", "02"}, {"WDR001000000201", "02"},
                                   {"WDX00100000020102", "02"},   {"WDF00100000020102", "0C"},
                                   {"WDR00200000020102", "0C"},   {"WDR001017A2020102", "0B"}};
  for (const auto& [text, code] : writes) EXPECT_EQ(fixture.Text(text), "WDERROR" + code) << text;
  EXPECT_EQ(fixture.State(), 'R');  // none of them began a load
  for (const std::uint32_t count : {0U, 4097U}) {
    EXPECT_EQ(fixture.Block(257, 0xFFFFFFFF, count).status, 128 + 4);
  }
  EXPECT_EQ(fixture.Block(257, 0x00100000, 1, 0, 0, "x").status, 128 + 2);  // takes no payload
  EXPECT_EQ(fixture.Block(257, 0x00100000, 4096).payload.size(), 4096U);
}

TEST(Memory, ABeginningWhileLoadingErasesWhatACutLoadWrote) {
  const std::string cut = "WDF002000400401020304";
  const std::string again = "WDF00200042020506";
  Fixture fixture("K330");
  EXPECT_EQ(fixture.Text(cut), "WDOK");
  EXPECT_EQ(fixture.Text(again), "WDOK");
  EXPECT_EQ(Read(fixture, "002000400004"), "02010605");  // without CCM it is the same load
  for (const std::string begin : {"CCM", "CCR", "CCE"}) {
    EXPECT_EQ(fixture.Text(cut), "WDOK");
    EXPECT_EQ(fixture.Text(begin), "CCOK");
    EXPECT_EQ(fixture.Text(again), "WDOK");
    EXPECT_EQ(Read(fixture, "002000400004"), "FFFF0605") << begin;
    EXPECT_EQ(fixture.State(), 'L');
  }
}

}  // namespace
}  // namespace sim::test
