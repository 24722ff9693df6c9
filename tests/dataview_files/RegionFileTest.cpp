#include "dataview/files/RegionFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::mdlDataTypesView {
namespace {

using ::testing::HasSubstr;
using Kind = RegionFileFault::Kind;

constexpr const char* kLarge = "K670-67-T40 / K390-29-T40";
const std::string kAurex = "Version 100\r\nAurex\r\n";

RegionRow Row(Region region, std::string description, SizeCode size, FormatCode format, std::string values) {
  return {region, std::move(description), size, format, std::move(values), std::nullopt};
}

std::string File(const std::string& rows) {
  return kAurex + rows + "\r\n";
}

TEST(RegionFile, IsWrittenToTheByte) {
  const std::vector<RegionRow> rows = {
      Row({0, 1, OperandTypeCode::MI}, "Gr\xC3\xBC\xC3\x9F\x65\tand\r\nmore", SizeCode::Bit8, FormatCode::Hex,
          "12 34 56 78"),
      Row({0, 0, OperandTypeCode::TimerPreset}, "", SizeCode::Bit32, FormatCode::Decimal, "00:00:01.00")};
  const RegionFileText text = PrintRegionFile(rows, kLarge);
  EXPECT_EQ(text.bytes,
            "Version 100\r\nAurex\r\n"
            "2\tMI\t0\t1\tGr\xFC\xDF\x65 and  more\t8 BIT\tHEX\t12 34 56 78\t\r\n"
            "13\tTIMER PRESET\t0\t0\t\t32 BIT\tDECIMAL\t00:00:01.00\t\r\n"
            "\r\n");
  EXPECT_FALSE(text.charactersLost);
  const auto read = ParseRegionFile(text.bytes, kLarge);
  ASSERT_TRUE(read) << read.error().reason;
  EXPECT_EQ(PrintRegionFile(*read, kLarge).bytes, text.bytes);
  EXPECT_TRUE(read->front().isFromFile);
  EXPECT_FALSE(read->front().readAt);
  EXPECT_TRUE(ParseRegionFile(kAurex + "\r\n", kLarge)->empty());
  for (const char* compact : {"Q50", "AurexQ50", "Q50Net"}) {
    EXPECT_EQ(PrintRegionFile({}, compact).bytes, "Version 100\r\nQ50\r\n\r\n");
  }
  EXPECT_TRUE(PrintRegionFile(std::vector{Row({}, "\xCE\xA9", {}, {}, "")}, kLarge).charactersLost);
}

TEST(RegionFile, TakesWhatUsersHaveInTheirFiles) {
  struct {
    const char* row;
    Region region;
    SizeCode size;
    FormatCode format;
  } const cases[] = {
      {"2\tWHATEVER\t7\t9", {7, 9, OperandTypeCode::MI}, SizeCode::Bit16, FormatCode::Decimal},
      {"2\tMI\t7\t9\td\t1\t4\t\tmore\t", {7, 9, OperandTypeCode::MI}, SizeCode::Bit8, FormatCode::Hex},
      {"2\tMI\t7\t9\td\t16 BIT\tBINARY\t\t", {7, 9, OperandTypeCode::MI}, SizeCode::Bit16, FormatCode::Decimal},
      {"1\tMB\t7\t9\td\t8 BIT\tHEX\t\t", {7, 9, OperandTypeCode::MB}, SizeCode::Bit1, FormatCode::Binary},
      {"3\tMF\t0\t64\t", {0, 64, OperandTypeCode::MF}, SizeCode::Bit32, FormatCode::Decimal},  // one past the last
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.row);
    const auto rows = ParseRegionFile(File(each.row + std::string("\r\n")), kLarge);
    ASSERT_TRUE(rows) << rows.error().reason;
    EXPECT_EQ(rows->front().region.from, each.region.from);
    EXPECT_EQ(rows->front().size, each.size);
    EXPECT_EQ(rows->front().format, each.format);
  }
}

TEST(RegionFile, CutsLongRegionsIntoRequestsBehindTheOthers) {
  const auto rows = ParseRegionFile(File("2\tMI\t10\t140\tlong\t8 BIT\tHEX\t1 2\t\r\n1\tMB\t0\t119\t\r\n"), kLarge);
  ASSERT_TRUE(rows);
  const auto place = [](const RegionRow& row) { return std::pair(row.region.from, row.region.to); };
  std::vector<std::pair<std::int32_t, std::int32_t>> places;
  std::ranges::transform(*rows, std::back_inserter(places), place);
  EXPECT_THAT(places,
              testing::ElementsAre(std::pair(0, 119), std::pair(10, 69), std::pair(70, 129), std::pair(130, 140)));
  EXPECT_EQ(rows->back().description, "long");
  EXPECT_FALSE(rows->back().isFromFile) << "the file's values were those of the whole";
  EXPECT_EQ(rows->back().format, FormatCode::Hex);
}

TEST(RegionFile, IsRefusedWithTheMessageThatFits) {
  struct {
    std::string bytes;
    const char* model;
    Kind kind;
    const char* reason;
  } const cases[] = {
      {"", kLarge, Kind::Format, "line 1"},
      {"Version 101\r\nAurex\r\n\r\n", kLarge, Kind::Format, "line 1"},
      {"Version 100\r\nQ50\r\n1\tMB\t0\t0\t\r\n\r\n", kLarge, Kind::Format, "line 2: expected \"Aurex\""},
      {kAurex + "\r\n", "Q50", Kind::Format, "line 2: expected \"Q50\""},
      {File("1\tMB\t0\r\n"), kLarge, Kind::Format, "line 3"},
      {File("1\tMB\t0\t9\t\r\nMB\tMB\t0\t9\t\r\n"), kLarge, Kind::Format, "line 4"},
      {File("1\tMB\t0\t \t\r\n"), kLarge, Kind::Format, "line 3"},
      {File("6\tDBI\t0\t9\t\r\n"), kLarge, Kind::InvalidRegions, "has no DBI operands"},
      {File("23\tMB\t0\t0\t\r\n"), kLarge, Kind::InvalidRegions, "no operand type 23"},
      {File("1\tMB\t0\t9\t\r\n1\tMB\t8192\t8193\t\r\n"), kLarge, Kind::InvalidRegions, "line 4: MB 8192..8193 ends"},
      {File("1\tMB\t0\t99999999999999999999\t\r\n"), kLarge, Kind::Format, "line 3"},
      {File("1\tMB\t-1\t9\t\r\n"), kLarge, Kind::InvalidRegions, "no range of addresses"},
      {File("1\tMB\t9\t8\t\r\n"), kLarge, Kind::InvalidRegions, "no range of addresses"},
      {File("1\tMB\t9\t20\t\r\n2\tMI\t0\t9\t\r\n1\tMB\t0\t9\t\r\n"), kLarge, Kind::InvalidRegions, "overlaps"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.bytes);
    const auto rows = ParseRegionFile(each.bytes, each.model);
    ASSERT_FALSE(rows);
    EXPECT_EQ(rows.error().kind, each.kind);
    EXPECT_THAT(rows.error().reason, HasSubstr(each.reason));
  }
  EXPECT_EQ((RegionFileFault{Kind::Format, ""}).Message(),
            "This file cannot be opened. This may be because: \r\nThe file applies to a different controller model, or "
            "\r\nThe file is corrupted or is in invalid format.");
  EXPECT_EQ((RegionFileFault{Kind::InvalidRegions, ""}).Message(),
            "This file cannot be opened. This may be because: \r\nThe file contains invalid regions for the current "
            "selected PLC.");
}

TEST(RegionFile, ThatWasDamagedTellsWhere) {
  const std::string whole = File("2\tMI\t0\t1\tx\t8 BIT\tHEX\t12 34\t\r\n1\tMB\t5\t130\t\t1 BIT\tBINARY\t\t\r\n");
  test::ExpectAsRecorded([&] {
    return test::ToldOfDamage(whole, [](const std::string& bytes) {
      const auto rows = ParseRegionFile(bytes, kLarge);
      if (!rows) return std::to_string(static_cast<int>(rows.error().kind)) + rows.error().reason;
      return PrintRegionFile(*rows, kLarge).bytes;
    });
  });
}

}  // namespace
}  // namespace kv::mdlDataTypesView
