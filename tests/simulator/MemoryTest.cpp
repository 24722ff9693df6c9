#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "ControllerBench.h"
#include "simulator/Memory.h"

namespace sim::test {
namespace {

std::string Hex(std::uint32_t value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*X", digits, value);
  return text;
}

struct Listed {
  std::string code;
  char letter;
  std::uint32_t start, length;
};

std::vector<Listed> ListSegments(Bench& bench) {
  const std::string reply = bench.Text("GI        ");
  std::vector<Listed> segments;
  for (std::size_t p = 7; p + 19 <= reply.size(); p += 19) {
    segments.push_back({reply.substr(p, 2), reply[p + 2],
                        static_cast<std::uint32_t>(std::stoul(reply.substr(p + 3, 8), nullptr, 16)),
                        static_cast<std::uint32_t>(std::stoul(reply.substr(p + 11, 8), nullptr, 16))});
  }
  return segments;
}

std::string ReadAll(Bench& bench, const Listed& segment) {
  std::string hex;
  for (std::uint32_t done = 0; done < segment.length; done += 512) {
    const std::uint32_t length = std::min<std::uint32_t>(512, segment.length - done);
    hex += bench.Own("RM", Hex(segment.start + done, 8) + Hex(length, 4)).substr(12);
  }
  return hex;
}

// Bytes of memory, by address and length in digits.
std::string Read(Bench& bench, const std::string& place) {
  return bench.Own("RM", place).substr(place.size());
}

TEST(Memory, SegmentsAreOfBothKindsAndFitNoBlock) {
  for (const char* model : {"K330", "K670", "Q50"}) {
    Bench bench(model);
    std::set<std::string> codes;
    for (const Listed& segment : ListSegments(bench)) {
      codes.insert(segment.code);
      EXPECT_EQ(segment.length % 2, 0U);
      EXPECT_NE(segment.length % 128, 0U);
      EXPECT_EQ(ReadAll(bench, segment).size(), segment.length * 2);
    }
    EXPECT_EQ(codes, (std::set<std::string>{"OP", "DT", "HW", "FT", "MM", "AP", "OS", "ZZ"}));
  }
}

TEST(Memory, RefusesWhatIsOutsideOrMalformed) {
  const struct {
    std::string command, fields, code;
  } cases[] = {
      {"RM", "000FFFFF0001", "0B"},  // before the first segment
      {"RM", "001017A10002", "0B"},  // over the end of OP
      {"RM", "001000000000", "0B"}, {"RM", "001000000201", "0B"},
      {"RM", "FFFFFFFF0200", "0B"}, {"RM", "0010000001", "02"},
  };
  Bench bench("K330");
  for (const auto& c : cases) EXPECT_EQ(bench.Own(c.command, c.fields), "ERROR" + c.code) << c.fields;
  const std::string writes[][2] = {
      {"WDR0010000003010203", "02"},
      {"WDR001000000201", "02"},
      {"WDX001000000201"
       "02",
       "02"},
      {"WDF00100000020102", "0C"},
      {"WDR00200000020102", "0C"},
      {"WDR001017A2020102", "0B"},
  };
  for (const auto& [text, code] : writes) EXPECT_EQ(bench.Text(text), "WDERROR" + code) << text;
  EXPECT_EQ(bench.State(), 'R');  // none of them began a load
  EXPECT_EQ(bench.Block(257, 0x00100000, 4097).status, 128 + 0x0B);
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

// What a clone does: every line that is not erased, flash in swapped words, RAM as it is; 00 counts 256.
void Restore(Bench& to, const Listed& segment, const std::string& hex) {
  const std::size_t lineSize = segment.letter == 'F' ? 128 : 256;
  for (std::size_t done = 0; done < segment.length; done += lineSize) {
    std::string line = hex.substr(done * 2, lineSize * 2);
    if (line.find_first_not_of('F') == std::string::npos) continue;
    if (segment.letter == 'F') {
      for (std::size_t i = 0; i + 4 <= line.size(); i += 4)
        line = line.replace(i, 4, line.substr(i + 2, 2) + line.substr(i, 2));
    }
    const auto count = static_cast<std::uint32_t>(line.size() / 2);
    ASSERT_EQ(to.Text(std::string("WD") + segment.letter + Hex(segment.start + static_cast<std::uint32_t>(done), 8) +
                      Hex(count & 0xFF, 2) + line),
              "WDOK");
  }
}

TEST(Memory, ARestoreMakesTwoControllersEqual) {
  Bench from("Q51");
  SimulatorOptions other = Options("Q51");
  other.memorySeed = 9;
  Bench to(other);
  const auto segments = ListSegments(from);
  ASSERT_NE(ReadAll(from, segments[0]), ReadAll(to, segments[0]));
  EXPECT_EQ(to.Text("CCM"), "CCOK");
  for (const Listed& segment : segments) Restore(to, segment, ReadAll(from, segment));
  EXPECT_EQ(to.Text("ED"), "EDOK");
  for (const Listed& segment : segments) EXPECT_EQ(ReadAll(from, segment), ReadAll(to, segment)) << segment.code;
  EXPECT_EQ(to.State(), 'R');
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
