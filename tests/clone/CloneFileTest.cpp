#include <gmock/gmock.h>

#include <sstream>

#include "clone/CloneFrame.h"
#include "clone/CloneInfo.h"
#include "tests/support/Damage.h"

// clang-format off: the tables are laid out by hand
namespace kv {
namespace {

using testing::HasSubstr;

const std::string kTitle = "Korvantis Clone File:\tV100\ta\tb\r\n";
const std::string kVersion = "K220-22-R1\t10\t4.60\t19\r\n";
const std::string kSegments = "HW,4096,260\tMM,8192,520\t\r\n";
const std::string kHead = kTitle + kVersion + kSegments + "\r\n";

std::string Write(MemoryKind kind, std::uint32_t address, std::size_t count, std::uint8_t unit = 1) {
  return BuildWriteFrame(unit, kind, address, Bytes(count, 0x5A)) + "\r\n";
}
const std::string kHw1 = Write(MemoryKind::Flash, 0x1000, 128);
const std::string kHw2 = Write(MemoryKind::Flash, 0x1080, 128);
const std::string kHw3 = Write(MemoryKind::Flash, 0x1100, 4);
const std::string kMm1 = Write(MemoryKind::Ram, 0x2000, 256);
const std::string kMm2 = Write(MemoryKind::Ram, 0x2100, 256);
const std::string kMm3 = Write(MemoryKind::Ram, 0x2200, 8);
const std::string kEnd = BuildEndFrame(1) + "\r\n";

CloneInfo Inspect(const std::string& content) {
  std::istringstream stream(content);
  return InspectClone(stream, "x.kdf", content.size()).value();
}

TEST(CloneInfo, NamesTheLineOfEachDamage) {
  using enum MemoryKind;
  struct Row {
    std::string content;
    std::size_t line;
    std::string expected;
  };
  const std::string begin = kTitle + kVersion;
  const std::vector<Row> rows = {
      {"", 1, "four head lines"}, {"PK\x03\x04", 1, "title"}, {"Korvantis Clone File:\tV200\ta\tb\r\n", 1, "V100"},
      {kTitle + "K220\t10\t4.60\r\n", 2, "four version texts"},
      {begin + "HW,4096,261\t\r\n", 3, "even length of segment 1"}, {begin + "HW,4096,260\r\n", 3, "a tab"},
      {begin + "HW,4294967294,4\t\r\n", 3, "segment 1"}, {begin + "HW,4294967296,0\t\r\n", 3, "segment 1"}, {begin + "HW,4096,260\tMM,8192\t\r\n", 3, "segment 2"},
      {begin + kSegments + kEnd, 4, "an empty line"}, {kHead, 5, "cut"}, {kHead + kHw1 + kHw2.substr(0, 99), 6, "cut"},
      {kHead + kHw1 + kMm1 + kMm2, 8, "end frame"}, {kHead + kHw1.substr(1) + kMm1 + kMm2 + kEnd, 5, "begins with"},
      {kHead + kHw2 + kHw1 + kMm1 + kMm2 + kEnd, 6, "out of order"},
      {kHead + kMm1 + kMm2 + kHw1 + kEnd, 7, "segment that the head names"},
      {kHead + Write(Flash, 0x3000, 128) + kEnd, 5, "segment that the head names"},
      {kHead + Write(Flash, 0x1040, 128) + kEnd, 5, "128 bytes from 00001000"},
      {kHead + Write(Flash, 0x1000, 64) + kEnd, 5, "128 bytes from 00001000"},
      {kHead + Write(Flash, 0x1100, 128) + kEnd, 5, "4 bytes from 00001100"},
      {kHead + kHw1 + Write(Ram, 0x1100, 4) + kEnd, 6, "letter F"}, {kHead + kMm2 + kEnd, 5, "address 00002000 before"},
      {kHead + kMm1 + kEnd, 6, "address 00002100 on"}, {kHead + kHw1 + Write(Ram, 0x2000, 256, 2) + kEnd, 6, "unit 1"},
      {kHead + kEnd + kEnd, 6, "nothing behind"}, {kHead + "/01IDEE\r\r\n" + kEnd, 5, "WD or ED"},
      {kHead + kHw1 + std::string(5000, 'F') + "\r\n" + kEnd, 6, "longer than"}};
  for (const Row& row : rows) {
    const CloneInfo info = Inspect(row.content);
    ASSERT_FALSE(info.damages.empty()) << row.expected;
    EXPECT_EQ(info.damages[0].line, row.line) << row.expected;
    EXPECT_THAT(info.damages[0].what, HasSubstr(row.expected));
    EXPECT_THAT(FindingsBeforeRestore(info, {.model = "K220-22-R1"}).at(0), HasSubstr("is damaged: line"));
  }
  const std::string adjacent = "HW,4096,128\tMM,4224,4\t\r\n\r\n";
  EXPECT_TRUE(Inspect(begin + adjacent + kHw1 + Write(Ram, 0x1080, 4) + kEnd).IsSound());
  EXPECT_TRUE(Inspect(begin + "HW,4096,260\tMM,8192,0\t\r\n\r\n" + kEnd).IsSound());  // all of it erased
  EXPECT_EQ(Inspect(kHead + kMm1 + "/\r\n" + kMm3 + kEnd).damageCount, 1U);  // one broken line is one damage
}

TEST(CloneInfo, TellsWhatEachDamageIs) {
  const std::string whole = kTitle + kVersion + "HW,4096,260\tOP,8192,6\t\r\n\r\n" + kHw3 + Write(MemoryKind::Ram, 0x2000, 6) + kEnd;
  test::ExpectAsRecorded([&] {
    return test::ToldOfDamage(whole, [](const std::string& bytes) {
      const CloneInfo info = Inspect(bytes);
      std::string all = std::to_string(info.frames) + (info.hasEnd ? " frames to the end" : " frames");
      for (const LineError& each : info.damages) all += "|" + each.Text();
      for (const CloneInfoSegment& each : info.segments)
        all += "|" + each.segment.code + " " + std::to_string(each.covered.Bytes()) + " from " + std::to_string(each.position);
      for (const std::string& each : FindingsBeforeRestore(info, {.model = "K220-22-R1"})) all += "|" + each;
      return all;
    });
  });
  const std::string frame = "/FFWDF89ABCDEF040201040361\r";
  EXPECT_EQ(ParseCloneFrame(frame)->data, (Bytes{1, 2, 3, 4}));
  for (const char* bad : {"/01EDEA", "/01edEA\r", "/01EDEA\r\r", "/0iED19\r", "/01WDR003000000AABCD4C\r"}) {
    EXPECT_FALSE(ParseCloneFrame(bad)) << bad;
  }
}

}  // namespace
}  // namespace kv
