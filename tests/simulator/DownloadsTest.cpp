#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ControllerFixture.h"
#include "OsTransferBytes.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

constexpr int kRefused = 128;

std::string ProjectName(Fixture& fixture) {
  return fixture.Own("IN", "").substr(9);
}
char StatusByte(Fixture& fixture, std::size_t index) {
  return fixture.Block(7, 0, 106).payload.at(index);
}

void SendProject(Fixture& fixture, const std::string& name) {
  EXPECT_EQ(fixture.Block(66, 0, 0, 0, 0, "PASSWORD").status, 10);
  EXPECT_EQ(fixture.Block(2, 0, 0, 0, 0, "PASSWORD").status, 10);
  EXPECT_EQ(fixture.Block(65, 0, static_cast<std::uint32_t>(name.size()), 1, 0, name).status, 10);
}

TEST(Downloads, AnAurexOsReplacesTheReportedVersion) {
  const std::tuple<std::string, std::string, std::uint32_t, std::uint32_t, std::string> cases[] = {
      {"K220-22-R1", "K220", 0x80000, 0x180000, "|4.75|03"},
      {"K220-32", "K222", 0x80000, 0x180000, "|4.75|03"},
      {"K380", "K330", 0x100000, 0x300000, "|4.75|03"},
      {"K670", "CLR ", 0x1000000, 0x1400000, "O/S 4.75;|B03;"}};
  for (const auto& [model, image, osPlace, fontsPlace, reported] : cases) {
    SCOPED_TRACE(model);
    Fixture fixture(model);
    EXPECT_EQ(fixture.Text("CCB"), "CCOK");
    EXPECT_EQ(StatusByte(fixture, 28), 3);
    const auto chunk = [&fixture](std::uint16_t topic, std::uint32_t address, std::uint16_t sequence,
                                  const std::string& data) {
      return fixture.Block(65, address, static_cast<std::uint32_t>(data.size()), sequence, topic, data).status;
    };
    const std::string os(500 * 256 - 8, 'x');
    const std::string fonts = "fonts";
    const std::string stream = Stored(os);
    EXPECT_EQ(chunk(1, osPlace, 1, stream.substr(0, 500)), kRefused + 0xF) << "no header yet";
    EXPECT_EQ(chunk(3, osPlace, 1, ""), kRefused + 2);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader("K999", 475, 3, os, fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader(image, 1000, 3, os, fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader(image, 475, 3, os, fonts)), 10);
    EXPECT_EQ(fixture.Block(69).status, kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace, 2, stream.substr(0, 500)), kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace, 1, stream.substr(0, 8)), kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace - 1, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, fontsPlace, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, fontsPlace - 2000, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, osPlace, 1, Little(5, 4) + Little(6, 4) + "abcdef"), kRefused + 0xF) << "grows by packing";
    EXPECT_EQ(chunk(1, osPlace, 1, Little(500, 4) + Little(6, 4) + "abcdef"), kRefused + 0xF) << "no zlib stream";
    for (std::uint16_t k = 1; k <= 256; ++k) {
      const std::uint32_t at = 500u * (k - 1u);
      EXPECT_EQ(chunk(1, osPlace + at, k == 256 ? 1 : k, stream.substr(at, 500)), 10) << k;
      if (k != 7) continue;
      EXPECT_EQ(chunk(1, osPlace + at, 7, stream.substr(at, 500)), 10) << "a repeat";
      EXPECT_EQ(chunk(1, osPlace + at, 8, stream.substr(at, 500)), kRefused + 0xF) << "out of step";
    }
    EXPECT_EQ(chunk(1, osPlace + 128000, 2, "more"), kRefused + 0xF);
    EXPECT_EQ(chunk(2, fontsPlace - 1000, 1, std::string(501, 'x')), kRefused + 2);
    EXPECT_EQ(fixture.Block(69).status, kRefused + 0xF) << "the fonts are missing";
    EXPECT_EQ(chunk(17, fontsPlace, 1, Stored(fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(16, fontsPlace, 1, Stored(fonts)), 10);
    EXPECT_EQ(fixture.Block(69).status, 11);
    fixture.Wait(10s);
    EXPECT_NE(StatusByte(fixture, 9), 0);
    EXPECT_EQ(fixture.Text("CCE"), "CCOK");
    EXPECT_TRUE(fixture.Text("ID").ends_with(reported)) << fixture.Text("ID");
    EXPECT_EQ(fixture.State(), 'R');
  }
}

void ReplaceOs(Fixture& fixture, std::uint32_t version) {
  EXPECT_EQ(fixture.Text("CCB"), "CCOK");
  EXPECT_EQ(fixture.Block(65, 0, 16, 0, 0, OsHeader("K330", version, 0, "ab")).status, 10);
  EXPECT_EQ(fixture.Block(65, 0x100000, 10, 1, 1, Stored("ab")).status, 10);
  EXPECT_EQ(fixture.Block(69).status, 11);
  fixture.Wait(1s);
}

// What a user is warned of before he replaces an O/S really happens, at each version from which on it does.
TEST(Downloads, AnOsOfAnotherKindCostsWhatItCannotKeep) {
  struct Case {
    std::string before;
    std::uint32_t after;
    bool keepsProject, keepsMemory, keepsValues;
  };
  const Case cases[] = {
      {"4.60", 475, true, true, true},   {"3.73", 373, true, true, true},    {"3.73", 374, true, false, true},
      {"3.74", 373, true, false, false}, {"2.99", 374, true, false, false},  {"3.00", 299, true, false, false},
      {"2.00", 201, false, true, true},  {"2.01", 250, true, true, true},    {"1.10", 111, false, true, true},
      {"2.50", 251, false, true, true},  {"2.90", 400, false, false, false}, {"2.91", 300, true, true, true}};
  for (const Case& change : cases) {
    SCOPED_TRACE(change.before + " to " + std::to_string(change.after));
    Fixture fixture(Options("K330", change.before));
    SendProject(fixture, "Hall");
    EXPECT_EQ(fixture.Block(69).status, 11);
    fixture.Wait(1s);
    EXPECT_EQ(fixture.Text("CCE"), "CCOK");
    fixture.Write("0300050001", "0007");
    fixture.Write("0201F50001", "01");
    const auto memory = [&fixture] { return fixture.Own("RM", "001000000020"); };
    const std::string before = memory();
    ReplaceOs(fixture, change.after);
    EXPECT_EQ(fixture.Text("CCE"), "CCOK");
    EXPECT_EQ(ProjectName(fixture), change.keepsProject ? "48616C6C" : "");
    EXPECT_EQ(memory() == before, change.keepsMemory);
    EXPECT_EQ(fixture.Read("0300050001"), change.keepsValues ? "0007" : "0000");
    EXPECT_EQ(fixture.Read("0201F50001"), "00") << "no force outlives an O/S";
  }
}

}  // namespace
}  // namespace sim::test
