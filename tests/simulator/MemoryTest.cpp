#include <gtest/gtest.h>

#include <set>
#include <string>

#include "ControllerBench.h"

namespace sim::test {
namespace {

// Bytes of memory, by address and length in digits.
std::string Read(Bench& bench, const std::string& place) {
  return bench.Own("RM", place).substr(place.size());
}

TEST(Memory, SegmentsAreOfBothKindsAndFitNoBlock) {
  for (const char* model : {"K330", "K670", "Q50"}) {
    Bench bench(model);
    std::set<std::string> codes;
    const std::string reply = bench.Text("GI        ");
    for (std::size_t p = 7; p + 19 <= reply.size(); p += 19) {  // code, kind, start, length
      codes.insert(reply.substr(p, 2));
      const auto length = std::stoul(reply.substr(p + 11, 8), nullptr, 16);
      EXPECT_EQ(length % 2, 0U);
      EXPECT_NE(length % 128, 0U);
    }
    EXPECT_EQ(codes, (std::set<std::string>{"OP", "DT", "HW", "FT", "MM", "AP", "OS", "ZZ"}));
  }
}

TEST(Memory, RefusesWhatIsOutsideOrMalformed) {
  const std::string reads[][2] = {{"000FFFFF0001", "0B"},  // before the first segment
                                  {"001017A10002", "0B"},  // over the end of OP
                                  {"001000000000", "04"}, {"001000000201", "04"},
                                  {"FFFFFFFF0200", "0B"}, {"0010000001", "02"}};
  Bench bench("K330");
  for (const auto& [fields, code] : reads) EXPECT_EQ(bench.Own("RM", fields), "ERROR" + code) << fields;
  const std::string writes[][2] = {{"WDR0010000003010203", "02"}, {"WDR001000000201", "02"},
                                   {"WDX00100000020102", "02"},   {"WDF00100000020102", "0C"},
                                   {"WDR00200000020102", "0C"},   {"WDR001017A2020102", "0B"}};
  for (const auto& [text, code] : writes) EXPECT_EQ(bench.Text(text), "WDERROR" + code) << text;
  EXPECT_EQ(bench.State(), 'R');  // none of them began a load
  for (const std::uint32_t count : {0U, 4097U}) {
    EXPECT_EQ(bench.Block(257, 0xFFFFFFFF, count).status, 128 + 4);
  }
  EXPECT_EQ(bench.Block(257, 0x00100000, 1, 0, 0, "x").status, 128 + 2);  // takes no payload
  EXPECT_EQ(bench.Block(257, 0x00100000, 4096).payload.size(), 4096U);
}

TEST(Memory, TheFirstWriteOfALoadErasesItsSegmentAndSwapsFlash) {
  Bench bench("K330");
  EXPECT_EQ(bench.Text("WDF002000400401020304"), "WDOK");
  EXPECT_EQ(bench.State(), 'L');
  EXPECT_EQ(Read(bench, "0020003E0008"), "FFFF02010403FFFF");
  EXPECT_EQ(bench.Text("WDF00200042020506"), "WDOK");  // the second does not
  EXPECT_EQ(Read(bench, "002000400004"), "02010605");
  EXPECT_EQ(bench.Text("WDR00220000020102"), "WDOK");
  EXPECT_EQ(Read(bench, "002200000004"), "0102FFFF");
  bench.It().SetLying(true);
  EXPECT_EQ(bench.Text("WDR0022000002AAAA"), "WDOK");
  EXPECT_EQ(Read(bench, "002200000002"), "0102");
}

TEST(Memory, ABeginningWhileLoadingErasesWhatACutLoadWrote) {
  const std::string cut = "WDF002000400401020304";
  const std::string again = "WDF00200042020506";
  Bench bench("K330");
  EXPECT_EQ(bench.Text(cut), "WDOK");
  EXPECT_EQ(bench.Text(again), "WDOK");
  EXPECT_EQ(Read(bench, "002000400004"), "02010605");  // without CCM it is the same load
  for (const std::string begin : {"CCM", "CCR", "CCE"}) {
    EXPECT_EQ(bench.Text(cut), "WDOK");
    EXPECT_EQ(bench.Text(begin), "CCOK");
    EXPECT_EQ(bench.Text(again), "WDOK");
    EXPECT_EQ(Read(bench, "002000400004"), "FFFF0605") << begin;
    EXPECT_EQ(bench.State(), 'L');
  }
}

TEST(Memory, ApplicationFlashIsReadAndWrittenFromZero) {
  Bench bench("Q51");
  EXPECT_EQ(bench.Text("FW00000000AA"), "FWERROR09");  // running
  EXPECT_EQ(bench.Text("CCS"), "CCOK");
  EXPECT_EQ(bench.Text("FW00000001AABB"), "FWOK");
  EXPECT_EQ(bench.Text("FW00000000"), "FWOK");
  EXPECT_EQ(bench.Text("RX00000001").substr(0, 14), "RX00000001AABB");
  EXPECT_EQ(bench.Text("RX00000001").size(), 10U + 128);
  EXPECT_EQ(bench.Text("RX00004E39").size(), 10U + 2);
  EXPECT_EQ(bench.Text("RX00004E3A"), "RX00004E3A");
  EXPECT_EQ(bench.Text("FW00004E3AAA"), "FWERROR0B");
}

}  // namespace
}  // namespace sim::test
